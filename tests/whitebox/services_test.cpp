// The table of host services, row by row: which name each wrapper looks up, which older name it falls back on, that the
// address is kept once found, and that a missing service gives the neutral value of its result and is asked for again.
#include <doctest/doctest.h>

#include "host/host_function.h"
#include "host/owned.h"
#include "host/services.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"

#include <vector>

using whitebox::FakeResolver;
using whitebox::Restored;

namespace {

int serviceCalls = 0;

template <class Value> Value Sample() {
    if constexpr (std::is_pointer_v<Value>)
        return reinterpret_cast<Value>(uintptr_t{0x1230});
    else if constexpr (!std::is_void_v<Value>)
        return static_cast<Value>(101);
}

/// A host's side of any service: takes the sample arguments and gives the sample result.
template <class Result, class... Arguments> Result Served(Arguments... arguments) {
    serviceCalls++;
    const bool asPassed = ((arguments == Sample<Arguments>()) && ...);
    CHECK(asPassed);
    return Sample<Result>();
}

template <class Signature> struct Shape;

template <class Result, class... Arguments> struct Shape<EntryPoint<Result(Arguments...)>> {
    static constexpr auto *kService = Served<Result, Arguments...>;

    /// Calls the wrapper and tells whether it gave what it should: the host's answer, or the neutral value.
    template <class Service> static bool Call(Service &service, bool isThere) {
        if constexpr (std::is_void_v<Result>) {
            service(Sample<Arguments>()...);
            return true;
        } else {
            return service(Sample<Arguments>()...) == (isThere ? Sample<Result>() : Result());
        }
    }
};

int factoryCalls = 0;
bool hasElementFunction = true;

template <class Result, class... Arguments>
struct Shape<ElementEntryPoint<Result(_REALarray *, Arguments...)>>
    : Shape<EntryPoint<Result(_REALarray *, Arguments...)>> {
    using ElementFunction = Result (*)(_REALarray *, Arguments...);

    static ElementFunction Factory(_REALarray *array) {
        factoryCalls++;
        CHECK(array == Sample<_REALarray *>());
        return hasElementFunction ? Served<Result, _REALarray *, Arguments...> : nullptr;
    }
    static constexpr auto *kService = Factory;
};

template <class Service> void CheckFound(Service &service, const char *name, const char *olderName) {
    const Restored restored(service);
    FakeResolver resolver;
    resolver.Offer(name, Shape<Service>::kService);
    serviceCalls = 0;
    for (int i = 0; i < 3; i++)
        CHECK(Shape<Service>::Call(service, true));
    CHECK(serviceCalls == 3);
    CHECK(resolver.Questions(name) == 1);
    CHECK(resolver.Questions() == 1);
    static_cast<void>(olderName);
}

template <class Service> void CheckSecondNameFound(Service &service, const char *name, const char *olderName) {
    const Restored restored(service);
    FakeResolver resolver;
    resolver.Offer(olderName, Shape<Service>::kService);
    serviceCalls = 0;
    for (int i = 0; i < 3; i++)
        CHECK(Shape<Service>::Call(service, true));
    CHECK(serviceCalls == 3);
    CHECK(resolver.Questions(name) == 1);
    CHECK(resolver.Questions(olderName) == 1);
    CHECK(resolver.Questions() == 2);
}

template <class Service> void CheckMissingThenFound(Service &service, const char *name, const char *olderName) {
    const Restored restored(service);
    FakeResolver resolver;
    serviceCalls = 0;
    for (int i = 1; i <= 3; i++) {
        CHECK(Shape<Service>::Call(service, false));
        CHECK(resolver.Questions(name) == i);
        CHECK(resolver.Questions() == (olderName ? 2 * i : i));
    }
    CHECK(serviceCalls == 0);
    resolver.Offer(name, Shape<Service>::kService);
    CHECK(Shape<Service>::Call(service, true));
    CHECK(Shape<Service>::Call(service, true));
    CHECK(serviceCalls == 2);
    CHECK(resolver.Questions(name) == 4);
}

template <class Service> void CheckElementFunctionPerCall(Service &service, const char *name) {
    const Restored restored(service);
    FakeResolver resolver;
    resolver.Offer(name, Shape<Service>::kService);
    serviceCalls = factoryCalls = 0;
    for (int i = 0; i < 3; i++)
        CHECK(Shape<Service>::Call(service, true));
    CHECK(factoryCalls == 3);
    hasElementFunction = false;
    CHECK(Shape<Service>::Call(service, false));
    hasElementFunction = true;
    CHECK(serviceCalls == 3);
    CHECK(factoryCalls == 4);
    CHECK(resolver.Questions() == 1);
}

} // namespace

#define SERVICE(wrapper, name)                                                                                         \
    TEST_CASE(#wrapper " is looked up as " name " once, and again after each miss") {                                  \
        CheckFound(wrapper, name, nullptr);                                                                            \
        CheckMissingThenFound(wrapper, name, nullptr);                                                                 \
    }

