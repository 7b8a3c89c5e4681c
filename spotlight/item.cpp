// An item from construction to destruction, and its attributes as host values.
#include "convert/folder_items.h"
#include "convert/string_arrays.h"
#include "convert/to_host.h"
#include "host/arrays.h"
#include "host/exceptions.h"
#include "host/strings.h"
#include "spotlight/item_data.h"
#include "spotlight/item_methods.h"

void rbMDItemCreate(REALobjectStruct *self, REALfolderItemStruct *path) {
    if (!path) {
        RaiseException("NilObjectException", "Folderitem is nil");
        return;
    }
    auto url = OwnedCF<CFURLRef>::Adopt(CreateCFURLfromFolderItem(path));
    if (!url) {
        RaiseException("NilObjectException", "Folderitem is invalid");
        return;
    }
    const MDItemRef item = MDItemCreateWithURL(kCFAllocatorDefault, url.Get());
    ItemData(self).Handle = item;
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
    const auto attribute = OwnedCF<CFStringRef>::Adopt(RBString2CFString(name));
    if (!attribute)
        return nullptr;
    const auto value = OwnedCF<CFTypeRef>::Adopt(MDItemCopyAttribute(item, attribute.Get()));
    return GetCFTypeAsVariant(value.Get());
}

REALobjectStruct *rbMDItemCopyAttributes(REALobjectStruct *self, _REALarrayString *names) {
    const MDItemRef item = RequireItem(self);
    if (!item)
        return nullptr;
    const auto wanted = OwnedCF<CFMutableArrayRef>::Adopt(NewCFStringArray(names));
    if (!wanted)
        return nullptr;
    const auto attributes = OwnedCF<CFDictionaryRef>::Adopt(MDItemCopyAttributes(item, wanted.Get()));
    return attributes ? NewHostDictionary(attributes.Get()) : nullptr;
}

_REALarrayString *rbMDItemCopyAttributeNames(REALobjectStruct *self) {
    auto array = OwnedHost<_REALarrayString>::Adopt(NewStringArray());
    const MDItemRef item = RequireItem(self);
    if (!item)
        return nullptr;
    const auto names = OwnedCF<CFArrayRef>::Adopt(MDItemCopyAttributeNames(item));
    if (names)
        AddStringArray(array.Get(), names.Get());
    return array.Give();
}
