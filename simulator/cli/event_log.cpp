#include "simulator/cli/event_log.h"

#include "simulator/cli/text_width.h"
#include "simulator/cli/value_text.h"
#include "simulator/macos/control/gathering.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <utility>

namespace sim::cli {
namespace {

using host::EventCall;
using host::Host;
using host::Object;

constexpr size_t kEventWidth = 10;
/// More names than these of one kind are only counted.
constexpr size_t kShownNames = 20;

// How often a count that is written anew in its place is.
constexpr std::chrono::duration<double> kLiveTick{0.1};

std::string SecondsText(double seconds) {
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), seconds < 1 ? "%.1f ms" : "%.1f s", seconds < 1 ? seconds * 1000 : seconds);
    return text.data();
}

// What a clock in Greenwich shows, as all times of the output.
std::string TimeText() {
    const std::time_t now = std::time(nullptr);
    std::tm fields{};
    gmtime_r(&now, &fields);
    std::array<char, 16> text;
    std::strftime(text.data(), text.size(), "%H:%M:%S", &fields);
    return text.data();
}

std::vector<Object> ItemsIn(const EventCall &call, size_t index) {
    return call.arguments.at(index).As<Object>().As<Object>();
}

std::string LookedAt() { return CountText(macos::CountsOfGathering().files, "file", "files") + " looked at"; }

std::string SizeOf(const ItemFacts &facts) { return facts.size.IsNil() ? "none" : SizeText(facts.size.As<int64_t>()); }

} // namespace

EventLog::EventLog(Host &host, Object query, std::filesystem::path folder, const Screen &screen)
    : query_(std::move(query)), folder_(std::move(folder)), screen_(screen), reader_(host) {
    query_.OnEvent("Progress", [this](const EventCall &call) { OnProgress(call); });
    query_.OnEvent("Finish", [this](const EventCall &) { OnFinish(); });
    query_.OnEvent("Update", [this](const EventCall &call) { OnUpdate(call); });
}

EventLog::~EventLog() {
    for (const char *event : {"Progress", "Finish", "Update"})
        query_.RemoveEvent(event);
}

void EventLog::RememberResults() {
    for (Object &item : query_.Call<Object>("Results").As<Object>()) {
        const auto handle = item.Get<int32_t>("Handle");
        ItemFacts facts = reader_.Read(item);
        known_.insert_or_assign(handle, Known{std::move(item), std::move(facts)});
    }
}

void EventLog::Tick() {
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin_;
    if (hasFinished_ || passed < nextTick_)
        return;
    nextTick_ = screen_.CanRewind() ? passed + kLiveTick : 2 * passed;
    PrintProgress();
}

void EventLog::PrintProgress() {
    const auto results = static_cast<size_t>(query_.Get<int32_t>("ResultCount"));
    const std::string text = CountText(results, "result", "results") + " so far, " + LookedAt();
    const std::string line = Head("Progress", Style::kDim) + screen_.FittedBehind(kEventWidth, text);
    showsProgress_ = screen_.CanRewind();
    if (showsProgress_)
        screen_.Write(screen_.Rewind() + line);
    else
        screen_.Line(line);
}

void EventLog::EndProgress() {
    if (showsProgress_)
        screen_.Write(screen_.Rewind());
    showsProgress_ = false;
}

void EventLog::OnProgress(const EventCall &) { PrintProgress(); }

void EventLog::OnFinish() {
    hasFinished_ = true;
    const auto results = static_cast<size_t>(query_.Get<int32_t>("ResultCount"));
    std::string text = CountText(results, "result", "results") + ", " + LookedAt();
    if (screen_.IsTerminal()) {
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin_;
        text += " in " + SecondsText(taken.count());
    }
    EndProgress();
    screen_.Line(Head("Finish", Style::kGreen) + screen_.FittedBehind(kEventWidth, text));
}

void EventLog::OnUpdate(const EventCall &call) {
    ++updateCount_;
    screen_.Write(Head("Update", Style::kCyan) + Counts(call) + "\n" + Changes(call));
}

std::string EventLog::Head(const std::string &event, Style style) const {
    return screen_.Styled(PaddedRight(event, kEventWidth), style);
}

std::string EventLog::Counts(const EventCall &call) const {
    constexpr std::array kWords = {"added", "changed", "removed"};
    std::string text = TimeText() + "  ";
    for (size_t i = 0; i < kWords.size(); ++i)
        text += ValueText(call.arguments.at(i).As<Object>().UpperBound() + 1) + " " + kWords[i] +
                (i + 1 < kWords.size() ? ", " : "; ");
    text += CountText(static_cast<size_t>(query_.Get<int32_t>("ResultCount")), "result", "results");
    return screen_.FittedBehind(kEventWidth, text);
}

std::string EventLog::Changes(const EventCall &call) {
    struct Kind {
        const char *sign;
        Style style;
        std::string (EventLog::*text)(Object &item);
    };
    constexpr std::array kKinds = {Kind{"+", Style::kGreen, &EventLog::Added},
                                   Kind{"~", Style::kYellow, &EventLog::Changed},
                                   Kind{"-", Style::kRed, &EventLog::Removed}};
    std::string text;
    for (size_t i = 0; i < kKinds.size(); ++i) {
        const auto [sign, style, textOf] = kKinds[i];
        const auto addLine = [&, sign = sign, style = style](const std::string &what) {
            const std::string line = std::string(sign) + " " + what;
            text +=
                std::string(kEventWidth, ' ') + screen_.Styled(screen_.FittedBehind(kEventWidth, line), style) + "\n";
        };
        std::vector<Object> items = ItemsIn(call, i);
        for (size_t shown = 0; shown < items.size(); ++shown) {
            const std::string what = (this->*textOf)(items[shown]); // every item is taken note of, printed or not
            if (shown < kShownNames)
                addLine(Printable(what));
        }
        if (items.size() > kShownNames)
            addLine("… and " + ValueText(static_cast<int64_t>(items.size() - kShownNames)) + " more");
    }
    return text;
}

std::string EventLog::PathOf(const ItemFacts &facts) const {
    return facts.path.empty() ? "(no path)" : PathFrom(folder_, facts.path);
}

std::string EventLog::Added(Object &item) {
    ItemFacts facts = reader_.Read(item);
    std::string path = PathOf(facts);
    known_.insert_or_assign(item.Get<int32_t>("Handle"), Known{item, std::move(facts)});
    return path;
}

// The path, and what is different from when the item was last seen.
std::string EventLog::Changed(Object &item) {
    const ItemFacts now = reader_.Read(item);
    Known &known = known_[item.Get<int32_t>("Handle")];
    const ItemFacts before = std::exchange(known.facts, now);
    const bool wasKnown = static_cast<bool>(std::exchange(known.item, item));
    if (!wasKnown)
        return PathOf(now);
    std::string text = before.path == now.path ? PathOf(now) : PathOf(before) + " → " + PathOf(now);
    if (SizeOf(before) != SizeOf(now))
        text += "; size " + SizeOf(before) + " → " + SizeOf(now);
    if (ValueText(before.kind) != ValueText(now.kind))
        text += "; kind " + ValueText(before.kind) + " → " + ValueText(now.kind);
    if (ValueText(before.modified) != ValueText(now.modified))
        text += "; modified " + ValueText(now.modified);
    return text;
}

std::string EventLog::Removed(Object &item) {
    const auto known = known_.extract(item.Get<int32_t>("Handle"));
    return known ? PathOf(known.mapped().facts) : PathOf(reader_.Read(item));
}

} // namespace sim::cli
