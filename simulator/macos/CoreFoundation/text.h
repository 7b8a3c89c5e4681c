// Strings as C++ code of the stand-ins reads and makes them, past the C interface and its failures on demand.
#pragma once

#include "simulator/macos/CoreFoundation/ref.h"

#include <CoreFoundation/CFString.h>

#include <string>
#include <string_view>

namespace sim::macos {

/// UTF-8 to UTF-16 and back; what is malformed becomes U+FFFD.
std::u16string Utf16(std::string_view utf8);
std::string Utf8(std::u16string_view utf16);

/// A new string object.
CFRef<CFStringRef> MakeString(std::u16string_view utf16);
CFRef<CFStringRef> MakeString(std::string_view utf8);
inline CFRef<CFStringRef> MakeString(const char *utf8) { return MakeString(std::string_view(utf8)); }

/// The text of any string. Stops on null and on what is no string.
std::u16string CharactersOf(CFStringRef string, const char *caller = __builtin_FUNCTION());
std::string Utf8Of(CFStringRef string, const char *caller = __builtin_FUNCTION());

/// The text of any string without a copy where the string itself holds UTF-16. Valid for as long as the string is
/// neither released nor changed.
class StringText {
public:
    explicit StringText(CFStringRef string, const char *caller = __builtin_FUNCTION());
    StringText(const StringText &) = delete;
    StringText &operator=(const StringText &) = delete;

    std::u16string_view View() const { return view_; }

private:
    std::u16string storage_;
    std::u16string_view view_;
};

/// For messages: in double quotes, cut after a few dozen units.
std::string Quoted(std::u16string_view text);

} // namespace sim::macos
