#include "simulator/host/runtime/events.h"

#include "simulator/host/ground/stop.h"
#include "simulator/host/runtime/plugin_values.h"
#include "simulator/host/runtime/runtime.h"

#include <array>
#include <utility>

namespace sim::host {

namespace {

constexpr size_t kSlots = 32;
constexpr size_t kMaxWords = 8;

// What the many handlers have in common, compiled once.
[[gnu::noinline]] void Relay(size_t slot, void *object, const uint32_t *words) {
    Runtime::Current().events.Deliver(slot, object, words);
}

template <size_t> using OneWord = uint32_t;

template <size_t slot, class Indices> struct Handler;

template <size_t slot, size_t... index> struct Handler<slot, std::index_sequence<index...>> {
    static void Call(void *object, OneWord<index>... words) {
        const std::array<uint32_t, sizeof...(words) + 1> all = {words..., 0};
        Relay(slot, object, all.data());
    }
};

using Pool = std::array<std::array<Function, kMaxWords + 1>, kSlots>;

template <size_t slot, size_t... words> void FillRow(Pool &pool, std::index_sequence<words...>) {
    ((pool[slot][words] = reinterpret_cast<Function>(&Handler<slot, std::make_index_sequence<words>>::Call)), ...);
}

template <size_t... slots> Pool MakePool(std::index_sequence<slots...>) {
    Pool pool = {};
    (FillRow<slots>(pool, std::make_index_sequence<kMaxWords + 1>()), ...);
    return pool;
}

const Pool &HandlerPool() {
    static const Pool pool = MakePool(std::make_index_sequence<kSlots>());
    return pool;
}

} // namespace

Function Events::HandlerFor(Instance &object, uint32_t identifier) {
    const Class &itsClass = object.GetClass();
    for (size_t event = 0; event < itsClass.events.size(); ++event) {
        if (itsClass.events[event].identifier != identifier)
            continue;
        if (!object.handlers.contains(event))
            return nullptr;
        size_t slot = 0;
        while (slot < slots_.size() && !(slots_[slot].itsClass == &itsClass && slots_[slot].event == event))
            ++slot;
        size_t words = itsClass.events[event].declaration.Words();
        if (slot == kSlots || words > kMaxWords)
            Stop("more events, or more arguments of one, than the pool of handlers has room for");
        if (slot == slots_.size())
            slots_.push_back({&itsClass, event});
        return HandlerPool()[slot][words];
    }
    Stop("GetEventInstance was asked for an event that " + itsClass.name + " does not have");
}

void Events::Deliver(size_t slot, void *object, const uint32_t *words) {
    auto &instance = Runtime::Current().heap.Require<Instance>(object, "the object of an event");
    const Declaration &declaration = slots_[slot].itsClass->events[slots_[slot].event].declaration;
    if (&instance.GetClass() != slots_[slot].itsClass)
        Stop("the event " + declaration.name + " was raised on " + instance.Describe());
    auto handler = instance.handlers.find(slots_[slot].event);
    if (handler == instance.handlers.end())
        Stop("the event " + declaration.name + " was raised on " + instance.Describe() + ", which does not handle it");
    Places::During during(Runtime::Current().heap.places, instance.ClassName() + "'s event " + declaration.name);
    std::vector<Value> arguments;
    for (const Parameter &parameter : declaration.parameters) {
        arguments.push_back(ValueFromWords(parameter.type, words, false));
        words += parameter.type.Words();
    }
    const HeardCall heard(Runtime::Current().heap.places.listener, Callee::kHandler,
                          [&] { return instance.Describe() + "." + declaration.name + ArgumentsText(arguments); });
    // A copy: the handler may replace itself. What it throws must not pass through the plugin.
    Instance::EventFunction function = handler->second;
    try {
        function(instance, declaration.name, std::move(arguments));
    } catch (...) {
        if (!failure_)
            failure_ = std::current_exception();
    }
}

void Events::RethrowFailure() {
    if (failure_)
        std::rethrow_exception(std::exchange(failure_, nullptr));
}

} // namespace sim::host
