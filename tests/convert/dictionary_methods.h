// The methods of the host's dictionaries that conversions load and call.
#pragma once

#include <string>

namespace tests {

inline const std::string kSetter = "Dictionary.Value(key As Variant, Assigns _value As Variant)";
inline const std::string kGetter = "Dictionary.Value(key As Variant) As Variant";
inline const std::string kKeyGetter = "Dictionary.Key(index As Integer) As Variant";

} // namespace tests
