#include "spotlight/schema.h"

#include <CoreServices/CoreServices.h>

#include "convert/arrays.h"
#include "host/arrays.h"
#include "host/strings.h"

namespace {

template <CFStringRef (*copyText)(CFStringRef attribute)> REALstringStruct *CopySchemaText(REALstringStruct *name) {
    const auto attribute = AdoptCF(RBString2CFString(name));
    if (!attribute)
        return nullptr;
    const auto text = AdoptCF(copyText(attribute.Get()));
    return CFString2RBString(text.Get());
}

OwnedCF<CFDictionaryRef> CopyMetaAttributes(REALstringStruct *name) {
    const auto attribute = AdoptCF(RBString2CFString(name));
    if (!attribute)
        return {};
    return AdoptCF(MDSchemaCopyMetaAttributesForAttribute(attribute.Get()));
}

/// The types that have a name for host programs, in the order in which they are tried.
const char *NameOfSchemaType(CFTypeID type) {
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
    return CopySchemaText<MDSchemaCopyDisplayNameForAttribute>(name);
}

REALstringStruct *rbMDSchemaCopyDisplayDescriptionForAttribute(REALstringStruct *name) {
    return CopySchemaText<MDSchemaCopyDisplayDescriptionForAttribute>(name);
}

_REALarrayString *rbMDSchemaCopyAllAttributes() {
    auto array = NewStringArray();
    return WithStrings(std::move(array), AdoptCF(MDSchemaCopyAllAttributes()));
}

REALstringStruct *GetAttributeType(REALstringStruct *name) {
    const auto attributes = CopyMetaAttributes(name);
    const void *value = attributes ? CFDictionaryGetValue(attributes.Get(), kMDAttributeType) : nullptr;
    int32_t type = 0;
    if (!value || !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberIntType, &type))
        return nullptr;
    const char *typeName = NameOfSchemaType(static_cast<CFTypeID>(type));
    return typeName ? ASCIIText(typeName).Give() : nullptr;
}

bool GetAttributeMultiValued(REALstringStruct *name) {
    const auto attributes = CopyMetaAttributes(name);
    const void *value = attributes ? CFDictionaryGetValue(attributes.Get(), kMDAttributeMultiValued) : nullptr;
    return value && CFBooleanGetValue(static_cast<CFBooleanRef>(value));
}
