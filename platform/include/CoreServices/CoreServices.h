// The CoreServices umbrella: Core Foundation, the File Manager and Spotlight metadata.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <CoreServices/Files.h>
#include <CoreServices/Folders.h>
#include <CoreServices/MDItem.h>
#include <CoreServices/MDQuery.h>
#include <CoreServices/MDSchema.h>
