#include "simulator/cli/event_log.h"
#include "simulator/cli/interrupt.h"
#include "simulator/cli/query_mistakes.h"
#include "simulator/cli/result_table.h"
#include "simulator/cli/tasks.h"
#include "simulator/cli/text_width.h"
#include "simulator/cli/value_text.h"
#include "simulator/macos/control/gathering.h"

namespace sim::cli {
namespace {

using host::Host;
using host::Object;

// How long the run loop may sleep before the program looks whether it was interrupted.
constexpr double kPatience = 0.1;
// Of the words that lines of the output begin with.
constexpr size_t kHeadWidth = 10;

Object MakeQuery(Host &host, const std::string &text) {
    Object query = host.Create("MDQueryQTX");
    const auto nameAndPath = host.NewArray("string", {host.Shared<std::string>("MDItemQTX", "kMDItemFSName"),
                                                      host.Shared<std::string>("MDItemQTX", "kMDItemPath")});
    query.Call<void>("Constructor", text, host.NewArray("string"), nameAndPath);
    if (query.Get<int32_t>("Handle") == 0)
        throw UsageError(ExplainMistake(text));
    return query;
}

// Batches that suit somebody who is watching: the first results soon, then in large portions, changes at once.
void SetBatches(Object &query) {
    Object batches = query.Get<Object>("BatchingParameters");
    for (const auto &[property, value] :
         std::initializer_list<std::pair<const char *, int32_t>>{{"firstMaxNum", 100},
                                                                 {"firstMaxMS", 250},
                                                                 {"progressMaxNum", 10000},
                                                                 {"progressMaxMS", 500},
                                                                 {"updateMaxNum", 10000},
                                                                 {"updateMaxMS", 250}})
        batches.Set(property, value);
    query.Set("BatchingParameters", batches);
}

void Execute(Host &host, Object &query, const std::filesystem::path &folder) {
    const Object folders = host.NewArray("folderitem", {host.NewFolderItem(folder.string())});
    query.Call<void>("SetSearchScope", folders, host.NewArray("string"));
    if (!query.Call<bool>("Execute", host.Constant("MDQueryQTX", "kMDQueryWantsUpdates")))
        throw std::runtime_error("the query could not be executed");
}

void PrintLine(const Screen &screen, const std::string &head, const std::string &text, Style style = Style::kBold) {
    screen.Line(screen.Styled(PaddedRight(head, kHeadWidth), style) + screen.FittedBehind(kHeadWidth, Printable(text)));
}

// The host's age, and what the plugin made of it: the layout of the records that it declared itself with.
std::string HostText(const Host &host, const Options &options) {
    return AgeText(options.hostVersion) + ", records of version " + ValueText(host.Arrived().classes.front().version);
}

void PrintHeading(Host &host, const Options &options, const Screen &screen) {
    PrintLine(screen, "Query", options.query);
    PrintLine(screen, "Folder", options.folder.string());
    PrintLine(screen, "Host", HostText(host, options));
    for (const std::string &note : UnknownAttributes(host, options.query))
        PrintLine(screen, "Note", note, Style::kYellow);
}

// What a search had to leave out.
void PrintLeftOut(const Screen &screen) {
    const macos::GatheringCounts &counts = macos::CountsOfGathering();
    if (counts.unreadableFolders > 0)
        PrintLine(screen, "Note", CountText(counts.unreadableFolders, "folder", "folders") + " could not be read",
                  Style::kYellow);
    if (counts.unnameable > 0)
        PrintLine(screen, "Note",
                  CountText(counts.unnameable, "name that is", "names that are") +
                      " no UTF-8 left out, as no Mac has such",
                  Style::kYellow);
}

} // namespace

int RunQuery(Session &session, const Options &options, const Output &output) {
    Host &host = session.Host();
    const Screen &screen = output.notes;
    const InterruptWatch watch;

    Object query = MakeQuery(host, options.query);
    PrintHeading(host, options, screen);
    SetBatches(query);
    EventLog log(host, query, options.folder, screen);
    const auto workUntil = [&](const auto &isDone) {
        while (!isDone() && !watch.IsInterrupted()) {
            session.RunLoop(kPatience);
            host.RethrowFromHandlers();
            log.Tick();
        }
    };
    Execute(host, query, options.folder);
    workUntil([&] { return log.HasFinished(); });
    if (!log.HasFinished())
        log.EndProgress();
    PrintLeftOut(screen);
    if (!log.HasFinished())
        screen.Line(screen.Rewind() +
                    screen.FittedBehind(0, "Interrupted: the search is not complete. Found until then:"));
    PrintResults(host, query, options, output);
    if (!log.HasFinished()) {
        query.Call<void>("Stop");
        return watch.Signal();
    }

    if (options.live || (output.results.IsTerminal() && !options.once)) {
        log.RememberResults();
        screen.Line();
        screen.Line(screen.Styled(
            screen.FittedBehind(0, "Live. Every change in the folder shows here, at its time (GMT); Ctrl-C ends."),
            Style::kDim));
        workUntil([] { return false; });
    }
    query.Call<void>("Stop");
    if (watch.IsInterrupted())
        screen.Line(screen.Rewind() + "Stopped after " + CountText(log.UpdateCount(), "update", "updates") + ".");
    return 0;
}

} // namespace sim::cli
