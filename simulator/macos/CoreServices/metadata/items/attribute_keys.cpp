// The names of the attributes that every supported system has, as the data symbols that programs import. The text of
// each is its own name.
#include <CoreServices/MDItem.h>

#define SCHEMA_ATTRIBUTE(key, ...) const CFStringRef key = CFSTR(#key);
#define SCHEMA_ATTRIBUTE_10_7(key, ...)
#include "simulator/macos/CoreServices/metadata/schema/attributes.def"
