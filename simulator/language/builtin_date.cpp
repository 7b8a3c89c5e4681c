#include "simulator/language/builtin.h"
#include "simulator/language/dates.h"
#include "simulator/language/program_object.h"

#include <cstdio>

namespace sim::language {

namespace {

host::DateFields &FieldsOf(const host::Object &object) {
    return dynamic_cast<host::DateInstance &>(*object.Get()).fields;
}

host::Value ConstructNow(Call &call) {
    FieldsOf(call.self) = Now();
    return {};
}

host::Value ConstructCopy(Call &call) {
    if (call.arguments[0].IsNil())
        call.execution.Raise("NilObjectException", "there is no date to copy", call.where);
    FieldsOf(call.self) = FieldsOf(call.arguments[0].As<host::Object>());
    return {};
}

host::Value ConstructFrom(Call &call) {
    FieldsOf(call.self) = Normalised({IntegerAt(call, 0), IntegerAt(call, 1), IntegerAt(call, 2), IntegerAt(call, 3),
                                      IntegerAt(call, 4), IntegerAt(call, 5)});
    return {};
}

template <int32_t host::DateFields::*field> host::Value GetField(Call &call) { return FieldsOf(call.self).*field; }

template <int32_t host::DateFields::*field> host::Value SetField(Call &call) {
    host::DateFields &fields = FieldsOf(call.self);
    fields.*field = IntegerAt(call, 0);
    fields = Normalised(fields);
    return {};
}

host::Value GetTotalSeconds(Call &call) { return static_cast<double>(TotalSeconds(FieldsOf(call.self))); }

host::Value SetTotalSeconds(Call &call) {
    const double seconds = call.arguments[0].As<double>();
    constexpr double kFarthest = 1e11;
    if (!(seconds > -kFarthest && seconds < kFarthest))
        call.execution.Raise("OutOfBoundsException", "there is no such date", call.where);
    FieldsOf(call.self) = FieldsAt(static_cast<int64_t>(seconds));
    return {};
}

std::string Formatted(const host::DateFields &fields, bool withTime) {
    char text[96];
    if (withTime)
        std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", fields.year, fields.month, fields.day,
                      fields.hour, fields.minute, fields.second);
    else
        std::snprintf(text, sizeof text, "%04d-%02d-%02d", fields.year, fields.month, fields.day);
    return text;
}

host::Value SqlDate(Call &call) { return Formatted(FieldsOf(call.self), false); }
host::Value SqlDateTime(Call &call) { return Formatted(FieldsOf(call.self), true); }
host::Value GetDayOfWeek(Call &call) { return DayOfWeek(FieldsOf(call.self)); }

constexpr FunctionRow kDateFunctions[] = {
    {"Constructor", ConstructNow},
    {"Constructor(other As Date)", ConstructCopy},
    {"Constructor(year As Integer, month As Integer = 1, day As Integer = 1, hour As Integer = 0, minute As Integer "
     "= 0, second As Integer = 0)",
     ConstructFrom},
};

constexpr PropertyRow kDateProperties[] = {
    {"Year As Integer", GetField<&host::DateFields::year>, SetField<&host::DateFields::year>},
    {"Month As Integer", GetField<&host::DateFields::month>, SetField<&host::DateFields::month>},
    {"Day As Integer", GetField<&host::DateFields::day>, SetField<&host::DateFields::day>},
    {"Hour As Integer", GetField<&host::DateFields::hour>, SetField<&host::DateFields::hour>},
    {"Minute As Integer", GetField<&host::DateFields::minute>, SetField<&host::DateFields::minute>},
    {"Second As Integer", GetField<&host::DateFields::second>, SetField<&host::DateFields::second>},
    {"TotalSeconds As Double", GetTotalSeconds, SetTotalSeconds},
    {"SQLDate As String", SqlDate},
    {"SQLDateTime As String", SqlDateTime},
    {"DayOfWeek As Integer", GetDayOfWeek},
};

} // namespace

const BuiltInClass &DateClass() {
    static constexpr BuiltInClass row{"Date", nullptr, MakeInstance<host::DateInstance>, kDateFunctions,
                                      kDateProperties};
    return row;
}

} // namespace sim::language
