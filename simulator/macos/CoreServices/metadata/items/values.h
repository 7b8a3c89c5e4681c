// Attribute values in the types a program sees. Every result is a +1 reference; null stands for no value and is passed
// on by callers as it is.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <string_view>
#include <vector>

namespace sim::macos {

/// Null for bytes that are not UTF-8.
CFTypeRef TextValue(std::string_view utf8);

/// Text that may be any bytes, as the names in a Linux file system: a byte that is no part of UTF-8 shows as a percent
/// sign and two hexadecimal digits, as the platform shows such names on foreign volumes.
CFTypeRef FileNameValue(std::string_view bytes);

/// An array of strings; null when there are none. Elements that are not UTF-8 are left out.
CFTypeRef ListValue(const std::vector<std::string_view> &utf8);

CFTypeRef NumberValue(std::int64_t number);
CFTypeRef NumberValue(double number);
CFTypeRef BooleanValue(bool value);
CFTypeRef DateValue(std::int64_t secondsSince1970, std::uint32_t nanoseconds);

} // namespace sim::macos
