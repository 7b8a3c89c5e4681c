// The declaration of MDItemQTX: its own methods, the schema look-ups and the attribute keys. The texts are the host's
// language.
#include <iterator>

#include "convert/wrapper_objects.h"
#include "spotlight/attribute_keys.h"
#include "spotlight/item_data.h"
#include "spotlight/item_methods.h"
#include "spotlight/schema_methods.h"

namespace {

REALproperty MDItemProperties[] = {
    Stored("Handle", "Integer", offsetof(MDItemData, Handle)),
    Stored("Tag", "Variant", offsetof(MDItemData, Tag)),
    Computed("DisplayName", "String", querykMDItemDisplayName),
    Computed("FSName", "String", querykMDItemFSName),
    Computed("Path", "String", querykMDItemPath),
    Computed("FSSize", "Int64", querykMDItemFSSize),
};

REALmethodDefinition MDItemMethods[] = {
    Method("GetAttributes(names() as string) as dictionary", rbMDItemCopyAttributes),
    Method("GetAttribute(name as string) as variant", rbMDItemCopyAttribute),
    Method("Constructor(path as folderitem)", rbMDItemCreate),
    Method("AttributeNames as string()", rbMDItemCopyAttributeNames),
    Method("AttributeString(name as string) as string", rbMDItemCopyAttributeString),
    Method("AttributeBoolean(name as string) as boolean", rbMDItemCopyAttributeBoolean),
    Method("AttributeDouble(name as string) as double", rbMDItemCopyAttributeDouble),
    Method("AttributeStringArray(name as string) as string()", rbMDItemCopyAttributeStringArray),
};

// clang-format off
REALmethodDefinition MDItemSharedMethods[] = {
    SharedMethod("DisplayNameForAttribute(name as string) as string", rbMDSchemaCopyDisplayNameForAttribute),
    SharedMethod("DisplayDescriptionForAttribute(name as string) as string", rbMDSchemaCopyDisplayDescriptionForAttribute),
    SharedMethod("AllAttributes as string()", rbMDSchemaCopyAllAttributes),
    SharedMethod("AttributeType(name as string) as string", GetAttributeType),
    SharedMethod("AttributeMultiValued(name as string) as boolean", GetAttributeMultiValued),
#define ATTRIBUTE_KEY(key) SharedMethod(#key " as string", get##key),
#include "spotlight/attribute_keys.def"
#undef ATTRIBUTE_KEY
    SharedMethod("kMDItemDateAdded as string", getkMDItemDateAdded),
};
// clang-format on

} // namespace

REALclassDefinition MDItemClass = {
    .version = 13,
    .name = "MDItemQTX",
    .dataSize = sizeof(MDItemData),
    .destructor = MDItemDestructor,
    .properties = MDItemProperties,
    .methods = MDItemMethods,
    .mFlags = kClassFlags,
    .sharedMethods = MDItemSharedMethods,
};

const REALclassDefinition *const kRootClass = &MDItemClass;

static_assert(std::size(MDItemMethods) == 8 && std::size(MDItemSharedMethods) == 174);
static_assert(sizeof(MDItemData) == 8);
