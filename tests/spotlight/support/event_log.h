// The events of one query as its handlers receive them, in their order.
#pragma once

#include "tests/spotlight/support/query_program.h"

#include <doctest/doctest.h>

#include <functional>

namespace tests {

struct Event {
    std::string name;
    Names added = {};
    Names changed = {};
    Names removed = {};

    bool operator==(const Event &) const = default;
};

using Events = std::vector<Event>;

/// Handles all three events of a query for as long as it lives. The query object must outlive it or have been dropped
/// before, by itself.
class EventLog {
public:
    explicit EventLog(const Object &query, std::function<void(const EventCall &)> then = {}) : then_(std::move(then)) {
        for (const char *event : {"Progress", "Finish", "Update"})
            query.OnEvent(event, [this](const EventCall &call) { Hear(call); });
    }
    EventLog(const EventLog &) = delete;
    EventLog &operator=(const EventLog &) = delete;

    Events heard;

    /// What was heard since the last question.
    Events Take() { return std::exchange(heard, {}); }
    int CountOf(const std::string &name) const;

private:
    void Hear(const EventCall &call);

    std::function<void(const EventCall &)> then_;
};

inline Event Progress(Names added = {}, Names changed = {}, Names removed = {}) {
    return {"Progress", std::move(added), std::move(changed), std::move(removed)};
}
inline Event Finish() { return {"Finish"}; }
inline Event Update(Names added, Names changed = {}, Names removed = {}) {
    return {"Update", std::move(added), std::move(changed), std::move(removed)};
}

/// Posts a notification as the framework would, with a name and user info of the test's choice.
void Post(CFStringRef name, const Object &query, CFDictionaryRef userInfo = nullptr);

} // namespace tests

namespace doctest {

template <> struct StringMaker<tests::Event> { static String convert(const tests::Event &event); };

} // namespace doctest
