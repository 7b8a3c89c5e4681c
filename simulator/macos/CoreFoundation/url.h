// URLs: a string of legal characters and, for a relative one, the URL it is relative to. The parts are found by the
// older generic syntax, in which a semicolon ends the path; nothing is known of particular schemes but that "file"
// names files of this system.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/ref.h"

#include <CoreFoundation/CFURL.h>

#include <optional>
#include <string>
#include <string_view>

namespace sim::macos {

/// The parts of a URL's string, put together again by ToString.
struct UrlParts {
    std::optional<std::string> scheme;    ///< Without the colon.
    std::optional<std::string> authority; ///< Without the slashes; there may be an empty one.
    std::string path;
    std::optional<std::string> parameters; ///< Without the semicolon.
    std::optional<std::string> query;      ///< Without the question mark.
    std::optional<std::string> fragment;   ///< Without the number sign.

    static UrlParts Parse(std::string_view text);
    std::string ToString() const;
    /// A scheme followed by something that is neither an authority nor a path from the root, as in "mailto:me".
    bool IsOpaque() const;
};

class Url final : public Object {
public:
    /// The base is borrowed and may be null; it is retained, made absolute.
    Url(const std::string &text, CFURLRef base);

    CFTypeID TypeID() const override { return CFURLGetTypeID(); }
    bool EqualTo(const Object &other) const override;
    CFHashCode Hash() const override;
    std::string Description() const override { return "<" + text_ + ">"; }

    const std::string &Text() const { return text_; }
    const UrlParts &Parts() const { return parts_; }
    CFStringRef String() const { return string_.Get(); }
    CFURLRef Base() const { return base_.Get(); }

    /// The parts after resolution against the base.
    UrlParts Absolute() const;

private:
    std::string text_;
    UrlParts parts_;
    CFRef<CFStringRef> string_;
    CFRef<CFURLRef> base_;
};

/// Every byte that has no business in a path is escaped; slashes stay.
std::string EscapedPath(std::string_view bytes);
/// The bytes behind percent escapes; what is no escape stays.
std::string Unescaped(std::string_view text);

/// A file URL for an absolute path, spelled as it is given.
CFRef<CFURLRef> MakeFileUrl(std::string_view path, bool isDirectory);

/// The path that a file URL names, whether or not there is anything; nothing for other URLs.
std::optional<std::string> FilePathOf(CFURLRef url, const char *caller = __builtin_FUNCTION());

} // namespace sim::macos
