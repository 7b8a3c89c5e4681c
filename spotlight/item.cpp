// Items: the methods of MDItemQTX and, at the end, its declaration, with the schema look-ups and the attribute keys
// that it carries. The declarations are texts of the host's language. Methods raise "NilObjectException" on an object
// without an item and return the neutral value of their result; string and object results are +1.
#include "spotlight/item.h"

#include <iterator>

#include "convert/arrays.h"
#include "convert/dictionaries.h"
#include "convert/folder_items.h"
#include "convert/values.h"
#include "convert/wrappers.h"
#include "host/arrays.h"
#include "host/exceptions.h"
#include "host/strings.h"
#include "spotlight/attribute_keys.h"
#include "spotlight/schema.h"

void RaiseNoItem() { RaiseException("NilObjectException", "MDItem Reference is nil"); }

OwnedObject NewItemObject(MDItemRef item) {
    if (!item)
        return {};
    auto object = AdoptHost(REALnewInstance("MDItemQTX"));
    if (object)
        ItemData(object.Get()).Handle = HoldCF(item).Give();
    return object;
}

OwnedHost<_REALarrayObject> ConvertArray(CFArrayRef items) {
    auto array = NewObjectArray();
    const CFIndex count = items ? CFArrayGetCount(items) : 0;
    int32_t position = 0;
    for (CFIndex i = 0; i < count; i++) {
        const auto item = static_cast<MDItemRef>(const_cast<void *>(CFArrayGetValueAtIndex(items, i)));
        auto object = NewItemObject(item);
        if (!object)
            continue;
        REALInsertArrayValueObject(array.Get(), position++, object.Get());
        Release(object);
    }
    return array;
}

