// The names of the attributes that came with 10.7. They stand in a file of their own because an older system does not
// export them: leaving this file out makes one.
#include <CoreServices/MDItem.h>

#define SCHEMA_ATTRIBUTE(key, ...)
#define SCHEMA_ATTRIBUTE_10_7(key, ...) const CFStringRef key = CFSTR(#key);
#include "simulator/macos/CoreServices/metadata/schema/attributes.def"