#define SERVICE_OF_TWO_NAMES(wrapper, name, olderName)                                                                 \
    TEST_CASE(#wrapper " is looked up as " name ", else as " olderName) {                                              \
        CheckFound(wrapper, name, olderName);                                                                          \
        CheckSecondNameFound(wrapper, name, olderName);                                                                \
        CheckMissingThenFound(wrapper, name, olderName);                                                               \
    }

#define ARRAY_SERVICE(wrapper, name, olderName)                                                                        \
    SERVICE_OF_TWO_NAMES(wrapper, name, olderName)                                                                     \
    TEST_CASE(#wrapper " fetches the element function anew for each call and does nothing without one") {              \
        CheckElementFunctionPerCall(wrapper, name);                                                                    \
    }

SERVICE(REALinRuntime, "REALinRuntime")
SERVICE(REALRegisterClass, "PluginRegisterClass")
SERVICE(REALRegisterModule, "PluginRegisterModule")
SERVICE(REALRegisterMethod, "PluginRegisterMethod")
SERVICE(REALnewInstance, "PluginNewInstance")
SERVICE(REALGetClassRef, "pluginObjectType")
SERVICE(REALObjectIsA, "RuntimeObjectIsa")
SERVICE(REALLockObject, "REALLockObject")
SERVICE(REALUnlockObject, "REALUnlockObject")
SERVICE(REALLockString, "REALLockString")
SERVICE(REALUnlockString, "REALUnlockString")
SERVICE(REALGetEventInstance, "GetEventInstance")
SERVICE(REALRaiseException, "RuntimeRaiseException")
SERVICE_OF_TWO_NAMES(REALGetPropValueInteger, "REALGetPropValueInteger", "REALGetPropValueInt")
SERVICE(REALGetPropValueInt32, "REALGetPropValueInt")
SERVICE(REALGetPropValueInt64, "REALGetPropValueInt64")
SERVICE(REALGetPropValueSingle, "REALGetPropValueSingle")
SERVICE(REALGetPropValueDouble, "REALGetPropValueDouble")
SERVICE(REALGetPropValueString, "REALGetPropValueString")
SERVICE_OF_TWO_NAMES(REALSetPropValueInteger, "REALSetPropValueInteger", "REALSetPropValueInt")
SERVICE(REALSetPropValueString, "REALSetPropValueString")
SERVICE(REALCreateArray, "RuntimeArrayCreateSingleDimBoundedArray")
SERVICE(REALGetArrayUBound, "RuntimeUBound")
SERVICE(REALReadStringArray, "RuntimeDirectReadStringArray")
ARRAY_SERVICE(REALInsertArrayValueString, "PluginStringArrayInsertProc", "RuntimeArrayDirectGetInsertProc")
ARRAY_SERVICE(REALInsertArrayValueObject, "PluginObjectArrayInsertProc", "RuntimeArrayDirectGetInsertProc")
ARRAY_SERVICE(REALGetArrayValueObject, "PluginObjectArrayGetProc", "RuntimeArrayDirectGetGetProc")
ARRAY_SERVICE(REALGetArrayValueInteger, "PluginIntegerArrayGetProc", "RuntimeArrayDirectGetGetProc")
ARRAY_SERVICE(REALGetArrayValueBoolean, "PluginBooleanArrayGetProc", "RuntimeArrayDirectGetGetProc")
ARRAY_SERVICE(REALGetArrayValueInt64, "PluginInt64ArrayGetProc", "RuntimeArrayDirectGetGetProc")
ARRAY_SERVICE(REALGetArrayValueSingle, "PluginSingleArrayGetProc", "RuntimeArrayDirectGetGetProc")
ARRAY_SERVICE(REALGetArrayValueDouble, "PluginDoubleArrayGetProc", "RuntimeArrayDirectGetGetProc")
ARRAY_SERVICE(REALGetArrayValueString, "PluginStringArrayGetProc", "RuntimeArrayDirectGetGetProc")
ARRAY_SERVICE(REALSetArrayValueObject, "PluginObjectArraySetProc", "RuntimeArrayDirectGetSetProc")
SERVICE(REALFSRefFromFolderItem, "REALFSRefFromFolderItem")
SERVICE(REALGetStringData, "PluginGetStringData")
SERVICE(REALDisposeStringData, "PluginDisposeStringData")
SERVICE(REALGetStringCFString, "REALGetStringCFString")
SERVICE(REALGetStringEncoding, "REALGetStringEncoding")
SERVICE(REALSetStringEncoding, "REALSetStringEncoding")
SERVICE(REALConvertString, "REALConvertString")
SERVICE(REALBuildString, "REALBuildString")
SERVICE(REALBuildStringWithEncoding, "REALBuildStringWithEncoding")
SERVICE(REALGetStringContents, "StringGetCString")
SERVICE(REALLoadGlobalMethod, "REALLoadGlobalMethod")
SERVICE(REALLoadObjectMethod, "REALLoadObjectMethod")
SERVICE(VariantToString, "VariantToString")
SERVICE(VariantToInt32, "VariantToInt32")
SERVICE(VariantToInt64, "VariantToInt64")
SERVICE(VariantToSingle, "VariantToSingle")
SERVICE(VariantToDouble, "VariantToDouble")
SERVICE(StringToVariant, "StringToVariant")
SERVICE(BooleanToVariant, "BooleanToVariant")
SERVICE(DoubleToVariant, "DoubleToVariant")
SERVICE_OF_TWO_NAMES(IntegerToVariant, "IntegerToVariant", "Int32ToVariant")
SERVICE(Int64ToVariant, "Int64ToVariant")
SERVICE(newMemoryBlock, "newMemoryBlock")
SERVICE(memoryBlockGetSize, "memoryBlockGetSize")
SERVICE(memoryBlockGetPtr, "memoryBlockGetPtr")
SERVICE(REALFolderItemFromParentFSRef, "REALFolderItemFromParentFSRef")
SERVICE(FolderItemFromFSSpec, "FolderItemFromFSSpec")

