// The C interface of the schema.
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreServices/metadata/schema/schema.h"
#include "simulator/macos/control/faults.h"

#include <CoreServices/MDSchema.h>

const CFStringRef kMDAttributeName = CFSTR("kMDAttributeName");
const CFStringRef kMDAttributeType = CFSTR("kMDAttributeType");
const CFStringRef kMDAttributeMultiValued = CFSTR("kMDAttributeMultiValued");

namespace {

using namespace sim::macos;

const FallibleCall displayNameCall("MDSchemaCopyDisplayNameForAttribute");
const FallibleCall displayDescriptionCall("MDSchemaCopyDisplayDescriptionForAttribute");
const FallibleCall allAttributesCall("MDSchemaCopyAllAttributes");
const FallibleCall metaAttributesCall("MDSchemaCopyMetaAttributesForAttribute");

CFStringRef CopyWords(CFStringRef name, std::string SchemaAttribute::*words) {
    const SchemaAttribute *attribute = Schema::Current().Find(Utf8Of(name));
    return attribute && !(attribute->*words).empty() ? MakeString(attribute->*words).Give() : nullptr;
}

} // namespace

CFStringRef MDSchemaCopyDisplayNameForAttribute(CFStringRef name) {
    if (displayNameCall.Fails())
        return nullptr;
    const OwnCalls own;
    return CopyWords(name, &SchemaAttribute::displayName);
}

CFStringRef MDSchemaCopyDisplayDescriptionForAttribute(CFStringRef name) {
    if (displayDescriptionCall.Fails())
        return nullptr;
    const OwnCalls own;
    return CopyWords(name, &SchemaAttribute::displayDescription);
}

CFArrayRef MDSchemaCopyAllAttributes(void) {
    if (allAttributesCall.Fails())
        return nullptr;
    const OwnCalls own;
    const auto names = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (std::string_view name : Schema::Current().Names())
        CFArrayAppendValue(names, MakeString(name).Get());
    return names;
}

CFDictionaryRef MDSchemaCopyMetaAttributesForAttribute(CFStringRef name) {
    if (metaAttributesCall.Fails())
        return nullptr;
    const OwnCalls own;
    return Schema::Current().CopyMetaAttributes(Utf8Of(name));
}
