#include "host/objects.h"

OwnedObject NewInstance(const char *className, const char *otherClassName) {
    auto instance = AdoptHost(REALnewInstance(className));
    return instance ? std::move(instance) : AdoptHost(REALnewInstance(otherClassName));
}

bool IsA(REALobjectStruct *object, const char *className) {
    REALclassStruct *classRef = REALGetClassRef(className);
    return classRef && REALObjectIsA(object, classRef);
}
