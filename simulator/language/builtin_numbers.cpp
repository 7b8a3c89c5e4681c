// Functions of numbers, their way to text and back, and the few of the application itself.
#include "simulator/host/runtime/runtime.h"
#include "simulator/language/builtin.h"
#include "simulator/macos/control/clock.h"

#include <cmath>
#include <cstdio>

namespace sim::language {

namespace {

double NumberAt(const Call &call, size_t index) { return call.arguments[index].As<double>(); }

/// Any number as the text that a Variant makes of it.
host::Value Str(Call &call) { return host::ToUTF8(host::ToText(call.arguments[0]).value_or(host::Text())); }

host::Value Val(Call &call) { return host::ToDouble(call.arguments[0]); }

std::string WithCommas(std::string digits) {
    for (auto at = static_cast<ptrdiff_t>(digits.size()) - 3; at > 0; at -= 3)
        digits.insert(static_cast<size_t>(at), ",");
    return digits;
}

/// Patterns of 0, #, a comma and a point: "0.00", "#,##0".
host::Value Format(Call &call) {
    const double number = NumberAt(call, 0);
    const std::string pattern = TextAt(call, 1);
    const size_t point = pattern.find('.');
    const size_t decimals = point == std::string::npos ? 0 : std::min<size_t>(pattern.size() - point - 1, 15);
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, "%.*f", static_cast<int>(decimals), std::fabs(number));
    std::string text = buffer;
    std::string whole = text.substr(0, text.find('.'));
    const std::string rest = text.substr(whole.size());
    const std::string wholePattern = pattern.substr(0, point);
    const auto zeros = static_cast<size_t>(std::count(wholePattern.begin(), wholePattern.end(), '0'));
    if (whole.size() < zeros)
        whole.insert(0, zeros - whole.size(), '0');
    if (wholePattern.find(',') != std::string::npos)
        whole = WithCommas(whole);
    const bool isNegative = text.find_first_of("123456789") != std::string::npos && number < 0;
    return (isNegative ? "-" : "") + whole + rest;
}

host::Value Hex(Call &call) {
    char text[24];
    std::snprintf(text, sizeof text, "%llX", static_cast<long long>(call.arguments[0].As<int64_t>()));
    return text;
}

template <double (*function)(double)> host::Value Apply(Call &call) { return function(NumberAt(call, 0)); }

host::Value Min(Call &call) { return std::fmin(NumberAt(call, 0), NumberAt(call, 1)); }
host::Value Max(Call &call) { return std::fmax(NumberAt(call, 0), NumberAt(call, 1)); }

host::Value Microseconds(Call &) { return macos::CurrentClock().Now() * 1e6; }

host::Value VarType(Call &call) { return call.execution.Host().Box(call.arguments[0]).TypeCode(); }

host::Value Quit(Call &call) {
    call.execution.Quit();
    return {};
}

} // namespace

std::span<const FunctionRow> NumberFunctions() {
    static constexpr FunctionRow rows[] = {
        {"Str(number As Int64) As String", Str},
        {"Str(number As Double) As String", Str},
        {"Val(text As String) As Double", Val},
        {"Format(number As Double, pattern As String) As String", Format},
        {"Hex(number As Int64) As String", Hex},
        {"Abs(number As Double) As Double", Apply<std::fabs>},
        {"Floor(number As Double) As Double", Apply<std::floor>},
        {"Ceil(number As Double) As Double", Apply<std::ceil>},
        {"Round(number As Double) As Double", Apply<std::round>},
        {"Sqrt(number As Double) As Double", Apply<std::sqrt>},
        {"Min(left As Double, right As Double) As Double", Min},
        {"Max(left As Double, right As Double) As Double", Max},
        {"Microseconds As Double", Microseconds},
        {"VarType(value As Variant) As Integer", VarType},
        {"Quit", Quit},
    };
    return rows;
}

} // namespace sim::language
