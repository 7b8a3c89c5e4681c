#include "simulator/cli/event_log.h"

#include "simulator/cli/result_table.h"
#include "simulator/cli/text_width.h"
#include "simulator/cli/value_text.h"

#include <array>
#include <cstdio>
#include <utility>

namespace sim::cli {
namespace {

using host::EventCall;
using host::Object;

constexpr size_t kEventWidth = 10;
/// More names than these of one kind are only counted.
constexpr size_t kShownNames = 20;

std::string CountText(size_t count, const char *one, const char *many) {
    return ValueText(static_cast<int64_t>(count)) + " " + (count == 1 ? one : many);
}

std::string SecondsText(double seconds) {
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), seconds < 1 ? "%.1f ms" : "%.1f s", seconds < 1 ? seconds * 1000 : seconds);
    return text.data();
}

std::vector<Object> ItemsIn(const EventCall &call, size_t index) {
    return call.arguments.at(index).As<Object>().As<Object>();
}

} // namespace

EventLog::EventLog(Object query, const Screen &screen) : query_(std::move(query)), screen_(screen) {
    query_.OnEvent("Progress", [this](const EventCall &call) { OnChanges(call); });
    query_.OnEvent("Finish", [this](const EventCall &) { OnFinish(); });
    query_.OnEvent("Update", [this](const EventCall &call) { OnChanges(call); });
}

EventLog::~EventLog() {
    for (const char *event : {"Progress", "Finish", "Update"})
        query_.RemoveEvent(event);
}

void EventLog::RememberResults() {
    for (Object &item : query_.Call<Object>("Results").As<Object>()) {
        const auto handle = item.Get<int32_t>("Handle");
        std::string name = NameOf(item);
        known_.insert_or_assign(handle, Known{std::move(item), std::move(name)});
    }
}

void EventLog::OnChanges(const EventCall &call) {
    const bool isUpdate = call.name == "Update";
    updateCount_ += isUpdate;
    screen_.Write(Head(call.name, isUpdate ? Style::kCyan : Style::kDim) + Counts(call) + "\n" + Changes(call));
}

void EventLog::OnFinish() {
    hasFinished_ = true;
    const auto results = static_cast<size_t>(query_.Get<int32_t>("ResultCount"));
    std::string text = CountText(results, "result", "results");
    if (screen_.IsTerminal()) {
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin_;
        text += " in " + SecondsText(taken.count());
    }
    screen_.Line(Head("Finish", Style::kGreen) + text);
}

std::string EventLog::Head(const std::string &event, Style style) const {
    return screen_.Styled(PaddedRight(event, kEventWidth), style);
}

std::string EventLog::Counts(const EventCall &call) const {
    constexpr std::array kWords = {"added", "changed", "removed"};
    std::string text;
    for (size_t i = 0; i < kWords.size(); ++i) {
        const int32_t count = call.arguments.at(i).As<Object>().UpperBound() + 1;
        text += screen_.Styled(ValueText(count) + " " + kWords[i], count == 0 ? Style::kDim : Style::kBold) +
                (i + 1 < kWords.size() ? ", " : "; ");
    }
    const auto results = static_cast<size_t>(query_.Get<int32_t>("ResultCount"));
    return text + CountText(results, "result", "results") + (hasFinished_ ? "" : " so far");
}

std::string EventLog::Changes(const EventCall &call) {
    struct Kind {
        const char *sign;
        Style style;
        std::string (EventLog::*text)(const Object &item);
    };
    constexpr std::array kKinds = {Kind{"+", Style::kGreen, &EventLog::Added},
                                   Kind{"~", Style::kYellow, &EventLog::Changed},
                                   Kind{"-", Style::kRed, &EventLog::Removed}};
    std::string text;
    for (size_t i = 0; i < kKinds.size(); ++i) {
        const auto [sign, style, textOf] = kKinds[i];
        const auto addLine = [&, sign = sign, style = style](const std::string &what) {
            text += std::string(kEventWidth, ' ') + screen_.Styled(std::string(sign) + " " + what, style) + "\n";
        };
        const std::vector<Object> items = ItemsIn(call, i);
        for (size_t shown = 0; shown < items.size(); ++shown) {
            const std::string name = (this->*textOf)(items[shown]); // every item is taken note of, printed or not
            if (shown < kShownNames)
                addLine(Printable(name));
        }
        if (items.size() > kShownNames)
            addLine("… and " + ValueText(static_cast<int64_t>(items.size() - kShownNames)) + " more");
    }
    return text;
}

std::string EventLog::NameNow(const Object &item) const {
    std::string name = NameOf(item);
    return name.empty() ? "(no name)" : name;
}

std::string EventLog::Added(const Object &item) {
    std::string name = NameNow(item);
    known_.insert_or_assign(item.Get<int32_t>("Handle"), Known{item, name});
    return name;
}

std::string EventLog::Changed(const Object &item) {
    const std::string name = NameNow(item);
    Known &known = known_[item.Get<int32_t>("Handle")];
    const std::string before = std::exchange(known.name, name);
    known.item = item;
    return before.empty() || before == name ? name : before + " → " + name;
}

std::string EventLog::Removed(const Object &item) {
    const auto known = known_.extract(item.Get<int32_t>("Handle"));
    return known ? known.mapped().name : NameNow(item);
}

} // namespace sim::cli
