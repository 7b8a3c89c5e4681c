#include "simulator/cli/value_text.h"

#include "simulator/host/ground/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <functional>

namespace sim::cli {
namespace {

using host::NumberText;
using host::Object;
using host::Value;

constexpr size_t kShownBytes = 16;

bool IsArray(const Object &object) { return object.ClassName().ends_with("()"); }

template <class... Arguments> std::string Formatted(const char *format, Arguments... arguments) {
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), format, arguments...);
    return text.data();
}

std::string Joined(const std::vector<std::string> &parts) {
    std::string text;
    for (const std::string &part : parts)
        text += (&part == &parts.front() ? "" : ", ") + part;
    return text;
}

std::string ArrayType(const std::vector<Value> &elements) {
    std::string common;
    for (const Value &element : elements) {
        const std::string type = TypeText(element);
        if (!common.empty() && type != common)
            return "Array";
        common = type;
    }
    return common.empty() ? "Array" : "Array of " + common;
}

std::string BytesText(const std::string &bytes) {
    std::string text = Formatted("%zu bytes", bytes.size());
    for (size_t i = 0; i < std::min(bytes.size(), kShownBytes); ++i)
        text += (i == 0 ? ": " : " ") + Formatted("%02x", static_cast<unsigned char>(bytes[i]));
    return text + (bytes.size() > kShownBytes ? " …" : "");
}

std::string DictionaryText(const Object &dictionary) {
    std::vector<std::string> entries;
    for (const auto &[key, value] : dictionary.Entries())
        entries.push_back(ValueText(key) + ": " + ValueText(value));
    return "{" + Joined(entries) + "}";
}

std::string ObjectText(const Object &object) {
    if (IsArray(object)) {
        std::vector<std::string> elements;
        for (const Value &element : object.Elements())
            elements.push_back(ValueText(element));
        return Joined(elements);
    }
    std::string name = object.ClassName();
    if (name == "Date")
        return DateText(object.Date());
    if (name == "FolderItem")
        return object.Path();
    if (name == "MemoryBlock")
        return BytesText(object.Bytes());
    if (name == "Dictionary")
        return DictionaryText(object);
    return name;
}

} // namespace

std::string TypeText(const Value &value) {
    if (value.Is<bool>())
        return "Boolean";
    if (value.Is<int32_t>())
        return "Integer";
    if (value.Is<uint32_t>())
        return "UInt32";
    if (value.Is<int64_t>())
        return "Int64";
    if (value.Is<float>())
        return "Single";
    if (value.Is<double>())
        return "Double";
    if (value.Is<host::Color>())
        return "Color";
    if (value.Is<std::string>())
        return "String";
    if (!value.Is<Object>())
        return "";
    const Object object = value.As<Object>();
    return IsArray(object) ? ArrayType(object.Elements()) : object.ClassName();
}

std::string ValueText(const Value &value) {
    return value.Visit([&](const auto &held) -> std::string {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, bool>)
            return held ? "true" : "false";
        else if constexpr (std::is_arithmetic_v<Held>)
            return NumberText(held);
        else if constexpr (std::is_same_v<Held, host::Color>)
            return Formatted("#%06X", static_cast<unsigned>(held.rgb));
        else if constexpr (std::is_same_v<Held, host::Text>)
            return host::ToUTF8(held);
        else
            return value.Is<Object>() ? ObjectText(value.As<Object>()) : "";
    });
}

std::string AgeText(const std::optional<double> &version) {
    return version ? ValueText(*version) : "does not tell its version";
}

std::string SizeText(int64_t bytes) {
    constexpr int64_t kThousand = 1000;
    if (bytes < kThousand)
        return NumberText(bytes) + (bytes == 1 ? " byte" : " bytes");
    double amount = static_cast<double>(bytes);
    const char *unit = "";
    for (const char *next : {"KB", "MB", "GB", "TB"}) {
        if (amount < 999.5)
            break;
        amount /= kThousand;
        unit = next;
    }
    return Formatted(amount < 9.95 ? "%.1f %s" : "%.0f %s", amount, unit);
}

std::string CountText(size_t count, const char *one, const char *many) {
    return NumberText(count) + " " + (count == 1 ? one : many);
}

} // namespace sim::cli
