// Attribute values as plain C++ values. Each function checks the type of the value and stops the test when it is
// another or null.
#pragma once

#include "simulator/macos/CoreFoundation/ref.h"

#include <CoreServices/CoreServices.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sim::macos {

using Value = CFRef<CFTypeRef>;

std::string Text(CFTypeRef value);
std::vector<std::string> Texts(CFTypeRef value);
std::int64_t Whole(CFTypeRef value);
/// The value must be stored as a fraction.
double Fraction(CFTypeRef value);
bool Truth(CFTypeRef value);
/// Seconds since 1970.
double Seconds(CFTypeRef value);

inline std::string Text(const Value &value) { return Text(value.Get()); }
inline std::vector<std::string> Texts(const Value &value) { return Texts(value.Get()); }
inline std::int64_t Whole(const Value &value) { return Whole(value.Get()); }
inline double Fraction(const Value &value) { return Fraction(value.Get()); }
inline bool Truth(const Value &value) { return Truth(value.Get()); }
inline double Seconds(const Value &value) { return Seconds(value.Get()); }

/// A string for a key or a path, owned.
CFRef<CFStringRef> String(std::string_view text);

/// An item made through the C interface, from a file URL; null when there is none.
CFRef<MDItemRef> ItemAt(const std::string &path);

/// An attribute of an item, or of a file that must be there, through the C interface.
Value Attribute(const CFRef<MDItemRef> &item, std::string_view key);
Value Attribute(const std::string &path, std::string_view key);

/// What a program of this machine prints, without the line's end. Stops the test when the program fails.
std::string OutputOf(const std::string &command);

} // namespace sim::macos
