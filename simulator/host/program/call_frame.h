// One call into the plugin: the words on the stack, the references that the caller holds while it lasts, and the
// registers that the result comes back in.
#pragma once

#include "simulator/host/runtime/runtime.h"

namespace sim::host {

class Frame {
public:
    Frame() = default;
    Frame(const Frame &) = delete;
    Frame &operator=(const Frame &) = delete;
    ~Frame();

    void PushWord(Word word);
    /// The instance that a method belongs to; nothing for null.
    void PushInstance(Entity *instance);
    /// An argument of a declared type, widened to it.
    void Push(const Value &given, const Type &type);

    /// Calls the function and reads the result of a declared type; a counted one is adopted.
    Value Call(Word function, const Type &result) const;

private:
    /// More than any declaration needs. Words that a function does not declare lie beyond what it looks at.
    static constexpr size_t kMaxWords = 16;

    void PushTwo(uint64_t value);
    void PushCounted(const Value &value, const Type &type);
    template <class Result> Result CallAs(Word function) const;

    Word words_[kMaxWords] = {};
    size_t count_ = 0;
    std::vector<Entity *> held_;
};

/// A call of the program, while it is under way: what happens in it bears its name, and what its event handlers threw
/// comes out of the outermost one.
class ProgramCall {
public:
    explicit ProgramCall(const std::string &what);
    ProgramCall(const ProgramCall &) = delete;
    ProgramCall &operator=(const ProgramCall &) = delete;
    ~ProgramCall();

    void Finish();

private:
    Places::During during_;
};

} // namespace sim::host
