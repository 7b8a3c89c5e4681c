#include "spotlight/schema.h"

#include <cstring>

#include <CoreServices/CoreServices.h>

#include "convert/string_arrays.h"
#include "host/arrays.h"
#include "host/build_string.h"
#include "host/strings.h"

namespace {

REALstringStruct *CopyText(REALstringStruct *name, CFStringRef (*copyText)(CFStringRef attribute)) {
    const auto attribute = OwnedCF<CFStringRef>::Adopt(RBString2CFString(name));
    if (!attribute)
        return nullptr;
    const auto text = OwnedCF<CFStringRef>::Adopt(copyText(attribute.Get()));
    return CFString2RBString(text.Get());
}

OwnedCF<CFDictionaryRef> CopyMetaAttributes(REALstringStruct *name) {
    const auto attribute = OwnedCF<CFStringRef>::Adopt(RBString2CFString(name));
    if (!attribute)
        return {};
    return OwnedCF<CFDictionaryRef>::Adopt(MDSchemaCopyMetaAttributesForAttribute(attribute.Get()));
}

/// The types that have a name for host programs, in the order in which they are tried.
const char *NameOfType(CFTypeID type) {
    const struct {
        CFTypeID type;
        const char *name;
    } names[] = {
        {CFBooleanGetTypeID(), "Boolean"}, {CFNumberGetTypeID(), "Number"}, {CFDateGetTypeID(), "Date"},
        {CFStringGetTypeID(), "String"},   {CFUUIDGetTypeID(), "UUID"},     {CFArrayGetTypeID(), "Array"},
    };
    for (const auto &row : names)
        if (row.type == type)
            return row.name;
    return nullptr;
}

} // namespace

REALstringStruct *rbMDSchemaCopyDisplayNameForAttribute(REALstringStruct *name) {
    return CopyText(name, [](CFStringRef attribute) { return MDSchemaCopyDisplayNameForAttribute(attribute); });
}

REALstringStruct *rbMDSchemaCopyDisplayDescriptionForAttribute(REALstringStruct *name) {
    return CopyText(name, [](CFStringRef attribute) { return MDSchemaCopyDisplayDescriptionForAttribute(attribute); });
}

_REALarrayString *rbMDSchemaCopyAllAttributes() {
    auto array = OwnedHost<_REALarrayString>::Adopt(NewStringArray());
    const auto attributes = OwnedCF<CFArrayRef>::Adopt(MDSchemaCopyAllAttributes());
    if (attributes)
        AddStringArray(array.Get(), attributes.Get());
    return array.Give();
}

REALstringStruct *GetAttributeType(REALstringStruct *name) {
    const auto attributes = CopyMetaAttributes(name);
    const void *value = attributes ? CFDictionaryGetValue(attributes.Get(), kMDAttributeType) : nullptr;
    int32_t type = 0;
    if (!value || !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberIntType, &type))
        return nullptr;
    const char *typeName = NameOfType(static_cast<CFTypeID>(type));
    if (!typeName)
        return nullptr;
    return REALBuildUnicodeString(typeName, static_cast<int64_t>(std::strlen(typeName)), kCFStringEncodingASCII);
}

bool GetAttributeMultiValued(REALstringStruct *name) {
    const auto attributes = CopyMetaAttributes(name);
    const void *value = attributes ? CFDictionaryGetValue(attributes.Get(), kMDAttributeMultiValued) : nullptr;
    return value && CFBooleanGetValue(static_cast<CFBooleanRef>(value));
}
