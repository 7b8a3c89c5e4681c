// Types of which only the identifier is modelled; instances.h makes objects of them.
#include "simulator/macos/CoreFoundation/type_named.h"

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFOtherTypes.h>

using namespace sim::macos;

CFTypeID CFAttributedStringGetTypeID() { return TypeNamed<"CFAttributedString">(); }
CFTypeID CFBagGetTypeID() { return TypeNamed<"CFBag">(); }
CFTypeID CFCharacterSetGetTypeID() { return TypeNamed<"CFCharacterSet">(); }
CFTypeID CFErrorGetTypeID() { return TypeNamed<"CFError">(); }
CFTypeID CFSetGetTypeID() { return TypeNamed<"CFSet">(); }
CFTypeID CFTimeZoneGetTypeID() { return TypeNamed<"CFTimeZone">(); }
CFTypeID CFUUIDGetTypeID() { return TypeNamed<"CFUUID">(); }
