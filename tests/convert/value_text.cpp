#include "tests/convert/value_text.h"

#include "simulator/host/classes/instance.h"
#include "simulator/host/ground/number_text.h"

#include <algorithm>
#include <cstdio>

namespace tests {

namespace {

using sim::host::NumberText;
using sim::host::Object;
using sim::host::Value;

std::string Joined(const std::vector<std::string> &parts) {
    std::string text;
    for (const std::string &part : parts)
        text += (text.empty() ? "" : ", ") + part;
    return text;
}

std::string Hexadecimal(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
        text += digits;
    }
    return text;
}

std::string TextOfObject(const Object &object) {
    std::string name = object.ClassName();
    std::vector<std::string> parts;
    if (name.ends_with("()")) {
        for (const Value &element : object.Elements())
            parts.push_back(TextOf(element));
        return "[" + Joined(parts) + "]";
    }
    if (name == "Dictionary") {
        for (const auto &[key, value] : object.Entries())
            parts.push_back(TextOf(key) + ": " + TextOf(value));
        std::sort(parts.begin(), parts.end());
        return "{" + Joined(parts) + "}";
    }
    if (name == "Date")
        return "Date " + DateText(object.Date());
    if (name == "MemoryBlock")
        return "MemoryBlock " + Hexadecimal(object.Bytes());
    if (name == "FolderItem")
        return "FolderItem " + object.Path();
    return name;
}

const char *NameOf(CFNumberType storedForm) {
    constexpr const char *kNames[] = {"?", "SInt8", "SInt16", "SInt32", "SInt64", "Float32", "Float64"};
    return kNames[storedForm <= kCFNumberFloat64Type ? storedForm : 0];
}

std::string TextOfNumber(const sim::macos::Number &number) {
    const std::string digits = number.IsFloat() ? NumberText(number.Real()) : std::to_string(number.Integer());
    return std::string(NameOf(number.StoredType())) + " " + digits;
}

} // namespace

std::string TextOf(const Value &value) {
    if (value.Is<int32_t>())
        return "Integer " + value.Describe();
    if (value.Is<int64_t>())
        return "Int64 " + std::to_string(value.As<int64_t>());
    if (value.Is<double>())
        return "Double " + NumberText(value.As<double>());
    if (value.Is<Object>())
        return TextOfObject(value.As<Object>());
    return value.Describe();
}

std::string TextOf(CFTypeRef value) {
    using namespace sim::macos;
    if (!value)
        return "none";
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFStringGetTypeID())
        return "\"" + Utf8Of(static_cast<CFStringRef>(value)) + "\"";
    if (type == CFBooleanGetTypeID())
        return value == kCFBooleanTrue ? "true" : "false";
    if (value == kCFNull)
        return "null";
    if (const auto *number = Cast<Number>(value))
        return TextOfNumber(*number);
    if (const auto *date = Cast<Date>(value))
        return "Date " + NumberText(date->At());
    if (const auto *data = Cast<Data>(value))
        return "Data " + Hexadecimal({reinterpret_cast<const char *>(data->Bytes().data()), data->Bytes().size()});
    if (type == CFURLGetTypeID())
        return "URL " + Utf8Of(CFURLGetString(static_cast<CFURLRef>(value)));
    std::vector<std::string> parts;
    if (const auto *array = Cast<Array>(value)) {
        for (const void *element : array->Values())
            parts.push_back(TextOf(element));
        return "[" + Joined(parts) + "]";
    }
    if (const auto *dictionary = Cast<Dictionary>(value)) {
        for (const auto &[key, held] : dictionary->Pairs())
            parts.push_back(TextOf(key) + ": " + TextOf(held));
        std::sort(parts.begin(), parts.end());
        return "{" + Joined(parts) + "}";
    }
    return TypeName(type);
}

} // namespace tests
