// Types of which only the type identifier is of interest here. The platform's own headers declare them one file each.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

CFTypeID CFAttributedStringGetTypeID(void);
CFTypeID CFBagGetTypeID(void);
CFTypeID CFCharacterSetGetTypeID(void);
CFTypeID CFErrorGetTypeID(void);
CFTypeID CFSetGetTypeID(void);
CFTypeID CFUUIDGetTypeID(void);

CF_EXTERN_C_END
