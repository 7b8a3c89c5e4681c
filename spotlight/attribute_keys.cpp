#include "spotlight/attribute_keys.h"

#include <CoreServices/CoreServices.h>

#include "host/strings.h"

namespace {

/// The address of a constant that the running system lacks is null.
REALstringStruct *AttributeKeyText(const CFStringRef *constant, const char *name) {
    return constant ? CFString2RBString(*constant) : ASCIIText(name).Give();
}

} // namespace

#define ATTRIBUTE_KEY(key)                                                                                             \
    REALstringStruct *get##key() { return AttributeKeyText(&key, #key); }
#include "spotlight/attribute_keys.def"
#undef ATTRIBUTE_KEY

REALstringStruct *getkMDItemDateAdded() { return ASCIIText("kMDItemDateAdded").Give(); }
