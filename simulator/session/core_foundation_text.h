// Text on its way between this program's UTF-8 and the stand-in system's strings.
#pragma once

#include "simulator/host/ground/options.h"

#include <CoreFoundation/CoreFoundation.h>

#include <string>

namespace sim {

/// A new string, +1, or null when the bytes are no UTF-8.
CFStringRef NewCFString(const std::string &text);

/// A host's text as a new string, +1, in the host's own words about it: wide encodings are in the order of this
/// machine, whatever the text begins with. Null when the bytes are no text in the encoding.
CFStringRef NewCFString(const host::Text &text);

/// The text in UTF-8; what UTF-16 cannot mean is dropped. Null gives "".
std::string FromCFString(CFStringRef string);

} // namespace sim
