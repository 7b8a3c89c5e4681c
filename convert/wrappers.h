// Objects of companion plugins that wrap one reference of the platform. Their classes are created and tested by name;
// the application may lack any of them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/instance_data.h"
#include "host/owned.h"

/// The instance data of every wrapper class.
struct WrapperData {
    /// One retain, owned by the wrapper.
    CFTypeRef Ref;
    /// The companion's own.
    void *untouched;
    uint32_t Signature;
};

/// What `Signature` holds in a wrapper: the characters RBCF.
constexpr uint32_t kWrapperSignature = 0x52424346;

/// The record of a class without superclass. Root classes begin their data at the same place in every host object, so
/// it tells where a companion's begins too. Whoever declares such a class defines this.
extern const REALclassDefinition *const kRootClass;

/// The first fields of a companion's instance.
template <class Data> Data &CompanionData(REALobjectStruct *instance) {
    return InstanceData<Data>(instance, *kRootClass);
}

// The platform's retain functions come in as template arguments, so that a table holds a function of ours and the
// import is bound when it is first called.
template <class Result, class Parameter> Parameter ParameterOf(Result (*)(Parameter));
template <auto retain> CFTypeRef RetainForWrapper(CFTypeRef value) {
    return retain(static_cast<decltype(ParameterOf(retain))>(const_cast<void *>(value)));
}

/// An instance of the named class that owns one retain on the value, by the retain function of its type; null when the
/// application lacks the class.
OwnedObject NewWrapper(CFTypeRef value, const char *className, CFTypeRef (*retain)(CFTypeRef));

/// The same with CFRetain, in "CFObjectQTX" when the application lacks the class; null when it lacks both or the
/// instance is not a wrapper.
OwnedObject NewWrapperOrCFObject(CFTypeRef value, const char *className);

/// The reference that a companion's object holds, or the coordinates of a geometry object as data; null for an object
/// of no known class.
OwnedCF<CFTypeRef> CopyCompanion(REALobjectStruct *object);
