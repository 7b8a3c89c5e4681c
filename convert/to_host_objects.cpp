#include "convert/to_host_objects.h"

#include "convert/wrapper_objects.h"
#include "host/owned.h"

REALobjectStruct *WrapperKeptBy(CFTypeRef value, const char *className, CFTypeRef (*retain)(CFTypeRef)) {
    auto instance = OwnedObject::Adopt(REALnewInstance(className));
    if (!instance)
        return nullptr;
    auto &data = CompanionData<WrapperData>(instance.Get());
    data.Ref = retain(value);
    // Deliberate: these classes are tagged whatever the tag was before.
    data.Signature = kWrapperSignature;
    return instance.Give();
}

REALobjectStruct *WrapperOrCFObject(CFTypeRef value, const char *className) {
    REALobjectStruct *instance = REALnewInstance(className);
    if (!instance)
        instance = REALnewInstance("CFObjectQTX");
    if (!instance)
        return nullptr;
    auto &data = CompanionData<WrapperData>(instance);
    // Deliberate: an instance with another tag is no wrapper that may be written into; it is left alone, its reference
    // not given up.
    if (data.Signature != kWrapperSignature)
        return nullptr;
    data.Signature = kWrapperSignature;
    data.Ref = CFRetain(value);
    return instance;
}
