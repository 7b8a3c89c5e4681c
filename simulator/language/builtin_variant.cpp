// What can be asked of a Variant, whatever it holds.
#include "simulator/language/builtin.h"
#include "simulator/language/conversions.h"

namespace sim::language {

namespace {

template <Kind kind> host::Value As(Call &call) {
    return Converted(call.execution, call.arguments[0], {kind}, call.where);
}

host::Value AsDate(Call &call) {
    const Type date{Kind::kObject, false, call.execution.GetSymbols().Find("Date")};
    return Converted(call.execution, call.arguments[0], date, call.where);
}

host::Value TypeCode(Call &call) { return call.execution.Host().Box(call.arguments[0]).TypeCode(); }

host::Value IsNull(Call &call) { return call.arguments[0].IsNil(); }

host::Value IsArray(Call &call) {
    constexpr int32_t kArrayCode = 4096;
    return call.execution.Host().Box(call.arguments[0]).TypeCode() >= kArrayCode;
}

constexpr FunctionRow kMembers[] = {
    {"StringValue(value As Variant) As String", As<Kind::kString>},
    {"IntegerValue(value As Variant) As Integer", As<Kind::kInteger>},
    {"Int32Value(value As Variant) As Integer", As<Kind::kInteger>},
    {"Int64Value(value As Variant) As Int64", As<Kind::kInt64>},
    {"DoubleValue(value As Variant) As Double", As<Kind::kDouble>},
    {"BooleanValue(value As Variant) As Boolean", As<Kind::kBoolean>},
    {"ObjectValue(value As Variant) As Object", As<Kind::kObject>},
    {"DateValue(value As Variant) As Date", AsDate},
    {"Type(value As Variant) As Integer", TypeCode},
    {"IsNull(value As Variant) As Boolean", IsNull},
    {"IsArray(value As Variant) As Boolean", IsArray},
};

constexpr const char *kConstants[] = {
    "TypeNil=0",    "TypeInteger=2", "TypeLong=3",     "TypeSingle=4", "TypeDouble=5",   "TypeDate=7",
    "TypeString=8", "TypeObject=9",  "TypeBoolean=11", "TypeColor=16", "TypeArray=4096",
};

} // namespace

const BuiltInClass &VariantMembers() {
    static constexpr BuiltInClass row{"Variant", nullptr, nullptr, kMembers, {}, kConstants};
    return row;
}

} // namespace sim::language
