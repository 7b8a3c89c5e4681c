#include "simulator/host/entities/variant_entity.h"

#include "simulator/host/ground/number_text.h"
#include "simulator/host/ground/text.h"

#include <cstdio>
#include <cstdlib>

namespace sim::host {

namespace {

std::string ColorText(Color color) {
    char text[16];
    std::snprintf(text, sizeof text, "&h%08X", color.rgb);
    return text;
}

/// Saturates where a plain cast would be undefined.
int64_t Truncate(double number) {
    if (!(number > -9.2e18))
        return number != number ? 0 : INT64_MIN;
    return number < 9.2e18 ? static_cast<int64_t>(number) : INT64_MAX;
}

} // namespace

int32_t ScalarTypeCode(const Value &value) {
    if (value.Is<bool>())
        return 11;
    if (value.Is<int32_t>())
        return 2;
    if (value.Is<uint32_t>() || value.Is<int64_t>())
        return 3;
    if (value.Is<float>())
        return 4;
    if (value.Is<double>())
        return 5;
    if (value.Is<std::string>())
        return 8;
    if (value.Is<Color>())
        return 16;
    return 0;
}

bool VariantEntity::IsPlain() const { return typeCode_ == ScalarTypeCode(held_); }

int64_t ToInteger(const Value &value) {
    if (value.Is<bool>())
        return value.As<bool>() ? 1 : 0;
    if (value.Is<int32_t>())
        return value.As<int32_t>();
    if (value.Is<uint32_t>())
        return value.As<uint32_t>();
    if (value.Is<int64_t>())
        return value.As<int64_t>();
    if (value.Is<Color>())
        return value.As<Color>().rgb;
    return Truncate(ToDouble(value));
}

double ToDouble(const Value &value) {
    if (value.Is<float>())
        return static_cast<double>(value.As<float>());
    if (value.Is<double>())
        return value.As<double>();
    if (value.Is<std::string>())
        return std::strtod(value.As<std::string>().c_str(), nullptr);
    if (value.IsNil() || value.Is<Reference>())
        return 0;
    return static_cast<double>(ToInteger(value));
}

std::optional<Text> ToText(const Value &value) {
    if (value.Is<std::string>())
        return value.As<Text>();
    if (value.Is<bool>())
        return Text{value.As<bool>() ? "True" : "False", kASCII};
    if (value.Is<float>() || value.Is<double>())
        return Text{NumberText(ToDouble(value)), kASCII};
    if (value.Is<Color>())
        return Text{ColorText(value.As<Color>()), kASCII};
    if (value.IsNil() || value.Is<Reference>())
        return std::nullopt;
    return Text{NumberText(ToInteger(value)), kASCII};
}

} // namespace sim::host
