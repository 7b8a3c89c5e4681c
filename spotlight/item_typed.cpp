// One attribute of an item as a value of a fixed type, by method or property.
#include "convert/string_arrays.h"
#include "host/arrays.h"
#include "host/exceptions.h"
#include "host/strings.h"
#include "spotlight/item_data.h"
#include "spotlight/item_methods.h"

namespace {

// What the typed getters accept, and the type's identifier.
template <class Reference> CFTypeID TypeIDOf();
template <> CFTypeID TypeIDOf<CFStringRef>() { return CFStringGetTypeID(); }
template <> CFTypeID TypeIDOf<CFBooleanRef>() { return CFBooleanGetTypeID(); }
template <> CFTypeID TypeIDOf<CFNumberRef>() { return CFNumberGetTypeID(); }
template <> CFTypeID TypeIDOf<CFArrayRef>() { return CFArrayGetTypeID(); }

/// The named attribute, if the item has it; of another type it raises "RuntimeException" and counts as absent.
template <class Reference> OwnedCF<Reference> CopyTyped(MDItemRef item, REALstringStruct *name) {
    const auto attribute = OwnedCF<CFStringRef>::Adopt(RBString2CFString(name));
    if (!attribute)
        return {};
    auto value = OwnedCF<CFTypeRef>::Adopt(MDItemCopyAttribute(item, attribute.Get()));
    if (!value)
        return {};
    if (CFGetTypeID(value.Get()) != TypeIDOf<Reference>()) {
        RaiseException("RuntimeException", "Wrong type used for getting attribute value.");
        return {};
    }
    return OwnedCF<Reference>::Adopt(static_cast<Reference>(value.Give()));
}

/// The named string, untested for its type: these attributes are strings on every system.
REALstringStruct *CopyStringProperty(REALobjectStruct *self, CFStringRef key) {
    // Deliberate: no exception without an item.
    const MDItemRef item = ItemData(self).Handle;
    if (!item)
        return nullptr;
    const auto value = OwnedCF<CFTypeRef>::Adopt(MDItemCopyAttribute(item, key));
    return CFString2RBString(static_cast<CFStringRef>(value.Get()));
}

} // namespace

REALstringStruct *rbMDItemCopyAttributeString(REALobjectStruct *self, REALstringStruct *name) {
    const MDItemRef item = RequireItem(self);
    return item ? CFString2RBString(CopyTyped<CFStringRef>(item, name).Get()) : nullptr;
}

bool rbMDItemCopyAttributeBoolean(REALobjectStruct *self, REALstringStruct *name) {
    const MDItemRef item = RequireItem(self);
    if (!item)
        return false;
    const auto value = CopyTyped<CFBooleanRef>(item, name);
    return value && CFBooleanGetValue(value.Get());
}

double rbMDItemCopyAttributeDouble(REALobjectStruct *self, REALstringStruct *name) {
    const MDItemRef item = RequireItem(self);
    if (!item)
        return 0;
    const auto value = CopyTyped<CFNumberRef>(item, name);
    double number = 0;
    return value && CFNumberGetValue(value.Get(), kCFNumberDoubleType, &number) ? number : 0;
}

_REALarrayString *rbMDItemCopyAttributeStringArray(REALobjectStruct *self, REALstringStruct *name) {
    auto array = OwnedHost<_REALarrayString>::Adopt(NewStringArray());
    const MDItemRef item = RequireItem(self);
    if (!item)
        return nullptr;
    if (const auto values = CopyTyped<CFArrayRef>(item, name))
        AddStringArray(array.Get(), values.Get());
    return array.Give();
}

REALstringStruct *querykMDItemDisplayName(REALobjectStruct *self, int32_t) {
    return CopyStringProperty(self, kMDItemDisplayName);
}

REALstringStruct *querykMDItemFSName(REALobjectStruct *self, int32_t) {
    return CopyStringProperty(self, kMDItemFSName);
}

REALstringStruct *querykMDItemPath(REALobjectStruct *self, int32_t) { return CopyStringProperty(self, kMDItemPath); }

int64_t querykMDItemFSSize(REALobjectStruct *self, int32_t) {
    const MDItemRef item = RequireItem(self);
    if (!item)
        return 0;
    const auto value = OwnedCF<CFTypeRef>::Adopt(MDItemCopyAttribute(item, kMDItemFSSize));
    int64_t size = 0;
    const auto number = static_cast<CFNumberRef>(value.Get());
    return number && CFNumberGetValue(number, kCFNumberSInt64Type, &size) ? size : 0;
}
