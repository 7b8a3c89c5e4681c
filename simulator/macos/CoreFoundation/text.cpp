// Reading and making strings from C++.
#include "simulator/macos/CoreFoundation/text.h"

#include "simulator/macos/CoreFoundation/constant_string.h"
#include "simulator/macos/CoreFoundation/string.h"

#include <unicode/ustring.h>

namespace sim::macos {

namespace {

constexpr UChar32 kReplacement = 0xFFFD;

} // namespace

std::u16string Utf16(std::string_view utf8) {
    UErrorCode error = U_ZERO_ERROR;
    std::u16string text(utf8.size(), u'\0');
    std::int32_t length = 0;
    u_strFromUTF8WithSub(text.data(), static_cast<std::int32_t>(text.size()), &length, utf8.data(),
                         static_cast<std::int32_t>(utf8.size()), kReplacement, nullptr, &error);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string Utf8(std::u16string_view utf16) {
    UErrorCode error = U_ZERO_ERROR;
    std::string text(3 * utf16.size(), '\0');
    std::int32_t length = 0;
    u_strToUTF8WithSub(text.data(), static_cast<std::int32_t>(text.size()), &length, utf16.data(),
                       static_cast<std::int32_t>(utf16.size()), kReplacement, nullptr, &error);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

CFRef<CFStringRef> MakeString(std::u16string_view utf16) {
    return CFRef<CFStringRef>::Adopt((new String(std::u16string(utf16)))->As<CFStringRef>());
}

CFRef<CFStringRef> MakeString(std::string_view utf8) { return MakeString(Utf16(utf8)); }

StringText::StringText(CFStringRef string, const char *caller) {
    if (string && IsConstantString(string)) {
        storage_ = ConstantString::Of(string).Characters();
        view_ = storage_;
    } else {
        view_ = Expect<String>(string, caller).Text();
    }
}

std::u16string CharactersOf(CFStringRef string, const char *caller) {
    return std::u16string(StringText(string, caller).View());
}

std::string Utf8Of(CFStringRef string, const char *caller) { return Utf8(StringText(string, caller).View()); }

std::string Quoted(std::u16string_view text) {
    constexpr std::size_t kLongest = 60;
    const bool cut = text.size() > kLongest;
    return "\"" + Utf8(text.substr(0, kLongest)) + (cut ? "...\"" : "\"");
}

} // namespace sim::macos
