// The order of a language as bytes, for whoever compares the same texts often.
#pragma once

#include <CoreFoundation/CFString.h>

#include <string>

namespace sim::macos {

/// Bytes that stand in the order in which CFStringCompare puts the texts with these options, kCFCompareLocalized among
/// them. None of them is 0.
std::string CollationKeyOf(CFStringRef text, CFStringCompareFlags options);

} // namespace sim::macos
