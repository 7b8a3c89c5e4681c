// The item class: its record, its instance data, and the check with which its methods begin.
#pragma once

#include <CoreServices/CoreServices.h>

#include "host/instance_data.h"
#include "host/owned.h"

struct MDItemData {
    /// Owned; null when there is none. Host code sees it as an Integer and can write it.
    MDItemRef Handle;
    /// A variant of host code's own, given up by the destructor.
    REALobjectStruct *Tag;
};

extern REALclassDefinition MDItemClass;

inline MDItemData &ItemData(REALobjectStruct *item) { return InstanceData<MDItemData>(item, MDItemClass); }

/// Raises the "NilObjectException" of an object without an item.
void RaiseNoItem();

/// The item of an instance, borrowed. Without one, a null instance included, it raises and gives null.
MDItemRef RequireItem(REALobjectStruct *self);

/// A new host object that keeps the item alive; null for a null item or a host that cannot make one.
OwnedObject NewItemObject(MDItemRef item);
