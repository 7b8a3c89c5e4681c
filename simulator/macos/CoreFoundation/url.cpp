// URLs: making them, taking path components off and on, and the way to and from file references.
#include "simulator/macos/CoreFoundation/url.h"

#include "simulator/macos/CoreFoundation/file_system.h"
#include "simulator/macos/CoreFoundation/string_encoding.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/control/faults.h"

#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <vector>

namespace sim::macos {

namespace {

FallibleCall createWithString("CFURLCreateWithString");
FallibleCall createWithFileSystemPath("CFURLCreateWithFileSystemPath");
FallibleCall createFromReference("CFURLCreateFromFSRef");
FallibleCall getReference("CFURLGetFSRef");
FallibleCall copyFileSystemPath("CFURLCopyFileSystemPath");
FallibleCall createAppending("CFURLCreateCopyAppendingPathComponent");
FallibleCall createDeleting("CFURLCreateCopyDeletingLastPathComponent");
FallibleCall copyLastComponent("CFURLCopyLastPathComponent");
FallibleCall copyAbsolute("CFURLCopyAbsoluteURL");

CFURLRef NewUrl(const std::string &text, CFURLRef base = nullptr) { return (new Url(text, base))->As<CFURLRef>(); }

std::string_view WithoutFinalSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    return path;
}

// The part after the last slash, one slash at the end aside; "/" when there is nothing else.
std::string_view LastComponent(std::string_view path) {
    if (path == "/")
        return path;
    if (path.ends_with('/'))
        path.remove_suffix(1);
    return path.substr(path.find_last_of('/') + 1);
}

std::string WithoutLastComponent(std::string_view path) {
    const std::string_view last = LastComponent(path);
    const std::string_view slash = path.empty() || path.ends_with('/') ? "" : "/";
    if (last.empty() || last == "/" || last == "." || last == "..")
        return std::string(path) + std::string(slash) + "../";
    path = path.substr(0, static_cast<std::size_t>(last.data() - path.data()));
    return path.empty() ? "./" : std::string(path);
}

std::string WithoutDotSegments(std::string_view path) {
    std::vector<std::string_view> kept;
    const bool fromRoot = path.starts_with('/');
    const bool isDirectory = path.ends_with('/') || path.ends_with("/.") || path.ends_with("/..");
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view name = path.substr(start, end - start);
        start = end + 1;
        if (name == ".." && !kept.empty() && kept.back() != "..")
            kept.pop_back();
        else if (name == ".." || (!name.empty() && name != "."))
            kept.push_back(name);
    }
    std::string text = fromRoot ? "/" : "";
    for (std::size_t index = 0; index < kept.size(); ++index)
        text += (index > 0 ? "/" : "") + std::string(kept[index]);
    return text + (isDirectory && !kept.empty() ? "/" : "");
}

// The text of a URL in ASCII: brackets and what ASCII lacks escaped. Nothing when there are other illegal characters,
// a second number sign or half an escape.
std::optional<std::string> LegalText(std::u16string_view text) {
    constexpr std::string_view kIllegal = "\"<>\\^`{|}\x7F";
    constexpr std::string_view kHex = "0123456789abcdefABCDEF";
    const std::optional<std::string> bytes = Encode(text, kCFStringEncodingUTF8);
    if (!bytes || std::count(bytes->begin(), bytes->end(), '#') > 1)
        return std::nullopt;
    std::string legal;
    for (std::size_t index = 0; index < bytes->size(); ++index) {
        const char byte = (*bytes)[index];
        if ((byte >= 0 && byte <= ' ') || kIllegal.find(byte) != std::string_view::npos)
            return std::nullopt;
        if (byte == '%' && (index + 2 >= bytes->size() || kHex.find((*bytes)[index + 1]) == std::string_view::npos ||
                            kHex.find((*bytes)[index + 2]) == std::string_view::npos))
            return std::nullopt;
        const bool escaped = byte < 0 || byte == '[' || byte == ']';
        legal += escaped ? EscapedPath({&byte, 1}) : std::string(1, byte);
    }
    return legal;
}

std::string CurrentFolder() {
    std::vector<char> buffer(4096);
    while (!getcwd(buffer.data(), buffer.size()))
        buffer.resize(2 * buffer.size());
    return buffer.data();
}

// UTF-8 text as a string; null for other bytes.
CFStringRef StringFromBytes(std::string_view bytes) {
    const std::optional<std::u16string> text = Decode(bytes, kCFStringEncodingUTF8, false);
    return text ? MakeString(*text).Give() : nullptr;
}

void RequirePosixStyle(CFURLPathStyle style) {
    if (style != kCFURLPOSIXPathStyle)
        Stop("paths of another style than POSIX are not modelled");
}

} // namespace

Url::Url(const std::string &text, CFURLRef base)
    : text_(text), parts_(UrlParts::Parse(text)), string_(MakeString(std::string_view(text))) {
    if (!base || parts_.scheme)
        return;
    const Url &below = Expect<Url>(base);
    base_ = below.Base() ? CFRef<CFURLRef>::Adopt(NewUrl(below.Absolute().ToString())) : CFRef<CFURLRef>::Retain(base);
}

bool Url::EqualTo(const Object &other) const {
    const auto &url = static_cast<const Url &>(other);
    if (text_ != url.text_ || !base_ != !url.base_)
        return false;
    return !base_ || CFEqual(base_.Get(), url.base_.Get());
}

CFHashCode Url::Hash() const { return std::hash<std::string>()(text_); }

