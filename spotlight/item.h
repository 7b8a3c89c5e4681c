// Items: the class MDItemQTX, its instance data, the check with which its methods begin, and new objects of it.
#pragma once

#include <CoreServices/CoreServices.h>

#include "host/instance_data.h"
#include "host/owned.h"
#include "spotlight/classes.h"

struct MDItemData {
    /// Owned; null when there is none. Host code sees it as an Integer and can write it.
    MDItemRef Handle;
    /// A variant of host code's own, given up by the destructor.
    REALobjectStruct *Tag;
};

inline MDItemData &ItemData(REALobjectStruct *item) { return InstanceData<MDItemData>(item, MDItemClass); }

/// Raises the "NilObjectException" of an object without an item.
void RaiseNoItem();

/// The item of an instance, borrowed. Without one, a null instance included, it raises and gives null.
inline MDItemRef RequireItem(REALobjectStruct *self) {
    const MDItemRef item = self ? ItemData(self).Handle : nullptr;
    if (!item)
        RaiseNoItem();
    return item;
}

/// A new host object that keeps the item alive; null for a null item or a host that cannot make one.
OwnedObject NewItemObject(MDItemRef item);

/// A new host array with an object for each item; null items, and those for which the host makes no object, leave no
/// gap. A null array of items gives an empty one. Null only when the host cannot make arrays.
OwnedHost<_REALarrayObject> ConvertArray(CFArrayRef items);
