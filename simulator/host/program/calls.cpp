#include "simulator/host/program/calls.h"

#include "simulator/host/classes/overloads.h"
#include "simulator/host/program/call_frame.h"

namespace sim::host {

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
        result = frame.Call(method.function, declaration.result);
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
        frame.Call(method.setterFunction, Type());
    }
    call.Finish();
}

} // namespace sim::host
