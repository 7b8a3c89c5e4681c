// Prints a query's events as they arrive, with what they bring. Keeps what it has seen of the results, since a removed
// item can no longer tell its path, and a changed one no longer what it was.
#pragma once

#include "simulator/cli/item_reader.h"
#include "simulator/cli/screen.h"

#include <chrono>
#include <map>
#include <string>

namespace sim::cli {

class EventLog {
public:
    /// Takes the query's three events, and gives them back at its end. The screen must live as long.
    EventLog(host::Host &host, host::Object query, std::filesystem::path folder, const Screen &screen);
    EventLog(const EventLog &) = delete;
    EventLog &operator=(const EventLog &) = delete;
    ~EventLog();

    bool HasFinished() const { return hasFinished_; }
    size_t UpdateCount() const { return updateCount_; }

    /// Says how far the search is when no event has said so for long: after a quarter of a second, and then each time
    /// that twice as much has passed, or all the time where the line can be written anew.
    void Tick();

    /// Takes back the line of progress that would be written anew.
    void EndProgress();

    /// Learns what all present results are like, which also lets the query tell when one of them goes.
    void RememberResults();

private:
    /// A result as it was when it was last seen. Holding the item keeps its reference from being given away again.
    struct Known {
        host::Object item;
        ItemFacts facts;
    };

    void OnProgress(const host::EventCall &call);
    void OnFinish();
    void OnUpdate(const host::EventCall &call);
    void PrintProgress();
    std::string Head(const std::string &event, Style style) const;
    std::string Counts(const host::EventCall &call) const;
    std::string Changes(const host::EventCall &call);
    std::string PathOf(const ItemFacts &facts) const;
    std::string Added(host::Object &item);
    std::string Changed(host::Object &item);
    std::string Removed(host::Object &item);

    host::Object query_;
    std::filesystem::path folder_;
    const Screen &screen_;
    ItemReader reader_;
    std::map<int32_t, Known> known_; // by the item's handle
    bool hasFinished_ = false;
    bool showsProgress_ = false; // in a line that is not ended
    size_t updateCount_ = 0;
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    std::chrono::duration<double> nextTick_{0.25};
};

} // namespace sim::cli
