#include "bench/bare_host.h"

#include "host/runtime.h"

#include <cstring>
#include <string_view>

namespace bench {

namespace {

/// An old host's string: its words are read in place.
struct String {
    uint32_t unknown1 = 0;
    const char *storage;
    uint32_t unknown2 = 0;
    int32_t length;
};

constexpr char kText[] = "\x15kMDItemContentTypeTre";
String sampleString = {.storage = kText, .length = 21};
alignas(16) unsigned char sampleObject[64];
alignas(16) unsigned char sampleArray[64];
volatile int32_t counter;

using InsertFunction = void (*)(_REALarray *, int32_t, REALobjectStruct *);
InsertFunction InsertFunctionOf(_REALarray *) { return InsertObject; }

const void *NoCFString(REALstringStruct *, int32_t) { return nullptr; }

struct Service {
    std::string_view name;
    HostCode code;
};

template <class Function> Service Serves(std::string_view name, Function *function) {
    return {name, reinterpret_cast<HostCode>(function)};
}

HostCode Resolve(const char *name) {
    static const Service services[] = {
        Serves("REALBuildString", BuildString),
        Serves("REALSetStringEncoding", SetStringEncoding),
        Serves("REALGetStringEncoding", GetStringEncoding),
        Serves("REALGetStringCFString", NoCFString),
        Serves("REALLockString", LockString),
        Serves("REALUnlockString", UnlockString),
        Serves("IntegerToVariant", IntegerToVariant),
        Serves("PluginNewInstance", NewInstance),
        Serves("REALUnlockObject", UnlockObject),
        Serves("RuntimeArrayCreateSingleDimBoundedArray", CreateArray),
        Serves("PluginObjectArrayInsertProc", InsertFunctionOf),
    };
    for (const Service &service : services)
        if (service.name == name)
            return service.code;
    return nullptr;
}

} // namespace

void UseBareHost() { gResolver = Resolve; }

REALstringStruct *SampleString() { return reinterpret_cast<REALstringStruct *>(&sampleString); }
_REALarray *SampleArray() { return reinterpret_cast<_REALarray *>(sampleArray); }

REALstringStruct *BuildString(const void *, int32_t) { return SampleString(); }
void SetStringEncoding(REALstringStruct *, uint32_t encoding) { counter = static_cast<int32_t>(encoding); }
uint32_t GetStringEncoding(REALstringStruct *) { return 0x08000100; }
void LockString(REALstringStruct *) { counter = counter + 1; }
void UnlockString(REALstringStruct *) { counter = counter - 1; }
REALobjectStruct *IntegerToVariant(int32_t value) {
    counter = value;
    return reinterpret_cast<REALobjectStruct *>(sampleObject);
}
REALobjectStruct *NewInstance(const char *) { return reinterpret_cast<REALobjectStruct *>(sampleObject); }
void UnlockObject(REALobjectStruct *) { counter = counter - 1; }
_REALarray *CreateArray(int32_t, int32_t) { return SampleArray(); }
void InsertObject(_REALarray *, int32_t index, REALobjectStruct *) { counter = index; }

} // namespace bench
