#include "spotlight/item_data.h"

#include "host/exceptions.h"

MDItemRef RequireItem(REALobjectStruct *self) {
    const MDItemRef item = self ? ItemData(self).Handle : nullptr;
    if (!item)
        RaiseException("NilObjectException", "MDItem Reference is nil");
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
