// The names of the attributes that every supported system has, as the data symbols that programs import. The text of
// each is its own name.
#include <CoreServices/MDItem.h>

#define ATTRIBUTE_KEY(key) const CFStringRef key = CFSTR(#key);
#define ATTRIBUTE_KEY_10_7(key)
#include "simulator/macos/CoreServices/metadata/items/attribute_keys.def"
