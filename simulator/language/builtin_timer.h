// Timer: raises Action after Period milliseconds, once or again and again, while the event loop runs.
#pragma once

#include "simulator/host/classes/instance.h"
#include "simulator/language/execution.h"

namespace sim::language {

class TimerInstance : public host::Instance {
public:
    using Instance::Instance;

    enum Mode : int32_t { kOff = 0, kSingle = 1, kMultiple = 2 };

    void Enlist(Execution &execution);
    void Die() override;

    bool IsDue() const { return mode_ != kOff; }
    CFAbsoluteTime Due() const { return due_; }
    int32_t GetMode() const { return mode_; }
    int32_t GetPeriod() const { return period_; }
    /// Each begins the waiting anew.
    void SetMode(int32_t mode);
    void SetPeriod(int32_t milliseconds);
    void Restart();
    void SetHandler(Handler handler) { handler_ = std::move(handler); }

    void Fire(const host::Object &self, CFAbsoluteTime now);

private:
    Execution *execution_ = nullptr;
    Handler handler_;
    int32_t mode_ = kOff;
    int32_t period_ = 1000;
    CFAbsoluteTime due_ = 0;
};

TimerInstance &TimerAt(const host::Object &object);

const struct BuiltInClass &TimerClass();
/// Its event, which takes nothing.
EventSymbol TimerAction();

} // namespace sim::language
