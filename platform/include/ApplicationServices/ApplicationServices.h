// The ApplicationServices umbrella: Core Graphics and Core Text on top of CoreServices.
#pragma once

#include <CoreServices/CoreServices.h>

#include <ApplicationServices/CoreGraphics.h>
#include <ApplicationServices/CoreText.h>
