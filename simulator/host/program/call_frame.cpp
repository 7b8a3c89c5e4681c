#include "simulator/host/program/call_frame.h"

#include "simulator/host/classes/overloads.h"
#include "simulator/host/ground/stop.h"
#include "simulator/host/runtime/plugin_values.h"

#include <bit>
#include <cstring>
#include <utility>

namespace sim::host {

namespace {

Word WordOf(const void *address) { return static_cast<Word>(reinterpret_cast<uintptr_t>(address)); }

template <class Result, size_t... index>
__attribute__((no_sanitize("function"))) Result CallWords(Word function, const Word *words,
                                                          std::index_sequence<index...>) {
    using Shape = Result (*)(decltype(static_cast<void>(index), Word())...);
    return reinterpret_cast<Shape>(static_cast<uintptr_t>(function))(words[index]...);
}

} // namespace

Frame::~Frame() {
    for (Entity *entity : held_)
        Runtime::Current().heap.Unlock(*entity);
}

void Frame::PushWord(Word word) {
    if (count_ == kMaxWords)
        Stop("a call needs more than " + std::to_string(kMaxWords) + " words, which is not modelled");
    words_[count_++] = word;
}

void Frame::PushInstance(Entity *instance) {
    if (!instance)
        return;
    Runtime::Current().heap.Lock(*instance);
    held_.push_back(instance);
    PushWord(WordOf(instance->address));
}

void Frame::Push(const Value &given, const Type &type) {
    Value value = Widen(given, type);
    if (type.IsCounted())
        PushCounted(value, type);
    else if (value.Is<bool>())
        PushWord(value.As<bool>());
    else if (value.Is<float>())
        PushWord(std::bit_cast<Word>(value.As<float>()));
    else if (value.Is<double>())
        PushTwo(std::bit_cast<uint64_t>(value.As<double>()));
    else if (type.kind == TypeKind::kInt64)
        PushTwo(static_cast<uint64_t>(value.As<int64_t>()));
    else
        PushWord(static_cast<Word>(ToInteger(value)));
}

void Frame::PushTwo(uint64_t value) {
    PushWord(static_cast<Word>(value));
    PushWord(static_cast<Word>(value >> 32));
}

void Frame::PushCounted(const Value &value, const Type &type) {
    Runtime &runtime = Runtime::Current();
    bool isText = type.kind == TypeKind::kString && !type.isArray && !value.IsNil();
    Entity *entity = isText ? &runtime.NewString(value.As<Text>()) : runtime.Box(value);
    if (entity)
        held_.push_back(entity);
    PushWord(WordOf(entity ? entity->address : nullptr));
}

template <class Result> Result Frame::CallAs(Word function) const {
    return CallWords<Result>(function, words_, std::make_index_sequence<kMaxWords>());
}

Value Frame::Call(Word function, const Type &result) const {
    Word words[2] = {};
    auto keep = [&words](auto value) { std::memcpy(words, &value, sizeof value); };
    if (result.kind == TypeKind::kNone)
        CallAs<void>(function);
    else if (!result.isArray && result.kind == TypeKind::kInt64)
        keep(CallAs<int64_t>(function));
    else if (!result.isArray && result.kind == TypeKind::kDouble)
        keep(CallAs<double>(function));
    else if (!result.isArray && result.kind == TypeKind::kSingle)
        keep(CallAs<float>(function));
    else
        keep(CallAs<Word>(function));
    return ValueFromWords(result, words, true);
}

ProgramCall::ProgramCall(const std::string &what) : during_(Runtime::Current().heap.places, what) {
    ++Runtime::Current().depth;
}

ProgramCall::~ProgramCall() { --Runtime::Current().depth; }

void ProgramCall::Finish() {
    if (Runtime::Current().depth == 1)
        Runtime::Current().events.RethrowFailure();
}

} // namespace sim::host
