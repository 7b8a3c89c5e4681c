#include "spotlight/item_data.h"

#include "host/exceptions.h"

void RaiseNoItem() { RaiseException("NilObjectException", "MDItem Reference is nil"); }

MDItemRef RequireItem(REALobjectStruct *self) {
    const MDItemRef item = self ? ItemData(self).Handle : nullptr;
    if (!item)
        RaiseNoItem();
    return item;
}

OwnedObject NewItemObject(MDItemRef item) {
    if (!item)
        return {};
    auto object = OwnedObject::Adopt(REALnewInstance("MDItemQTX"));
    if (object) {
        ItemData(object.Get()).Handle = item;
        CFRetain(item);
    }
    return object;
}
