#include "simulator/session/core_foundation_text.h"

#include <vector>

namespace sim {

CFStringRef NewCFString(const std::string &text) { return NewCFString(host::Text{text, kCFStringEncodingUTF8}); }

CFStringRef NewCFString(const host::Text &text) {
    CFStringEncoding encoding = text.encoding;
    if (encoding == kCFStringEncodingUTF16)
        encoding = kCFStringEncodingUTF16LE;
    else if (encoding == kCFStringEncodingUTF32)
        encoding = kCFStringEncodingUTF32LE;
    return CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(text.bytes.data()),
                                   static_cast<CFIndex>(text.bytes.size()), encoding, false);
}

std::string FromCFString(CFStringRef string) {
    if (!string)
        return {};
    constexpr CFIndex kBytesPerUnit = 3;
    std::vector<char> buffer(static_cast<size_t>(CFStringGetLength(string) * kBytesPerUnit + 1));
    if (!CFStringGetCString(string, buffer.data(), static_cast<CFIndex>(buffer.size()), kCFStringEncodingUTF8))
        return {};
    return buffer.data();
}

} // namespace sim