UrlParts Url::Absolute() const {
    if (!base_)
        return parts_;
    UrlParts absolute = Expect<Url>(base_.Get()).Parts();
    absolute.fragment = parts_.fragment;
    if (parts_.authority) {
        absolute.authority = parts_.authority;
        absolute.path = WithoutDotSegments(parts_.path);
    } else if (!parts_.path.empty()) {
        const std::string folder = absolute.path.substr(0, absolute.path.find_last_of('/') + 1);
        if (parts_.path.starts_with('/') || !folder.empty())
            absolute.path = WithoutDotSegments(parts_.path.starts_with('/') ? parts_.path : folder + parts_.path);
        else // the real system leaves the dots of what follows a bare host
            absolute.path = (absolute.authority ? "/" : "") + parts_.path;
    } else if (!parts_.parameters) {
        if (parts_.query)
            absolute.query = parts_.query;
        return absolute;
    }
    absolute.parameters = parts_.parameters;
    absolute.query = parts_.query;
    return absolute;
}

CFRef<CFURLRef> MakeFileUrl(std::string_view path, bool isDirectory) {
    const bool slash = isDirectory && !path.ends_with('/');
    return CFRef<CFURLRef>::Adopt(NewUrl("file://" + EscapedPath(path) + (slash ? "/" : "")));
}

std::optional<std::string> FilePathOf(CFURLRef url, const char *caller) {
    const UrlParts parts = Expect<Url>(url, caller).Absolute();
    if (!parts.scheme || strcasecmp(parts.scheme->c_str(), "file") != 0 || !parts.path.starts_with('/'))
        return std::nullopt;
    return Unescaped(parts.path);
}

} // namespace sim::macos

using namespace sim::macos;

CFTypeID CFURLGetTypeID() {
    static const CFTypeID type = RegisterType("CFURL");
    return type;
}

CFURLRef CFURLCreateWithString(CFAllocatorRef, CFStringRef string, CFURLRef base) {
    StringText text(string);
    const std::optional<std::string> legal = LegalText(text.View());
    if (createWithString.Fails() || !legal || legal->empty())
        return nullptr;
    return NewUrl(*legal, base);
}

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFURLPathStyle style, Boolean isDirectory) {
    RequirePosixStyle(style);
    StringText text(path);
    const std::optional<std::string> bytes = Encode(text.View(), kCFStringEncodingUTF8);
    if (createWithFileSystemPath.Fails() || !bytes || bytes->empty())
        return nullptr;
    const std::string_view trimmed = WithoutFinalSlashes(*bytes);
    if (trimmed.starts_with('/'))
        return MakeFileUrl(trimmed, isDirectory).Give();
    // A colon in the first name makes a scheme of it, as on the real system.
    const auto folder = MakeFileUrl(CurrentFolder(), true);
    return NewUrl(EscapedPath(trimmed) + (isDirectory ? "/" : ""), folder.Get());
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef, const FSRef *ref) {
    if (!ref)
        Stop("CFURLCreateFromFSRef was given no reference");
    if (createFromReference.Fails())
        return nullptr;
    const ReferencedItem item = ItemOf(*ref);
    if (item.error != noErr || item.isRootParent)
        return nullptr;
    return MakeFileUrl(item.path, IsDirectory(item.path)).Give();
}

Boolean CFURLGetFSRef(CFURLRef url, FSRef *ref) {
    const std::optional<std::string> path = FilePathOf(url);
    if (!ref)
        Stop("CFURLGetFSRef was given no place to store the reference");
    if (getReference.Fails() || !path)
        return false;
    const std::optional<std::string> existing = ExistingPath(*path);
    if (existing)
        *ref = ReferenceTo(*existing);
    return existing.has_value();
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style) {
    RequirePosixStyle(style);
    const UrlParts &parts = Expect<Url>(url).Parts();
    if (copyFileSystemPath.Fails() || parts.IsOpaque() || parts.path.empty())
        return nullptr;
    return StringFromBytes(WithoutFinalSlashes(Unescaped(parts.path)));
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef, CFURLRef url, CFStringRef component,
                                               Boolean isDirectory) {
    const Url &whole = Expect<Url>(url);
    const std::optional<std::string> bytes = Encode(StringText(component).View(), kCFStringEncodingUTF8);
    if (!bytes)
        Stop("CFURLCreateCopyAppendingPathComponent was given a name with an unpaired surrogate");
    UrlParts parts = whole.Parts();
    if (createAppending.Fails() || parts.IsOpaque())
        return nullptr;
    if (!parts.path.ends_with('/') && (!parts.path.empty() || parts.authority))
        parts.path += '/';
    parts.path += EscapedPath(*bytes);
    if (isDirectory && !parts.path.ends_with('/'))
        parts.path += '/';
    return NewUrl(parts.ToString(), whole.Base());
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef, CFURLRef url) {
    const Url &whole = Expect<Url>(url);
    UrlParts parts = whole.Parts();
    if (createDeleting.Fails() || parts.IsOpaque() || (parts.path.empty() && !parts.authority))
        return nullptr;
    parts.path = WithoutLastComponent(parts.path);
    return NewUrl(parts.ToString(), whole.Base());
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
    const UrlParts &parts = Expect<Url>(url).Parts();
    if (copyLastComponent.Fails())
        return nullptr;
    return parts.IsOpaque() ? MakeString("").Give() : StringFromBytes(Unescaped(LastComponent(parts.path)));
}

CFURLRef CFURLCopyAbsoluteURL(CFURLRef url) {
    const Url &whole = Expect<Url>(url);
    if (copyAbsolute.Fails())
        return nullptr;
    return whole.Base() ? NewUrl(whole.Absolute().ToString()) : static_cast<CFURLRef>(CFRetain(url));
}

CFStringRef CFURLGetString(CFURLRef url) { return Expect<Url>(url).String(); }
