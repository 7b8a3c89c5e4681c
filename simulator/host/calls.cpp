#include "simulator/host/calls.h"

#include "simulator/host/overloads.h"
#include "simulator/host/runtime.h"
#include "simulator/host/stop.h"
#include "simulator/host/text.h"

#include <bit>
#include <cstring>
#include <utility>

namespace sim::host {

namespace {

constexpr Word kStandardAccessor = 0xFFFFFFFF;
/// More than any declaration needs. Words that a function does not declare lie beyond what it looks at.
constexpr size_t kMaxWords = 16;

Word WordOf(const void *address) { return static_cast<Word>(reinterpret_cast<uintptr_t>(address)); }

/// The words of one call, and the references that the caller holds while it lasts.
class Frame {
public:
    Frame() = default;
    Frame(const Frame &) = delete;
    Frame &operator=(const Frame &) = delete;

    ~Frame() {
        for (Entity *entity : held_)
            Runtime::Current().heap.Unlock(*entity);
    }

    void PushWord(Word word) {
        if (count_ == kMaxWords)
            Stop("a call needs more than " + std::to_string(kMaxWords) + " words, which is not modelled");
        words_[count_++] = word;
    }

    void PushInstance(Entity *instance) {
        if (!instance)
            return;
        Runtime::Current().heap.Lock(*instance);
        held_.push_back(instance);
        PushWord(WordOf(instance->address));
    }

    void Push(const Value &given, const Type &type) {
        Value value = Widen(given, type);
        if (type.IsCounted()) {
            PushCounted(value, type);
            return;
        }
        if (value.Is<bool>())
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

    template <class Result> __attribute__((no_sanitize("function"))) Result Call(Word function) const {
        return CallWith<Result>(function, std::make_index_sequence<kMaxWords>());
    }

private:
    void PushTwo(uint64_t value) {
        PushWord(static_cast<Word>(value));
        PushWord(static_cast<Word>(value >> 32));
    }

    void PushCounted(const Value &value, const Type &type) {
        Runtime &runtime = Runtime::Current();
        Entity *entity = nullptr;
        if (!value.IsNil())
            entity = type.kind == TypeKind::kString && !type.isArray ? &runtime.NewString(value.As<Text>())
                                                                     : runtime.Box(value);
        if (entity)
            held_.push_back(entity);
        PushWord(WordOf(entity ? entity->address : nullptr));
    }

    template <class Result, size_t... index>
    __attribute__((no_sanitize("function"))) Result CallWith(Word function, std::index_sequence<index...>) const {
        using Shape = Result (*)(decltype(static_cast<void>(index), Word())...);
        return reinterpret_cast<Shape>(static_cast<uintptr_t>(function))(words_[index]...);
    }

    Word words_[kMaxWords] = {};
    size_t count_ = 0;
    std::vector<Entity *> held_;
};

Value CallFor(const Type &result, const Frame &frame, Word function) {
    if (result.kind == TypeKind::kNone) {
        frame.Call<void>(function);
        return nullptr;
    }
    Word words[2] = {};
    if (!result.isArray && result.kind == TypeKind::kInt64) {
        int64_t value = frame.Call<int64_t>(function);
        std::memcpy(words, &value, sizeof value);
    } else if (!result.isArray && result.kind == TypeKind::kDouble) {
        double value = frame.Call<double>(function);
        std::memcpy(words, &value, sizeof value);
    } else if (!result.isArray && result.kind == TypeKind::kSingle) {
        float value = frame.Call<float>(function);
        std::memcpy(words, &value, sizeof value);
    } else {
        words[0] = frame.Call<Word>(function);
    }
    return ValueFromWords(result, words, true);
}

/// One call of the program: what happens in it bears its name, and what its event handlers threw comes out of the
/// outermost one.
class ProgramCall {
public:
    explicit ProgramCall(const std::string &what) : during_(what) { ++Runtime::Current().depth; }
    ProgramCall(const ProgramCall &) = delete;
    ProgramCall &operator=(const ProgramCall &) = delete;
    ~ProgramCall() { --Runtime::Current().depth; }

