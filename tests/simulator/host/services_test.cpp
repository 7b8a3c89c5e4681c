#include "tests/simulator/host/fixture.h"

#include <new>
#include <typeinfo>

namespace tests {

TEST_CASE("Every request to the resolver is counted and noted with its answer") {
    HostUnderTest host(2013.04);
    auto resolve = Host::GetResolver();
    resolve("REALLockString");
    resolve("REALLockString");
    resolve("NoSuchService");
    CHECK(host.RequestCount("REALLockString") == 2);
    CHECK(host.RequestCount("REALUnlockString") == 0);
    REQUIRE(host.Requests().size() == 3);
    CHECK(host.Requests()[1].answered);
    CHECK(host.Requests()[1].known);
    CHECK(host.Requests()[2].name == "NoSuchService");
    CHECK_FALSE(host.Requests()[2].answered);
    CHECK_FALSE(host.Requests()[2].known);
}

TEST_CASE("The same name always gets the same function") {
    HostUnderTest host;
    for (const std::string &name : Host::ServiceNames()) {
        const bool same = Host::GetResolver()(name.c_str()) == Host::GetResolver()(name.c_str());
        CHECK(same);
    }
}

TEST_CASE("Calls are counted and kept in their order with their texts and integers") {
    HostUnderTest host;
    auto newInstance = Ask<void *(const char *)>("PluginNewInstance");
    auto setInteger = Ask<uint32_t(void *, const char *, int32_t)>("REALSetPropValueInteger");
    void *date = newInstance("Date");
    setInteger(date, "Year", 1999);
    UnlockObject(date);
    CHECK(host.CallNames(true) == std::vector<std::string>{"PluginNewInstance(\"Date\")",
                                                           "REALSetPropValueInteger(\"Year\", 1999)",
                                                           "REALUnlockObject()"});
    CHECK(host.CallCount("PluginNewInstance") == 1);
    host.ClearLog();
    CHECK(host.Calls().empty());
    CHECK(host.CallCount("PluginNewInstance") == 0);
}

TEST_CASE("A listener is told of each call as it begins: texts, numbers, and what the handles stand for") {
    HostUnderTest host;
    auto setInteger = Ask<uint32_t(void *, const char *, int32_t)>("REALSetPropValueInteger");
    auto upperBound = Ask<int32_t(void *)>("RuntimeUBound");
    struct : CallListener {
        void Begins(Callee, const std::string &call) override { calls.push_back(call); }
        std::vector<std::string> calls;
    } listener;
    host.Listen(&listener);
    const Object date = host.NewDate({.year = 2014}), array = host.NewArray("string", {"a", "b"});
    setInteger(date.Address(), "Year", -1);
    upperBound(array.Address());
    void *const string = host.NewString({"text"});
    Ask<void(void *)>("REALUnlockString")(string);
    Ask<void(void *)>("REALUnlockString")(nullptr);
    host.Listen(nullptr);
    upperBound(array.Address());
    CHECK(listener.calls == std::vector<std::string>{"REALSetPropValueInteger(Date, \"Year\", -1)",
                                                     "RuntimeUBound(string()[2])", "REALUnlockString(\"text\")",
                                                     "REALUnlockString(null)"});
}

TEST_CASE("Every service that a plugin may ask for is offered by a modern host") {
    HostOptions options;
    options.version = 2016.1;
    options.makeCFString = [](const Text &) { return nullptr; };
    HostUnderTest host(options);
    for (const char *name : {"REALGetRBVersion",
                             "RegisterPluginVersion",
                             "REALinRuntime",
                             "PluginRegisterClass",
                             "PluginRegisterModule",
                             "PluginRegisterMethod",
                             "PluginNewInstance",
                             "pluginObjectType",
                             "RuntimeObjectIsa",
                             "REALLockObject",
                             "REALUnlockObject",
                             "REALLockString",
                             "REALUnlockString",
                             "GetEventInstance",
                             "RuntimeRaiseException",
                             "REALGetPropValueInteger",
                             "REALGetPropValueInt",
                             "REALGetPropValueInt64",
                             "REALGetPropValueSingle",
                             "REALGetPropValueDouble",
                             "REALGetPropValueString",
                             "REALSetPropValueInteger",
                             "REALSetPropValueInt",
                             "REALSetPropValueString",
                             "RuntimeArrayCreateSingleDimBoundedArray",
                             "RuntimeUBound",
                             "RuntimeDirectReadStringArray",
                             "PluginStringArrayInsertProc",
                             "RuntimeArrayDirectGetInsertProc",
                             "PluginObjectArrayInsertProc",
                             "PluginObjectArrayGetProc",
                             "RuntimeArrayDirectGetGetProc",
                             "PluginIntegerArrayGetProc",
                             "PluginBooleanArrayGetProc",
                             "PluginInt64ArrayGetProc",
                             "PluginSingleArrayGetProc",
                             "PluginDoubleArrayGetProc",
                             "PluginStringArrayGetProc",
                             "PluginObjectArraySetProc",
                             "RuntimeArrayDirectGetSetProc",
                             "REALFSRefFromFolderItem",
                             "REALFolderItemFromParentFSRef",
                             "FolderItemFromFSSpec",
                             "PluginGetStringData",
                             "PluginDisposeStringData",
                             "REALGetStringCFString",
                             "REALGetStringEncoding",
                             "REALSetStringEncoding",
                             "REALConvertString",
                             "REALBuildString",
                             "REALBuildStringWithEncoding",
                             "StringGetCString",
                             "REALLoadGlobalMethod",
                             "REALLoadObjectMethod",
                             "StringToVariant",
                             "BooleanToVariant",
                             "DoubleToVariant",
                             "IntegerToVariant",
                             "Int32ToVariant",
                             "Int64ToVariant",
                             "VariantToString",
                             "VariantToInt32",
                             "VariantToInt64",
                             "VariantToSingle",
                             "VariantToDouble",
                             "newMemoryBlock",
                             "memoryBlockGetSize",
                             "memoryBlockGetPtr"}) {
        CAPTURE(name);
        CHECK(IsOffered(name));
    }
    CHECK(CanLoadGlobal("LenB( s as string ) as integer"));
    CHECK(CanLoadGlobal("VarType(value As Variant) As Int32"));
}

TEST_CASE("A host that keeps no log still counts") {
    HostOptions options;
    options.recordCalls = false;
    HostUnderTest host(options);
    UnlockObject(Ask<void *(const char *)>("PluginNewInstance")("Date"));
    CHECK(host.Calls().empty());
    CHECK(host.Requests().empty());
    CHECK(host.CallCount("PluginNewInstance") == 1);
    CHECK(host.RequestCount("PluginNewInstance") == 1);
}

TEST_CASE("A withheld service is not found until it is offered again") {
    HostOptions options;
    options.withheld = {"REALLockObject"};
    HostUnderTest host(options);
    CHECK_FALSE(IsOffered("REALLockObject"));
    host.Offer("REALLockObject");
    CHECK(IsOffered("REALLockObject"));
    host.Withhold("REALLockObject");
    CHECK_FALSE(IsOffered("REALLockObject"));
    CHECK_THROWS_AS(host.Withhold("REALLockObjects"), ProgramError);
}

TEST_CASE("A service withheld for two requests is found by the third") {
    HostUnderTest host;
    host.WithholdFirst("RuntimeUBound", 2);
    CHECK_FALSE(IsOffered("RuntimeUBound"));
    CHECK_FALSE(IsOffered("RuntimeUBound"));
    CHECK(IsOffered("RuntimeUBound"));
}

TEST_CASE("A host with second names only lacks every first name that has one") {
    HostOptions options;
    options.secondNamesOnly = true;
    HostUnderTest host(options);
    for (const char *name :
         {"REALGetPropValueInteger", "REALSetPropValueInteger", "IntegerToVariant", "PluginStringArrayGetProc",
          "PluginObjectArrayGetProc", "PluginBooleanArrayGetProc", "PluginIntegerArrayGetProc",
          "PluginInt64ArrayGetProc", "PluginSingleArrayGetProc", "PluginDoubleArrayGetProc",
          "PluginStringArrayInsertProc", "PluginObjectArrayInsertProc", "PluginObjectArraySetProc"})
        CHECK_FALSE(IsOffered(name));
    for (const char *name :
         {"REALGetPropValueInt", "REALSetPropValueInt", "Int32ToVariant", "RuntimeArrayDirectGetGetProc",
          "RuntimeArrayDirectGetInsertProc", "RuntimeArrayDirectGetSetProc", "REALLockObject"})
        CHECK(IsOffered(name));
}

TEST_CASE("Element functions and declared methods are not found by name") {
    HostUnderTest host;
    CHECK_FALSE(IsOffered("string array get"));
    CHECK_FALSE(IsOffered("LenB( s as string ) as integer"));
}

TEST_CASE("The version is reported as it was set, and not at all by a host without one") {
    {
        HostUnderTest host(2016.1);
        CHECK(Ask<double()>("REALGetRBVersion")() == 2016.1);
    }
    HostOptions options;
    options.version = std::nullopt;
    HostUnderTest host(options);
    CHECK_FALSE(IsOffered("REALGetRBVersion"));
}

TEST_CASE("Services that came with a version are missing before it") {
    struct Row {
        const char *name;
        double since;
    };
    for (const Row &row : {Row{"PluginRegisterModule", 2013.0}, Row{"REALBuildStringWithEncoding", 2012.0},
                           Row{"REALGetStringCFString", 2012.0}}) {
        CAPTURE(row.name);
        HostOptions options;
        options.makeCFString = [](const Text &) { return nullptr; };
        options.version = row.since;
        {
            HostUnderTest host(options);
            CHECK(IsOffered(row.name));
        }
        options.version = row.since - 0.5;
        HostUnderTest host(options);
        CHECK_FALSE(IsOffered(row.name));
    }
}

TEST_CASE("Boolean results carry dirty upper bytes") {
    HostOptions options;
    options.runsBuiltApplication = false;
    HostUnderTest host(options);
    const uint32_t answer = Ask<uint32_t()>("REALinRuntime")();
    CHECK(answer != 0);
    CHECK_FALSE(LowByte(answer));
}

TEST_CASE("A service can be made to return nothing for chosen calls") {
    HostUnderTest host;
    auto newInstance = Ask<void *(const char *)>("PluginNewInstance");
    host.ReturnNothing("PluginNewInstance", 2, 2);
    void *first = newInstance("Date");
    CHECK(newInstance("Date") == nullptr);
    void *third = newInstance("Date");
    CHECK(first != nullptr);
    CHECK(third != nullptr);
    UnlockObject(first);
    UnlockObject(third);
    CHECK(host.CallCount("PluginNewInstance") == 3);
}

namespace {

/// What comes out of a service that throws `exception`.
template <class Exception> std::string Thrown(Exception exception) {
    HostUnderTest host;
    host.ThrowFrom("REALBuildString", exception);
    try {
        Ask<void *(const char *, int32_t)>("REALBuildString")("x", 1);
    } catch (const Exception &caught) {
        return caught.what();
    }
    return "nothing";
}

} // namespace

TEST_CASE("A service can throw any C++ exception into the plugin") {
    CHECK(Thrown(std::range_error("range")) == "range");
    CHECK(Thrown(std::out_of_range("out of range")) == "out of range");
    CHECK(Thrown(std::overflow_error("overflow")) == "overflow");
    CHECK(Thrown(std::underflow_error("underflow")) == "underflow");
    CHECK(Thrown(std::bad_cast()) == std::bad_cast().what());
    CHECK(Thrown(std::bad_alloc()) == std::bad_alloc().what());
    CHECK(Thrown(std::logic_error("other")) == "other");
}

TEST_CASE("A service can throw something without a description") {
    HostUnderTest host;
    host.Throw(
        "REALBuildString", [] { throw 42; }, 1, 1);
    auto build = Ask<void *(const char *, int32_t)>("REALBuildString");
    CHECK_THROWS_AS(build("x", 1), int);
    UnlockString(build("x", 1));
    host.Throw("REALBuildString", [] { throw 42; });
    host.Mend("REALBuildString");
    UnlockString(build("x", 1));
}

TEST_CASE("An action runs before a chosen call, and may change what the call finds") {
    HostUnderTest host;
    Object array = host.NewArray("integer", {1, 2, 3});
    auto ubound = Ask<int32_t(void *)>("RuntimeUBound");
    host.Before("RuntimeUBound", 2, [&] { array.Resize(0); });
    CHECK(ubound(array.Address()) == 2);
    CHECK(ubound(array.Address()) == 0);
    CHECK(ubound(array.Address()) == 0);
}

TEST_CASE("Loads by declaration count as requests under their own names and can be withheld") {
    HostUnderTest host;
    CHECK(CanLoadGlobal("lenb(s as String) as Integer"));
    CHECK(host.RequestCount("LenB( s as string ) as integer") == 1);
    host.Withhold("LenB( s as string ) as integer");
    CHECK_FALSE(CanLoadGlobal("LenB( s as string ) as integer"));
    CHECK_FALSE(CanLoadGlobal("Rnd() as double"));
    CHECK_FALSE(host.Requests().back().known);
    Object dictionary = host.NewDictionary();
    host.Withhold("Dictionary.Key(index As Integer) As Variant");
    CHECK_FALSE(CanLoadOn(dictionary.Address(), "Key(index As Integer) As Variant"));
    CHECK(CanLoadOn(dictionary.Address(), "Value(key As Variant) As Variant"));
}

TEST_CASE("A service called while no host is alive stops") {
    void (*lock)(const void *) = nullptr;
    {
        HostUnderTest host;
        lock = Ask<void(const void *)>("REALLockObject");
    }
    CHECK(Contains(ReasonOfStop([&] { lock(nullptr); }), "no host is alive"));
}

} // namespace tests
