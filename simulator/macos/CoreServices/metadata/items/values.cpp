#include "simulator/macos/CoreServices/metadata/items/values.h"

#include <algorithm>
#include <string>

namespace sim::macos {

namespace {

/// The length of the well-formed character that the bytes begin with; 0 when they begin with none.
std::size_t WellFormedPrefix(std::string_view bytes) {
    for (std::size_t length = 1; length <= std::min<std::size_t>(4, bytes.size()); length++) {
        if (CFTypeRef character = TextValue(bytes.substr(0, length))) {
            CFRelease(character);
            return length;
        }
    }
    return 0;
}

} // namespace

CFTypeRef TextValue(std::string_view utf8) {
    return CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(utf8.data()),
                                   static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false);
}

CFTypeRef FileNameValue(std::string_view bytes) {
    if (CFTypeRef text = TextValue(bytes))
        return text;
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string escaped;
    while (!bytes.empty()) {
        const std::size_t length = WellFormedPrefix(bytes);
        if (length > 0) {
            escaped += bytes.substr(0, length);
        } else {
            const auto byte = static_cast<unsigned char>(bytes[0]);
            escaped += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
        bytes.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return TextValue(escaped);
}

CFTypeRef ListValue(const std::vector<std::string_view> &utf8) {
    CFMutableArrayRef list = nullptr;
    for (std::string_view element : utf8) {
        CFTypeRef text = TextValue(element);
        if (!text)
            continue;
        if (!list)
            list = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
        CFArrayAppendValue(list, text);
        CFRelease(text);
    }
    return list;
}

CFTypeRef NumberValue(std::int64_t number) { return CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &number); }

CFTypeRef NumberValue(double number) { return CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &number); }

CFTypeRef BooleanValue(bool value) { return CFRetain(value ? kCFBooleanTrue : kCFBooleanFalse); }

CFTypeRef DateValue(std::int64_t secondsSince1970, std::uint32_t nanoseconds) {
    constexpr std::int64_t kSecondsFrom1970To2001 = 978307200;
    const auto seconds = static_cast<double>(secondsSince1970 - kSecondsFrom1970To2001);
    return CFDateCreate(kCFAllocatorDefault, seconds + nanoseconds * 1e-9);
}

} // namespace sim::macos
