// What the plugin does, call by call: its calls of host services and of the system in the one order in which it makes
// them. Calls that only look (type identifiers, lengths, elements, numbers) are left out, and so are the questions to
// the resolver.
#pragma once

#include "simulator/session/session.h"
#include "tests/support/printed_lists.h"

#include <string>
#include <vector>

namespace tests {

using CallLines = std::vector<std::string>;

class CallLog : private sim::host::CallListener {
public:
    /// Begins to listen. One log at a time.
    explicit CallLog(sim::Session &session);
    CallLog(const CallLog &) = delete;
    CallLog &operator=(const CallLog &) = delete;
    ~CallLog() override;

    /// The calls since the last question, each with its arguments: `REALUnlockString("name")`, `CFRelease("name")`.
    /// Texts are in quotes and the system's lists in brackets; other objects are named by their class or type, and
    /// arrays of the host by their class and the number of their elements: `RuntimeUBound(string()[2])`.
    CallLines Take() { return std::exchange(lines_, {}); }
    /// Those whose function is one of these.
    CallLines Take(const std::vector<std::string> &functions);

    /// What raising an exception of a known class does, beginning with its message.
    static CallLines OfRaising(const std::string &className, const std::string &message);

    /// A mark of the test's own.
    void Note(std::string line) { lines_.push_back(std::move(line)); }

private:
    void Begins(sim::host::Callee callee, const std::string &call) override;

    sim::Session &session_;
    CallLines lines_;
};

} // namespace tests
