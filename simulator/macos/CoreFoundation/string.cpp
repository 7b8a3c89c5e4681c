// The string object and the calls that make, measure and copy strings. Encodings are in string_bytes.cpp, comparison in
// string_compare.cpp, normalization in normalization.cpp.
#include "simulator/macos/CoreFoundation/string.h"

#include "simulator/macos/CoreFoundation/constant_string.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/control/faults.h"

#include <cstring>
#include <functional>

namespace sim::macos {

String::String(std::u16string text, CFIndex limit) : limit_(limit), isMutable_(true) { SetText(std::move(text)); }

bool String::EqualTo(const Object &other) const { return text_ == static_cast<const String &>(other).text_; }

CFHashCode String::Hash() const { return HashOf(text_); }

std::string String::Description() const { return Quoted(text_); }

void String::SetText(std::u16string text) {
    if (!isMutable_)
        Stop("an immutable string cannot be changed: " + Description());
    if (limit_ > 0 && text.size() > static_cast<std::size_t>(limit_))
        Stop("a string with a limit of " + std::to_string(limit_) + " units cannot hold " + Quoted(text));
    text_ = std::move(text);
}

CFStringRef EmptyString() {
    static const auto *empty = new String(Object::Immortal{});
    return empty->As<CFStringRef>();
}

CFHashCode HashOf(std::u16string_view text) { return std::hash<std::u16string_view>()(text); }

namespace {

FallibleCall createWithCharacters("CFStringCreateWithCharacters");
FallibleCall createMutableCopy("CFStringCreateMutableCopy");

} // namespace

} // namespace sim::macos

using namespace sim::macos;

CFTypeID CFStringGetTypeID() {
    static const CFTypeID type = RegisterType("CFString");
    return type;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar *characters, CFIndex count) {
    if (count < 0 || (count > 0 && !characters))
        Stop("CFStringCreateWithCharacters was given no characters, or less than none");
    if (createWithCharacters.Fails())
        return nullptr;
    if (count == 0)
        return EmptyString();
    std::u16string text(static_cast<std::size_t>(count), u'\0');
    std::memcpy(text.data(), characters, text.size() * sizeof(char16_t));
    return (new String(std::move(text)))->As<CFStringRef>();
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex limit, CFStringRef string) {
    std::u16string text = CharactersOf(string);
    if (limit < 0)
        Stop("CFStringCreateMutableCopy was given a negative limit");
    if (createMutableCopy.Fails())
        return nullptr;
    return (new String(std::move(text), limit))->As<CFMutableStringRef>();
}

CFIndex CFStringGetLength(CFStringRef string) {
    if (string && IsConstantString(string))
        return ConstantString::Of(string).length;
    return static_cast<CFIndex>(Expect<String>(string).Text().size());
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar *buffer) {
    StringText text(string);
    const auto length = static_cast<CFIndex>(text.View().size());
    if (range.location < 0 || range.length < 0 || range.location > length || range.length > length - range.location)
        Stop("CFStringGetCharacters was asked for units that " + Describe(string) + " does not have");
    std::memcpy(buffer, text.View().data() + range.location, static_cast<std::size_t>(range.length) * sizeof(UniChar));
}