TEST_CASE("Whether the host has a service is asked for each service by itself, and anew while it has not") {
    const Restored lock(REALLockObject), unlock(REALUnlockObject);
    FakeResolver resolver;
    CHECK_FALSE(REALLockObject);
    resolver.Offer("REALLockObject", Shape<decltype(REALLockObject)>::kService);
    CHECK(REALLockObject);
    CHECK_FALSE(REALUnlockObject);
}

TEST_CASE("What a host cannot add a reference to is not held, and is held once the host can") {
    const Restored lock(REALLockObject), unlock(REALUnlockObject);
    const Restored lockString(REALLockString), unlockString(REALUnlockString);
    FakeResolver resolver;
    auto *const object = Sample<REALobjectStruct *>();
    CHECK_FALSE(Hold(object));
    resolver.Offer("REALLockObject", Shape<decltype(REALLockObject)>::kService);
    CHECK(Hold(object).Give() == object);

    auto *const string = Sample<REALstringStruct *>();
    CHECK_FALSE(Hold(string));
    resolver.Offer("REALLockString", Shape<decltype(REALLockString)>::kService);
    CHECK(Hold(string).Give() == string);
}

namespace {

int32_t Doubled(int32_t value) { return 2 * value; }
bool languageHasFunction = true;
int loads = 0;

HostCode LoadGlobalMethod(REALmoduleStruct *module, const char *declaration) {
    loads++;
    CHECK(module == nullptr);
    CHECK(std::string(declaration) == "Doubled(value As Integer) As Integer");
    return languageHasFunction ? reinterpret_cast<HostCode>(Doubled) : nullptr;
}

} // namespace

TEST_CASE(
    "A function of the host language is loaded by declaration, without a module, once found and again until then") {
    const Restored restored(REALLoadGlobalMethod);
    HostFunction<int32_t(int32_t)> function("Doubled(value As Integer) As Integer");
    FakeResolver resolver;
    CHECK(function(21) == 0);

    resolver.Offer("REALLoadGlobalMethod", LoadGlobalMethod);
    languageHasFunction = false;
    CHECK(function(21) == 0);
    CHECK_FALSE(function);
    CHECK(loads == 2);

    languageHasFunction = true;
    CHECK(function(21) == 42);
    CHECK(function(4) == 8);
    CHECK(loads == 3);
}

namespace {

template <int32_t answer> int32_t Answering(REALobjectStruct *) { return answer; }

HostCode LoadOneOfTwo(REALmoduleStruct *, const char *declaration) {
    return reinterpret_cast<HostCode>(declaration == std::string("One(o As Object) As Integer") ? Answering<1>
                                                                                                : Answering<2>);
}

} // namespace

TEST_CASE("Functions of the host language of one shape are each loaded by their own declaration") {
    const Restored restored(REALLoadGlobalMethod);
    FakeResolver resolver;
    resolver.Offer("REALLoadGlobalMethod", LoadOneOfTwo);
    HostFunction<int32_t(REALobjectStruct *)> one("One(o As Object) As Integer"), two("Two(o As Object) As Integer");
    CHECK(one(nullptr) == 1);
    CHECK(two(nullptr) == 2);
}

TEST_CASE("A host boolean is true for any bit of its low byte and for nothing above it") {
    const Restored restored(REALinRuntime);
    FakeResolver resolver;
    static uint32_t answer;
    resolver.Offer(
        "REALinRuntime", +[]() { return answer; });
    for (const uint32_t value : {0x00000001U, 0x00000080U, 0xFFFFFF02U})
        CHECK((answer = value, REALinRuntime() != 0));
    for (const uint32_t value : {0x00000000U, 0xFFFFFF00U, 0x00000100U})
        CHECK((answer = value, REALinRuntime() == 0));
}
