// Looking into colours, which no modelled function of the platform does.
#pragma once

#include <ApplicationServices/CoreGraphics.h>

#include <array>

namespace sim::macos {

/// Red, green, blue and alpha as CGColorCreateGenericRGB got them. Stops for a colour that was not made by it.
/// Implemented in ApplicationServices.
std::array<CGFloat, 4> ComponentsOf(CGColorRef color);

} // namespace sim::macos
