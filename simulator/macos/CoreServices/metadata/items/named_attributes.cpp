#include "simulator/macos/CoreServices/metadata/items/named_attributes.h"

#include "simulator/macos/CoreFoundation/ref.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreServices/metadata/items/iso_date.h"
#include "simulator/macos/CoreServices/metadata/items/values.h"
#include "simulator/macos/CoreServices/metadata/items/words.h"
#include "simulator/macos/CoreServices/metadata/schema/schema.h"

#include <charconv>

namespace sim::macos {

namespace {

constexpr std::string_view kUserSpace = "user.";
constexpr std::string_view kKeysBegin = "kMDItem";

template <class Number> std::optional<Number> Parse(std::string_view text) {
    Number number{};
    const auto end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

CFTypeRef NumberFrom(std::string_view text) {
    if (const auto whole = Parse<std::int64_t>(text))
        return NumberValue(*whole);
    if (const auto fraction = Parse<double>(text))
        return NumberValue(*fraction);
    return nullptr;
}

CFTypeRef BooleanFrom(std::string_view text) {
    if (text == "true" || text == "1")
        return BooleanValue(true);
    if (text == "false" || text == "0")
        return BooleanValue(false);
    return nullptr;
}

CFTypeRef DateFrom(std::string_view text) {
    const auto date = ParseIsoDate(Utf16(text));
    return date ? CFDateCreate(kCFAllocatorDefault, *date) : nullptr;
}

CFTypeRef ValueFrom(std::string_view text, ElementType type) {
    switch (type) {
    case ElementType::String:
        return TextValue(text);
    case ElementType::Number:
        return NumberFrom(WithoutBlanksAround(text));
    case ElementType::Boolean:
        return BooleanFrom(WithoutBlanksAround(text));
    case ElementType::Date:
        return DateFrom(WithoutBlanksAround(text));
    case ElementType::Data:
    case ElementType::Dictionary:
    case ElementType::UUID:
        return nullptr;
    }
    return nullptr;
}

/// Null as soon as one line does not read, and when there is none.
CFTypeRef ListFrom(std::string_view text, ElementType type) {
    auto list = CFRef<CFMutableArrayRef>::Adopt(CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
    for (std::string_view line : Words(text, '\n')) {
        const auto value = CFRef<CFTypeRef>::Adopt(ValueFrom(line, type));
        if (!value)
            return nullptr;
        CFArrayAppendValue(list.Get(), value.Get());
    }
    return CFArrayGetCount(list.Get()) > 0 ? list.Give() : nullptr;
}

bool CanBeCarried(std::string_view key) { return key.starts_with(kKeysBegin) && key != "kMDItemTextContent"; }

} // namespace

CFTypeRef CopyNamedAttribute(FileFacts &file, std::string_view key) {
    if (!CanBeCarried(key))
        return nullptr;
    const auto text = file.ExtendedAttribute(std::string(kUserSpace).append(key));
    if (!text)
        return nullptr;
    const SchemaAttribute *attribute = Schema::Current().Find(key);
    const ElementType type = attribute ? attribute->type : ElementType::String;
    return attribute && attribute->isMultiValued ? ListFrom(*text, type) : ValueFrom(*text, type);
}

std::vector<std::string> NamedAttributes(FileFacts &file) {
    std::vector<std::string> keys;
    for (const std::string &name : file.ExtendedAttributeNames())
        if (std::string_view key = name; key.starts_with(kUserSpace)) {
            key.remove_prefix(kUserSpace.size());
            if (CanBeCarried(key))
                keys.emplace_back(key);
        }
    return keys;
}

} // namespace sim::macos
