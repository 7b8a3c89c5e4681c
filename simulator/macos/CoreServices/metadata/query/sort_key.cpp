#include "simulator/macos/CoreServices/metadata/query/sort_key.h"

#include "simulator/macos/CoreFoundation/string_compare.h"

#include <CoreFoundation/CoreFoundation.h>

#include <bit>
#include <cmath>
#include <cstdint>

namespace sim::macos::query {

namespace {

/// What the key of a value begins with. No value has none.
enum class Kind : char { kNumber = 1, kDate, kString, kData, kList, kOther };

/// The highest byte first, so that bytes compare as numbers do.
void AppendUnsigned(std::string &key, std::uint64_t number) {
    for (int shift = 56; shift >= 0; shift -= 8)
        key += static_cast<char>(number >> shift);
}

constexpr std::uint64_t kSign = std::uint64_t{1} << 63;

/// What is no number comes before all numbers.
void AppendReal(std::string &key, double real) {
    if (std::isnan(real)) {
        AppendUnsigned(key, 0);
        return;
    }
    const auto bits = std::bit_cast<std::uint64_t>(real == 0 ? 0.0 : real); // zero has one sign
    AppendUnsigned(key, (bits & kSign) != 0 ? ~bits : bits | kSign);
}

/// Whole numbers beyond those that a real number can tell apart are told apart by themselves.
void AppendNumber(std::string &key, CFNumberRef number) {
    double real = 0;
    SInt64 whole = 0;
    CFNumberGetValue(number, kCFNumberDoubleType, &real);
    AppendReal(key, real);
    if (std::isnan(real))
        return;
    CFNumberGetValue(number, kCFNumberSInt64Type, &whole);
    AppendUnsigned(key, static_cast<std::uint64_t>(whole) ^ kSign);
}

std::string Begun(Kind kind) { return {static_cast<char>(kind)}; }

std::string KeyOfNumber(CFTypeRef value) {
    std::string key = Begun(Kind::kNumber);
    if (CFGetTypeID(value) == CFNumberGetTypeID()) {
        AppendNumber(key, static_cast<CFNumberRef>(value));
        return key;
    }
    const bool truth = CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
    AppendReal(key, truth ? 1 : 0);
    AppendUnsigned(key, (truth ? 1 : 0) ^ kSign);
    return key;
}

std::string KeyOfDate(CFDateRef date) {
    std::string key = Begun(Kind::kDate);
    AppendReal(key, CFDateGetAbsoluteTime(date));
    return key;
}

std::string KeyOfData(CFDataRef data) {
    const auto length = static_cast<std::size_t>(CFDataGetLength(data));
    return Begun(Kind::kData).append(reinterpret_cast<const char *>(CFDataGetBytePtr(data)), length);
}

/// Appends one of several keys so that where it ends counts before what follows: a 0 in it is followed by the highest
/// byte, two of them end it.
void AppendPart(std::string &key, std::string_view part) {
    for (const char byte : part) {
        key += byte;
        if (byte == 0)
            key += '\xff';
    }
    key.append(2, '\0');
}

std::string KeyOfList(CFArrayRef list) {
    std::string key = Begun(Kind::kList);
    for (CFIndex index = 0; index < CFArrayGetCount(list); ++index)
        AppendPart(key, SortKeyOf(CFArrayGetValueAtIndex(list, index)));
    return key;
}

} // namespace

std::string SortKeyOf(CFTypeRef value) {
    if (!value)
        return {};
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFStringGetTypeID())
        return Begun(Kind::kString) +
               CollationKeyOf(static_cast<CFStringRef>(value),
                              kCFCompareNonliteral | kCFCompareLocalized | kCFCompareNumerically);
    if (type == CFNumberGetTypeID() || type == CFBooleanGetTypeID())
        return KeyOfNumber(value);
    if (type == CFDateGetTypeID())
        return KeyOfDate(static_cast<CFDateRef>(value));
    if (type == CFDataGetTypeID())
        return KeyOfData(static_cast<CFDataRef>(value));
    return type == CFArrayGetTypeID() ? KeyOfList(static_cast<CFArrayRef>(value)) : Begun(Kind::kOther);
}

} // namespace sim::macos::query
