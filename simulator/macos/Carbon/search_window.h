// The search window as a test sees it: which calls asked for it, and what they are answered. Implemented in Carbon.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <optional>
#include <string>
#include <vector>

namespace sim::macos::searchwindow {

struct Call {
    std::optional<std::u16string> text; ///< Nothing when the text was null.
    OptionBits options;
};

/// The calls since the last Reset, in their order.
const std::vector<Call> &Calls();
/// What the following calls answer; noErr at the start.
void SetStatus(OSStatus status);
/// Forgets the calls and answers noErr again.
void Reset();

} // namespace sim::macos::searchwindow
