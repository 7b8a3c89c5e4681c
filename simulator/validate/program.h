// A host program that a check runs: scripted files, a stand-in host, one loaded library, and everything that happens
// written down in its order: what the program says, what the library calls of the host, what it calls of the system.
#pragma once

#include "simulator/macos/CoreServices/metadata/store/scripted_store.h"
#include "simulator/session/session.h"
#include "simulator/validate/call_tracer.h"
#include "simulator/validate/check.h"

#include <memory>
#include <random>

namespace sim::validate {

class Program {
public:
    /// Loads the library and starts it.
    Program(const Subject &subject, const std::filesystem::path &library, host::HostOptions options);
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    host::Host &Host() { return session_->Host(); }
    macos::ScriptedStore &Store() { return *store_; }
    /// Numbers that are the same for the same seed.
    std::mt19937 &Random() { return random_; }

    void Say(const std::string &what);
    /// A value as text, as deep as it goes.
    std::string TextOf(const host::Value &value);
    /// Does it and says what came of it, or what was raised.
    void Try(const std::string &what, const std::function<host::Value()> &work);

    /// Everything so far, a line each. At the end also what is out of balance: objects must be gone by then.
    std::string Transcript();

private:
    void SayRaised();
    std::string TextOf(const host::Value &value, int depth);

    struct Line {
        size_t hostCalls; // that came before it
        std::string text;
    };

    std::mt19937 random_;
    std::vector<Line> lines_;
    // The other way round when they go: the store first, the listener last.
    std::unique_ptr<CallTracer> tracer_;
    std::unique_ptr<Session> session_;
    std::unique_ptr<macos::ScriptedStore> store_;
};

/// Lines of a transcript that are calls of the host or of the system.
bool IsCall(std::string_view line);

} // namespace sim::validate
