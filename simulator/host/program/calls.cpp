#include "simulator/host/program/calls.h"

#include "simulator/host/classes/overloads.h"
#include "simulator/host/program/call_frame.h"

namespace sim::host {

namespace {

/// Whom a method is called on: an object, or a class or module.
std::string OwnerText(const std::string &owner, const Entity *self) { return self ? self->Describe() : owner; }

} // namespace

Value CallMethod(const std::string &owner, const Method &method, Entity *self, std::vector<Value> arguments) {
    const Declaration &declaration = method.declaration;
    for (size_t index = arguments.size(); index < declaration.parameters.size(); ++index)
        arguments.push_back(*declaration.parameters[index].preset);
    ProgramCall call(owner + "." + declaration.text);
    HeardCall heard(Runtime::Current().heap.places.listener, Callee::kPlugin,
                    [&] { return OwnerText(owner, self) + "." + declaration.name + ArgumentsText(arguments); });
    Value result;
    {
        Frame frame;
        frame.PushInstance(self);
        for (size_t index = 0; index < declaration.parameters.size(); ++index)
            frame.Push(arguments[index], declaration.parameters[index].type);
        result = frame.Call(method.function, declaration.result);
    }
    if (declaration.result.kind != TypeKind::kNone)
        heard.Gives([&] { return result.Describe(); });
    call.Finish();
    return result;
}

void CallSetter(const std::string &owner, const Method &method, Entity *self, const Value &value) {
    const Declaration &declaration = method.declaration;
    if (!Distance(value, declaration.result))
        throw ProgramError(owner + "." + declaration.text + " does not take " + value.Describe());
    ProgramCall call(owner + "." + declaration.text + " = ");
    const HeardCall heard(Runtime::Current().heap.places.listener, Callee::kPlugin,
                          [&] { return OwnerText(owner, self) + "." + declaration.name + " = " + value.Describe(); });
    {
        Frame frame;
        frame.PushInstance(self);
        frame.Push(value, declaration.result);
        frame.Call(method.setterFunction, Type());
    }
    call.Finish();
}

} // namespace sim::host
