#include "simulator/session/core_foundation_text.h"

#include <vector>

namespace sim {

CFStringRef NewCFString(const std::string &text) {
    return CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(text.data()),
                                   static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false);
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