    void Finish() {
        if (Runtime::Current().depth == 1)
            Runtime::Current().events.RethrowFailure();
    }

private:
    Runtime::During during_;
};

void RequireInstanceOf(const Type &type, const Entity &entity, const std::string &what) {
    if (type.kind != TypeKind::kObject || EqualIgnoringCase(type.name, "object"))
        return;
    const Class *wanted = Runtime::Current().classes.Find(type.name);
    auto *instance = dynamic_cast<const Instance *>(&entity);
    if (!wanted || !instance || !instance->GetClass().IsA(*wanted))
        Stop("the plugin gave " + entity.Describe() + " as " + what);
}

/// A plugin knows two kinds of arrays only; what an array of objects holds shows when it is declared.
void RequireArrayOf(const Type &type, ArrayEntity &array) {
    bool bare = EqualIgnoringCase(array.TypeName(), "variant");
    if (array.Kind() != ElementKindOf(type.name) || (!bare && !EqualIgnoringCase(array.TypeName(), type.name)))
        Stop("the plugin gave " + array.Describe() + " as " + type.Describe());
    for (int32_t index = 0; array.Kind() == ElementKind::kObject && index < array.Count(); ++index)
        if (Entity *element = array.Held(index))
            RequireInstanceOf(type, *element, "an element of " + type.Describe());
    if (bare)
        array.DeclareAs(type.name);
}

Value CountedFromHandle(const Type &type, const void *handle, bool owned) {
    if (!handle)
        return nullptr;
    Runtime &runtime = Runtime::Current();
    Entity &entity = runtime.heap.At(handle, "a value from the plugin");
    Value value;
    if (type.isArray) {
        RequireArrayOf(type, runtime.heap.Require<ArrayEntity>(handle, "an array from the plugin"));
        value = Object::Share(&entity);
    } else if (type.kind == TypeKind::kString) {
        value = runtime.heap.Require<StringEntity>(handle, "a string from the plugin").GetText();
    } else {
        RequireInstanceOf(type, entity, type.Describe());
        value = runtime.Unbox(&entity);
    }
    if (owned)
        runtime.heap.Unlock(entity);
    return value;
}

Value StandardGet(const Property &property, Instance &instance) {
    Word words[2];
    std::memcpy(words, instance.Data() + property.param, property.type.Words() * sizeof(Word));
    return ValueFromWords(property.type, words, false);
}

void StandardSet(const Property &property, Instance &instance, const Value &given) {
    Runtime &runtime = Runtime::Current();
    std::byte *field = instance.Data() + property.param;
    Value value = Widen(given, property.type);
    if (!property.type.IsCounted()) {
        if (property.type.kind != TypeKind::kInt32)
            Stop("a stored property of type " + property.type.name + " is not modelled");
        int32_t number = value.As<int32_t>();
        std::memcpy(field, &number, sizeof number);
        return;
    }
    bool isText = property.type.kind == TypeKind::kString && !value.IsNil();
    Entity *entity = isText ? &runtime.NewString(value.As<Text>()) : runtime.Box(value);
    void *before = nullptr;
    std::memcpy(&before, field, sizeof before);
    void *handle = entity ? entity->address : nullptr;
    std::memcpy(field, &handle, sizeof handle);
    if (before)
        runtime.heap.Unlock(runtime.heap.At(before, "a stored property"));
}

void RequireInside(const Property &property, const Instance &instance) {
    size_t end = static_cast<size_t>(property.param) + property.type.Words() * sizeof(Word);
    if (property.param < 0 || end > instance.DataSize())
        Stop("the property " + property.name + " lies outside the data of " + instance.Describe());
}

} // namespace

Value ValueFromWords(const Type &type, const Word *words, bool owned) {
    if (type.IsCounted())
        return CountedFromHandle(type, reinterpret_cast<const void *>(static_cast<uintptr_t>(words[0])), owned);
    uint64_t two = 0;
    switch (type.kind) {
    case TypeKind::kBoolean:
        return (words[0] & 0xFF) != 0;
    case TypeKind::kInt32:
        return static_cast<int32_t>(words[0]);
    case TypeKind::kUInt32:
        return words[0];
    case TypeKind::kSingle:
        return std::bit_cast<float>(words[0]);
    case TypeKind::kColor:
        return Color{words[0]};
    case TypeKind::kInt64:
        std::memcpy(&two, words, sizeof two);
        return static_cast<int64_t>(two);
    case TypeKind::kDouble:
        std::memcpy(&two, words, sizeof two);
        return std::bit_cast<double>(two);
    default:
        return nullptr;
    }
}

Value CallMethod(const std::string &owner, const Method &method, Entity *self, std::vector<Value> arguments) {
    const Declaration &declaration = method.declaration;
    ProgramCall call(owner + "." + declaration.text);
    Value result;
    {
        Frame frame;
        frame.PushInstance(self);
        for (size_t index = 0; index < declaration.parameters.size(); ++index) {
            const Parameter &parameter = declaration.parameters[index];
            frame.Push(index < arguments.size() ? arguments[index] : *parameter.preset, parameter.type);
        }
        result = CallFor(declaration.result, frame, method.function);
    }
    call.Finish();
    return result;
}

void CallSetter(const std::string &owner, const Method &method, Entity *self, const Value &value) {
    const Declaration &declaration = method.declaration;
    if (!Distance(value, declaration.result))
        throw ProgramError(owner + "." + declaration.text + " does not take " + value.Describe());
    ProgramCall call(owner + "." + declaration.text + " = ");
    {
        Frame frame;
        frame.PushInstance(self);
        frame.Push(value, declaration.result);
        frame.Call<void>(method.setterFunction);
    }
    call.Finish();
}

Value GetProperty(const Property &property, Instance &instance) {
    if (property.getter == kStandardAccessor) {
        RequireInside(property, instance);
        return StandardGet(property, instance);
    }
    ProgramCall call(instance.ClassName() + "." + property.name);
    Value result;
    {
        Frame frame;
        frame.PushInstance(&instance);
        frame.PushWord(static_cast<Word>(property.param));
        result = CallFor(property.type, frame, property.getter);
    }
    call.Finish();
    return result;
}

void SetProperty(const Property &property, Instance &instance, const Value &value) {
    std::string what = instance.ClassName() + "." + property.name;
    if (!property.setter)
        throw ProgramError(what + " is read-only");
    if (!Distance(value, property.type))
        throw ProgramError(what + " as " + property.type.name + " does not take " + value.Describe());
    if (property.setter == kStandardAccessor) {
        RequireInside(property, instance);
        return StandardSet(property, instance, value);
    }
    ProgramCall call(what + " = ");
    {
        Frame frame;
        frame.PushInstance(&instance);
        frame.PushWord(static_cast<Word>(property.param));
        frame.Push(value, property.type);
        frame.Call<void>(property.setter);
    }
    call.Finish();
}

void RequireElementFits(const ArrayEntity &array, const Value &value) {
    if (!Distance(value, ParseType(array.TypeName())))
        throw ProgramError("an array of " + array.TypeName() + " does not take " + value.Describe());
}

} // namespace sim::host
