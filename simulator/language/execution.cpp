#include "simulator/language/execution.h"

#include "simulator/language/builtin_timer.h"
#include "simulator/language/program_object.h"
#include "simulator/macos/control/clock.h"

#include <algorithm>

namespace sim::language {

namespace {

/// Statements between two looks whether somebody wants the program to end.
constexpr uint64_t kStepsBetweenLooks = 1024;
/// Of the eight megabytes that a process has by default.
constexpr ptrdiff_t kLargestStack = 3 << 20;

} // namespace

Execution::Execution(host::Host &host, const Symbols &symbols, std::function<void(const std::string &)> print,
                     Limits limits)
    : host_(host), symbols_(symbols), print_(std::move(print)), limits_(std::move(limits)),
      stackBase_(static_cast<const char *>(__builtin_frame_address(0))) {}

Execution::~Execution() { Clear(); }

void Execution::Step() {
    ++steps_;
    if (limits_.steps && steps_ > limits_.steps)
        throw Stopped();
    if (steps_ % kStepsBetweenLooks == 0)
        CheckInterrupt();
}

void Execution::CheckInterrupt() const {
    if (limits_.isInterrupted && limits_.isInterrupted())
        throw Stopped();
}

void Execution::CheckStack(const Location &where) {
    if (stackBase_ - static_cast<const char *>(__builtin_frame_address(0)) > kLargestStack)
        Raise("StackOverflowException", "calls are nested too deeply", where);
}

void Execution::Raise(std::string_view className, const std::string &message, const Location &where) {
    const ClassSymbol *itsClass = symbols_.Find(className);
    host::Object exception = New(itsClass ? *itsClass : *symbols_.Find("RuntimeException"));
    host::Runtime &runtime = host::Runtime::Current();
    host::StringEntity &text = runtime.NewString({message});
    host::SetHostString(*exception.Get(), "Message", &text);
    runtime.heap.Unlock(text);
    throw Thrown{std::move(exception), where};
}

void Execution::PassOnRaised(const Location &where) {
    if (host_.Raised().empty())
        return;
    // A call that raised more than once is one failure to the program: the first tells what went wrong.
    const host::RaisedException raised = host_.TakeRaised().front();
    Raise(raised.className, raised.message.value_or(""), where);
}

host::Object Execution::New(const ClassSymbol &itsClass) {
    const ClassSymbol *maker = &itsClass;
    while (!maker->make)
        maker = maker->super;
    return maker->make(*this, itsClass);
}

const ClassSymbol *Execution::ClassOf(const host::Object &object) const {
    if (const auto *part = dynamic_cast<const ProgramPart *>(object.Get()))
        return &part->itsClass;
    return symbols_.Find(object.ClassName());
}

std::optional<CFAbsoluteTime> Execution::NextTimer() const {
    std::optional<CFAbsoluteTime> next;
    for (const TimerInstance *timer : timers_)
        if (timer->IsDue() && (!next || timer->Due() < *next))
            next = timer->Due();
    return next;
}

void Execution::FireTimers() {
    const CFAbsoluteTime now = macos::CurrentClock().Now();
    // Held while they fire: a handler may let any of them go.
    std::vector<host::Object> due;
    for (TimerInstance *timer : timers_)
        if (timer->IsDue() && timer->Due() <= now)
            due.push_back(host::Object::Share(timer));
    std::sort(due.begin(), due.end(), [](const host::Object &left, const host::Object &right) {
        return TimerAt(left).Due() < TimerAt(right).Due();
    });
    for (const host::Object &timer : due)
        if (TimerAt(timer).IsDue() && !quits_)
            TimerAt(timer).Fire(timer, now);
}

void Execution::Clear() {
    globals.clear();
    std::vector<host::Object> objects;
    host::Runtime::Current().heap.VisitLive([&](host::Entity &entity) {
        if (dynamic_cast<ProgramPart *>(&entity))
            objects.push_back(host::Object::Share(&entity));
    });
    for (const host::Object &object : objects)
        PartOf(object).fields.clear();
}

Frame NewFrame(Execution &execution, const host::Object &self, std::vector<host::Value> arguments, size_t slots) {
    arguments.resize(std::max(slots, arguments.size()));
    return {execution, self, std::move(arguments)};
}

const host::Object &RequireObject(const host::Value &value, Execution &execution, const Location &where,
                                  host::Object &keeper) {
    if (value.IsNil())
        execution.Raise("NilObjectException", "there is no object here, only Nil", where);
    keeper = value.As<host::Object>();
    return keeper;
}

} // namespace sim::language
