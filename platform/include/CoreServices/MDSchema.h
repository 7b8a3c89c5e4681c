// The Spotlight schema: what is known about an attribute, whatever file it belongs to.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXTERN_C_BEGIN

/// Keys of the dictionary that describes an attribute: its name (string), a Core Foundation type identifier (number),
/// and a boolean.
CF_EXPORT const CFStringRef kMDAttributeName;
CF_EXPORT const CFStringRef kMDAttributeType;
CF_EXPORT const CFStringRef kMDAttributeMultiValued;

CFStringRef MDSchemaCopyDisplayNameForAttribute(CFStringRef name);
CFStringRef MDSchemaCopyDisplayDescriptionForAttribute(CFStringRef name);
CFArrayRef MDSchemaCopyAllAttributes(void);
/// Null for an unknown attribute.
CFDictionaryRef MDSchemaCopyMetaAttributesForAttribute(CFStringRef name);

CF_EXTERN_C_END
