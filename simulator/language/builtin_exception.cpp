// RuntimeException and its kin: those that a host has, and those that only programs can raise.
#include "simulator/language/builtin.h"
#include "simulator/language/program_object.h"

namespace sim::language {

namespace {

host::ExceptionInstance &ExceptionAt(const host::Object &object) {
    return dynamic_cast<host::ExceptionInstance &>(*object.Get());
}

host::Value SetMessage(Call &call) {
    host::Runtime &runtime = host::Runtime::Current();
    host::StringEntity &text = runtime.NewString({TextAt(call, 0)});
    host::SetHostString(*call.self.Get(), "Message", &text);
    runtime.heap.Unlock(text);
    return {};
}

host::Value GetMessage(Call &call) {
    const host::StringEntity *message = ExceptionAt(call.self).message;
    return message ? host::ToUTF8(message->GetText()) : std::string();
}

host::Value SetErrorNumber(Call &call) {
    ExceptionAt(call.self).errorNumber = IntegerAt(call, 0);
    return {};
}

host::Value GetErrorNumber(Call &call) { return ExceptionAt(call.self).errorNumber.value_or(0); }

host::Value ConstructException(Call &call) {
    ExceptionAt(call.self).errorNumber = IntegerAt(call, 1);
    return SetMessage(call);
}

constexpr FunctionRow kExceptionFunctions[] = {
    {"Constructor(message As String = \"\", number As Integer = 0)", ConstructException}};

constexpr PropertyRow kExceptionProperties[] = {
    {"Message As String", GetMessage, SetMessage},
    {"ErrorNumber As Integer", GetErrorNumber, SetErrorNumber},
};

constexpr BuiltInClass Derived(const char *name) {
    return {name, "RuntimeException", MakeInstance<host::ExceptionInstance>};
}

} // namespace

std::span<const BuiltInClass> ExceptionClasses() {
    static constexpr BuiltInClass rows[] = {
        {"RuntimeException", nullptr, MakeInstance<host::ExceptionInstance>, kExceptionFunctions, kExceptionProperties},
        Derived("NilObjectException"),
        Derived("OutOfBoundsException"),
        Derived("OutOfMemoryException"),
        Derived("IllegalCastException"),
        Derived("TypeMismatchException"),
        Derived("KeyNotFoundException"),
        Derived("IOException"),
        Derived("StackOverflowException"),
    };
    return rows;
}

} // namespace sim::language
