#include "simulator/language/builtin_timer.h"

#include "simulator/language/builtin.h"
#include "simulator/language/program_object.h"
#include "simulator/macos/control/clock.h"

#include <algorithm>

namespace sim::language {

namespace {

host::Object MakeTimer(Execution &execution, const ClassSymbol &exact) {
    host::Object timer = MakeInstance<TimerInstance>(execution, exact);
    TimerAt(timer).Enlist(execution);
    return timer;
}

constexpr FunctionRow kTimerFunctions[] = {
    {"Reset",
     [](Call &call) -> host::Value {
         TimerAt(call.self).Restart();
         return {};
     }},
};

constexpr PropertyRow kTimerProperties[] = {
    {"Period As Integer", [](Call &call) -> host::Value { return TimerAt(call.self).GetPeriod(); },
     [](Call &call) -> host::Value {
         TimerAt(call.self).SetPeriod(IntegerAt(call, 0));
         return {};
     }},
    {"Mode As Integer", [](Call &call) -> host::Value { return TimerAt(call.self).GetMode(); },
     [](Call &call) -> host::Value {
         TimerAt(call.self).SetMode(IntegerAt(call, 0));
         return {};
     }},
};

} // namespace

void TimerInstance::Enlist(Execution &execution) {
    execution_ = &execution;
    execution.Enter(*this);
}

void TimerInstance::Die() {
    if (execution_)
        execution_->Leave(*this);
    handler_ = {};
    Instance::Die();
}

void TimerInstance::SetMode(int32_t mode) {
    mode_ = std::clamp<int32_t>(mode, kOff, kMultiple);
    Restart();
}

void TimerInstance::SetPeriod(int32_t milliseconds) {
    period_ = std::max(milliseconds, 1);
    Restart();
}

void TimerInstance::Restart() { due_ = macos::CurrentClock().Now() + period_ / 1000.0; }

void TimerInstance::Fire(const host::Object &self, CFAbsoluteTime now) {
    due_ = now + period_ / 1000.0;
    if (mode_ == kSingle)
        mode_ = kOff;
    // A copy: the handler may put another in its place.
    const Handler handler = handler_;
    if (handler)
        handler(self, {});
}

TimerInstance &TimerAt(const host::Object &object) { return dynamic_cast<TimerInstance &>(*object.Get()); }

const BuiltInClass &TimerClass() {
    static constexpr const char *kConstants[] = {"ModeOff=0", "ModeSingle=1", "ModeMultiple=2"};
    static constexpr BuiltInClass row{"Timer", nullptr, MakeTimer, kTimerFunctions, kTimerProperties, kConstants};
    return row;
}

EventSymbol TimerAction() {
    return {"Action", {}, [](const host::Object &object, Handler handler) {
                TimerAt(object).SetHandler(std::move(handler));
            }};
}

} // namespace sim::language
