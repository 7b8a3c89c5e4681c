// Prints a query's events as they arrive, with what they bring. Keeps the names of the results it has seen, since a
// removed item can no longer tell its own.
#pragma once

#include "simulator/cli/screen.h"
#include "simulator/host/host.h"

#include <chrono>
#include <map>
#include <string>

namespace sim::cli {

class EventLog {
public:
    /// Takes the query's three events. Both must outlive their use by the query; Detach ends that.
    EventLog(host::Object query, const Screen &screen);
    EventLog(const EventLog &) = delete;
    EventLog &operator=(const EventLog &) = delete;
    ~EventLog();

    bool HasFinished() const { return hasFinished_; }
    size_t UpdateCount() const { return updateCount_; }

    /// Learns the names of all present results, which also lets the query tell when one of them goes.
    void RememberResults();

private:
    /// A result and its name when it was last seen. Holding the item keeps its reference from being given away again.
    struct Known {
        host::Object item;
        std::string name;
    };

    void OnChanges(const host::EventCall &call);
    void OnFinish();
    std::string Head(const std::string &event, Style style) const;
    std::string Counts(const host::EventCall &call) const;
    std::string Changes(const host::EventCall &call);
    std::string NameNow(const host::Object &item) const;
    std::string Added(const host::Object &item);
    std::string Changed(const host::Object &item);
    std::string Removed(const host::Object &item);

    host::Object query_;
    const Screen &screen_;
    std::map<int32_t, Known> known_; // by the item's handle
    bool hasFinished_ = false;
    size_t updateCount_ = 0;
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

} // namespace sim::cli
