#include "simulator/cli/event_log.h"
#include "simulator/cli/interrupt.h"
#include "simulator/cli/result_table.h"
#include "simulator/cli/tasks.h"
#include "simulator/cli/text_width.h"
#include "simulator/cli/value_text.h"

namespace sim::cli {
namespace {

using host::Host;
using host::Object;

// How long the run loop may sleep before the program looks whether it was interrupted.
constexpr double kPatience = 0.1;

Object MakeQuery(Host &host, const std::string &text) {
    Object query = host.Create("MDQueryQTX");
    const auto nameAndPath = host.NewArray("string", {host.Shared<std::string>("MDItemQTX", "kMDItemFSName"),
                                                      host.Shared<std::string>("MDItemQTX", "kMDItemPath")});
    query.Call<void>("Constructor", text, host.NewArray("string"), nameAndPath);
    if (query.Get<int32_t>("Handle") == 0)
        throw UsageError("\"" + text + "\" is no query; one looks like kMDItemFSName == \"*.txt\"");
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

void PrintHeading(const Options &options, const Screen &screen) {
    constexpr size_t kWidth = 10;
    for (const auto &[what, text] :
         {std::pair<std::string, std::string>{"Query", options.query}, {"Folder", options.folder.string()}})
        screen.Line(screen.Styled(PaddedRight(what, kWidth), Style::kBold) + Printable(text));
}

} // namespace

void RunQuery(Session &session, const Options &options, const Screen &screen) {
    Host &host = session.Host();
    const InterruptWatch watch;
    const auto workUntil = [&](const auto &isDone) {
        while (!isDone() && !watch.IsInterrupted()) {
            session.RunLoop(kPatience);
            host.RethrowFromHandlers();
        }
    };

    Object query = MakeQuery(host, options.query);
    PrintHeading(options, screen);
    SetBatches(query);
    EventLog log(query, screen);
    Execute(host, query, options.folder);
    workUntil([&] { return log.HasFinished(); });
    if (log.HasFinished())
        PrintResults(host, query, options.limit, screen);

    if (log.HasFinished() && (options.live || (screen.IsTerminal() && !options.once))) {
        log.RememberResults();
        screen.Line();
        screen.Line(screen.Styled("Live. Every change in the folder shows here; Ctrl-C ends.", Style::kDim));
        workUntil([] { return false; });
    }
    query.Call<void>("Stop");
    if (watch.IsInterrupted()) {
        const auto updates = static_cast<int64_t>(log.UpdateCount());
        // A terminal shows the ^C that was typed; the carriage return writes over it.
        screen.Line((screen.IsTerminal() ? "\r" : "") +
                    ("Stopped after " + ValueText(updates) + (updates == 1 ? " update." : " updates.")));
    }
}

} // namespace sim::cli
