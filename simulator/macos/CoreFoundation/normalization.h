// The four Unicode normalization forms.
#pragma once

#include <CoreFoundation/CFString.h>

#include <string>
#include <string_view>

namespace sim::macos {

/// Stops for a number that is no form. Lone surrogates stay as they are.
std::u16string Normalized(std::u16string_view text, CFStringNormalizationForm form);

} // namespace sim::macos
