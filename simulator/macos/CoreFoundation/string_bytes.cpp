// The calls that make strings from bytes and write them as C strings.
#include "simulator/macos/CoreFoundation/string.h"
#include "simulator/macos/CoreFoundation/string_encoding.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/control/faults.h"

#include <algorithm>
#include <cstring>

using namespace sim::macos;

namespace {

FallibleCall createWithBytes("CFStringCreateWithBytes");
FallibleCall createWithCString("CFStringCreateWithCString");

CFStringRef NewString(std::string_view bytes, CFStringEncoding encoding, bool isExternal) {
    if (bytes.empty())
        return EmptyString();
    std::optional<std::u16string> text = Decode(bytes, encoding, isExternal);
    return text ? (new String(std::move(*text)))->As<CFStringRef>() : nullptr;
}

} // namespace

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8 *bytes, CFIndex byteCount, CFStringEncoding encoding,
                                    Boolean isExternalRepresentation) {
    if (byteCount < 0 || (byteCount > 0 && !bytes))
        Stop("CFStringCreateWithBytes was given no bytes, or less than none");
    if (createWithBytes.Fails())
        return nullptr;
    return NewString({reinterpret_cast<const char *>(bytes), static_cast<std::size_t>(byteCount)}, encoding,
                     isExternalRepresentation);
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char *text, CFStringEncoding encoding) {
    if (!text)
        Stop("CFStringCreateWithCString was given null");
    return createWithCString.Fails() ? nullptr : NewString(text, encoding, false);
}

Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex bufferSize, CFStringEncoding encoding) {
    StringText text(string);
    if (!buffer)
        Stop("CFStringGetCString was given no buffer");
    const std::optional<std::string> bytes = Encode(text.View(), encoding);
    const bool isAscii = std::all_of(text.View().begin(), text.View().end(), [](char16_t unit) { return unit < 0x80; });
    if (bytes && bufferSize == 1 && !isAscii)
        return true; // as the real system says, and writes nothing
    if (!bytes || bufferSize < 1 || bytes->size() > static_cast<std::size_t>(bufferSize) - 1)
        return false;
    std::memcpy(buffer, bytes->c_str(), bytes->size() + 1);
    return true;
}