namespace {

/// Raises "NilObjectException" when the folder item is null, has no URL or leads to no item; the object then has none.
void rbMDItemCreate(REALobjectStruct *self, REALfolderItemStruct *path) {
    if (!path) {
        RaiseException("NilObjectException", "Folderitem is nil");
        return;
    }
    auto url = AdoptCF(CreateCFURLfromFolderItem(path));
    if (!url) {
        RaiseException("NilObjectException", "Folderitem is invalid");
        return;
    }
    MDItemRef &item = ItemData(self).Handle;
    item = MDItemCreateWithURL(kCFAllocatorDefault, url.Get());
    Release(url);
    if (!item)
        RaiseNoItem();
}

void MDItemDestructor(REALobjectStruct *self) {
    MDItemData &data = ItemData(self);
    if (data.Handle)
        CFRelease(data.Handle);
    data.Handle = nullptr;
    if (data.Tag)
        REALUnlockObject(data.Tag);
    data.Tag = nullptr;
}

REALobjectStruct *rbMDItemCopyAttribute(REALobjectStruct *self, REALstringStruct *name) {
    const MDItemRef item = RequireItem(self);
    if (!item)
        return nullptr;
    const auto attribute = AdoptCF(RBString2CFString(name));
    if (!attribute)
        return nullptr;
    const auto value = AdoptCF(MDItemCopyAttribute(item, attribute.Get()));
    return GetCFTypeAsVariant(value.Get());
}

REALobjectStruct *rbMDItemCopyAttributes(REALobjectStruct *self, _REALarrayString *names) {
    const MDItemRef item = RequireItem(self);
    if (!item)
        return nullptr;
    const auto wanted = AdoptCF(NewCFStringArray(names));
    if (!wanted)
        return nullptr;
    const auto attributes = AdoptCF(MDItemCopyAttributes(item, wanted.Get()));
    return attributes ? NewHostDictionary(attributes.Get()).Give() : nullptr;
}

_REALarrayString *rbMDItemCopyAttributeNames(REALobjectStruct *self) {
    auto array = NewStringArray();
    const MDItemRef item = RequireItem(self);
    return item ? WithStrings(std::move(array), AdoptCF(MDItemCopyAttributeNames(item))) : nullptr;
}

// What the typed getters accept, and the type's identifier.
template <class Reference> CFTypeID TypeIDOfAttribute();
template <> CFTypeID TypeIDOfAttribute<CFStringRef>() { return CFStringGetTypeID(); }
template <> CFTypeID TypeIDOfAttribute<CFBooleanRef>() { return CFBooleanGetTypeID(); }
template <> CFTypeID TypeIDOfAttribute<CFNumberRef>() { return CFNumberGetTypeID(); }
template <> CFTypeID TypeIDOfAttribute<CFArrayRef>() { return CFArrayGetTypeID(); }

/// The named attribute, if the item has it; of another type it raises "RuntimeException" and counts as absent.
template <class Reference> OwnedCF<Reference> CopyTypedAttribute(MDItemRef item, REALstringStruct *name) {
    const auto attribute = AdoptCF(RBString2CFString(name));
    if (!attribute)
        return {};
    auto value = AdoptCF(MDItemCopyAttribute(item, attribute.Get()));
    if (!value)
        return {};
    if (CFGetTypeID(value.Get()) != TypeIDOfAttribute<Reference>()) {
        RaiseException("RuntimeException", "Wrong type used for getting attribute value.");
        return {};
    }
    return AdoptCF(static_cast<Reference>(value.Give()));
}

/// The named string, untested for its type: these attributes are strings on every system.
REALstringStruct *CopyStringAttribute(REALobjectStruct *self, CFStringRef key) {
    // Deliberate: no exception without an item.
    const MDItemRef item = ItemData(self).Handle;
    if (!item)
        return nullptr;
    const auto value = AdoptCF(MDItemCopyAttribute(item, key));
    return CFString2RBString(static_cast<CFStringRef>(value.Get()));
}

// These raise "RuntimeException" for an attribute of another type.
REALstringStruct *rbMDItemCopyAttributeString(REALobjectStruct *self, REALstringStruct *name) {
    const MDItemRef item = RequireItem(self);
    return item ? CFString2RBString(CopyTypedAttribute<CFStringRef>(item, name).Get()) : nullptr;
}

bool rbMDItemCopyAttributeBoolean(REALobjectStruct *self, REALstringStruct *name) {
    const MDItemRef item = RequireItem(self);
    if (!item)
        return false;
    const auto value = CopyTypedAttribute<CFBooleanRef>(item, name);
    return value && CFBooleanGetValue(value.Get());
}

double rbMDItemCopyAttributeDouble(REALobjectStruct *self, REALstringStruct *name) {
    const MDItemRef item = RequireItem(self);
    if (!item)
        return 0;
    const auto value = CopyTypedAttribute<CFNumberRef>(item, name);
    double number = 0;
    return value && CFNumberGetValue(value.Get(), kCFNumberDoubleType, &number) ? number : 0;
}

_REALarrayString *rbMDItemCopyAttributeStringArray(REALobjectStruct *self, REALstringStruct *name) {
    auto array = NewStringArray();
    const MDItemRef item = RequireItem(self);
    return item ? WithStrings(std::move(array), CopyTypedAttribute<CFArrayRef>(item, name)) : nullptr;
}

// Computed properties. Without an item the three strings are silently empty; only the size raises.
REALstringStruct *querykMDItemDisplayName(REALobjectStruct *self, int32_t) {
    return CopyStringAttribute(self, kMDItemDisplayName);
}

REALstringStruct *querykMDItemFSName(REALobjectStruct *self, int32_t) {
    return CopyStringAttribute(self, kMDItemFSName);
}

REALstringStruct *querykMDItemPath(REALobjectStruct *self, int32_t) { return CopyStringAttribute(self, kMDItemPath); }

/// Bytes.
int64_t querykMDItemFSSize(REALobjectStruct *self, int32_t) {
    const MDItemRef item = RequireItem(self);
    if (!item)
        return 0;
    const auto value = AdoptCF(MDItemCopyAttribute(item, kMDItemFSSize));
    int64_t size = 0;
    const auto number = static_cast<CFNumberRef>(value.Get());
    return number && CFNumberGetValue(number, kCFNumberSInt64Type, &size) ? size : 0;
}

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
    .name = "MDItemQTX",
    .dataSize = sizeof(MDItemData),
    .destructor = MDItemDestructor,
    .properties = MDItemProperties,
    .methods = MDItemMethods,
    .mFlags = kClassFlags,
    .sharedMethods = MDItemSharedMethods,
};

const REALclassDefinition *const kRootClass = &MDItemClass;

static_assert(std::size(MDItemMethods) == 8);
static_assert(sizeof(MDItemData) == 8);
