#include "spotlight/attribute_keys.h"

#include <cstring>

#include <CoreServices/CoreServices.h>

#include "host/build_string.h"
#include "host/strings.h"

namespace {

REALstringStruct *ASCIIText(const char *text) {
    return REALBuildUnicodeString(text, static_cast<int64_t>(std::strlen(text)), kCFStringEncodingASCII);
}

/// The address of a constant that is younger than the running system is null.
REALstringStruct *KeyText(const CFStringRef *constant, const char *name) {
    return constant ? CFString2RBString(*constant) : ASCIIText(name);
}

} // namespace

#define ATTRIBUTE_KEY(key)                                                                                             \
    REALstringStruct *get##key() { return KeyText(&key, #key); }
#include "spotlight/attribute_keys.def"
#undef ATTRIBUTE_KEY

REALstringStruct *getkMDItemDateAdded() { return ASCIIText("kMDItemDateAdded"); }
