// A checked program while it runs: its variables, its timers, and the ways in which it can end early.
#pragma once

#include "simulator/host/host.h"
#include "simulator/language/symbols.h"

#include <CoreFoundation/CFDate.h>

#include <set>

namespace sim::language {

/// An exception of the program on its way to whoever catches it.
struct Thrown {
    host::Object exception;
    Location where;
};

/// The program was stopped from outside, or took more steps than it may. Nothing in it can catch that.
struct Stopped {};

class TimerInstance;

class Execution {
public:
    struct Limits {
        /// Statements that may run; 0 for any number.
        uint64_t steps = 0;
        /// Asked now and then; true ends the program.
        std::function<bool()> isInterrupted = {};
    };

    /// All are borrowed.
    Execution(host::Host &host, const Symbols &symbols, std::function<void(const std::string &)> print, Limits limits);
    Execution(const Execution &) = delete;
    Execution &operator=(const Execution &) = delete;
    ~Execution();

    host::Host &Host() const { return host_; }
    const Symbols &GetSymbols() const { return symbols_; }
    /// Writes a line.
    void Print(const std::string &line) const { print_(line); }

    /// Before each statement, and each time around a loop.
    void Step();
    /// Throws Stopped when somebody wants the program to end.
    void CheckInterrupt() const;
    /// Before each call of the program's own routines: raises a StackOverflowException in good time.
    void CheckStack(const Location &where);

    [[noreturn]] void Raise(std::string_view className, const std::string &message, const Location &where);
    /// Throws the exception that the plugin raised during the last call, if it did.
    void PassOnRaised(const Location &where);

    host::Object New(const ClassSymbol &itsClass);
    /// Null for what is no instance of a class that programs know.
    const ClassSymbol *ClassOf(const host::Object &object) const;

    void Quit() { quits_ = true; }
    bool Quits() const { return quits_; }

    // Timers.
    void Enter(TimerInstance &timer) { timers_.insert(&timer); }
    void Leave(TimerInstance &timer) { timers_.erase(&timer); }
    /// When the next one is due, in seconds since 2001; nothing when none is.
    std::optional<CFAbsoluteTime> NextTimer() const;
    void FireTimers();

    /// Lets go of every variable and of what objects of the program hold, in circles too.
    void Clear();

    std::vector<host::Value> globals;

private:
    host::Host &host_;
    const Symbols &symbols_;
    std::function<void(const std::string &)> print_;
    Limits limits_;
    uint64_t steps_ = 0;
    const char *stackBase_;
    bool quits_ = false;
    std::set<TimerInstance *> timers_;
};

/// A call of one of the program's routines, or its statements outside any.
struct Frame {
    Execution &execution;
    host::Object self;
    std::vector<host::Value> variables;
    host::Value result = {};
};

/// One with room for that many variables, the first of which are the arguments.
Frame NewFrame(Execution &execution, const host::Object &self, std::vector<host::Value> arguments, size_t slots);

/// What an expression was checked into: it gives a value of the type that the checker found.
using Evaluation = std::function<host::Value(Frame &)>;

/// How a statement ended.
enum class Flow { kOn, kExitFor, kExitWhile, kExitDo, kContinueFor, kContinueWhile, kContinueDo, kReturn };

/// What a statement was checked into.
using Action = std::function<Flow(Frame &)>;

/// Something that may be Nil where it must not be.
const host::Object &RequireObject(const host::Value &value, Execution &execution, const Location &where,
                                  host::Object &keeper);

} // namespace sim::language
