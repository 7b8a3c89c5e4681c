// Objects of types whose makers are not modelled, for tests that need a value of any type: images, fonts, contexts,
// sets and the like. They have the identifier, the retain count and the identity of the real thing, and no content.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <string>
#include <string_view>
#include <vector>

namespace sim::macos {

/// The types an instance can be made of: "CGImage", "CTFont", "CFUUID" and so on. The last, "CFReadStream", stands for
/// all types that no program here knows by identifier.
const std::vector<std::string> &OpaqueTypeNames();

/// +1. Stops for a name that is not in the list. Not counted among the calls that can fail.
CFTypeRef MakeInstance(std::string_view typeName);

} // namespace sim::macos
