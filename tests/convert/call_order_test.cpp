// The order in which a conversion calls the host and the system, with what it tells them: what is held while it is
// read, what is given up when, and what reaches a service unchanged.
#include "tests/convert/dictionary_methods.h"
#include "tests/convert/value_session.h"
#include "tests/support/call_log.h"
#include "tests/support/temporary_folder.h"

#include "simulator/macos/control/faults.h"
#include "tests/support/host_ages.h"

#include <doctest/doctest.h>

#include <algorithm>

using sim::host::HostOptions;
using sim::host::Object;
using sim::host::Value;
using tests::AtAges;
using tests::CallLines;
using tests::CallLog;
using tests::CoreArray;
using tests::CoreDictionary;
using tests::CoreInteger;
using tests::CoreText;
using tests::CoreValue;
using tests::kGetter;
using tests::kKeyGetter;
using tests::kSetter;
using tests::TemporaryFolder;
using tests::ValueSession;

namespace {

const std::string kLoadConstructor = "REALLoadObjectMethod(Date, \"Year as Integer, Month as Integer = 1, Day as "
                                     "Integer = 1, hour as Integer = 0, minute as Integer = 0, second as Integer = "
                                     "0\")";
const std::string kLoadSetter = "\"Value(key As Variant, Assigns _value As Variant)\")";
const std::string kLoadGetter = "\"Value(key As Variant) As Variant\")";
const std::string kLoadKeyGetter = "\"Key(index As Integer) As Variant\")";

} // namespace

TEST_CASE("A host variant is asked for its type, with no module, before it is asked for its value") {
    ValueSession session;
    CallLog log(session);
    session.FromHost(7);
    CHECK(
        log.Take({"REALLoadGlobalMethod", "VarType(value As Variant) As Int32", "VariantToInt32", "CFNumberCreate"}) ==
        CallLines{"REALLoadGlobalMethod(null, \"VarType(value As Variant) As Int32\")",
                  "VarType(value As Variant) As Int32(variant)", "VariantToInt32(variant)", "CFNumberCreate(3)"});
}

TEST_CASE("The name of a question is converted before its value") {
    ValueSession session;
    CallLog log(session);
    session.FromHost(7);
    CHECK(log.Take({"REALGetStringEncoding", "VariantToInt32", "MDQueryGetCountOfResultsWithAttributeValue"}) ==
          CallLines{"REALGetStringEncoding(\"value\")", "VariantToInt32(variant)",
                    "MDQueryGetCountOfResultsWithAttributeValue(MDQuery, \"value\", CFNumber)"});
}

TEST_CASE("The string of a variant is given up once it is converted") {
    ValueSession session;
    CallLog log(session);
    session.FromHost("text");
    CHECK(log.Take({"VariantToString", "REALUnlockString", "MDQueryGetCountOfResultsWithAttributeValue"}) ==
          CallLines{"VariantToString(variant)", "REALUnlockString(\"text\")",
                    "MDQueryGetCountOfResultsWithAttributeValue(MDQuery, \"value\", \"text\")"});
}

TEST_CASE("A MemoryBlock is locked, asked for its size and its bytes, copied and unlocked") {
    ValueSession session;
    const Object block = session.Host().NewMemoryBlock("abc");
    CallLog log(session);
    session.FromHost(block);
    CHECK(log.Take({"REALLockObject", "memoryBlockGetSize", "memoryBlockGetPtr", "CFDataCreate", "REALUnlockObject"}) ==
          CallLines{"REALLockObject(MemoryBlock)", "memoryBlockGetSize(MemoryBlock)", "memoryBlockGetPtr(MemoryBlock)",
                    "CFDataCreate(3)", "REALUnlockObject(MemoryBlock)"});
}

TEST_CASE("An object is asked whether it is a MemoryBlock, then for TrueItem, then whether it is a Dictionary") {
    ValueSession session;
    CallLog log(session);
    session.FromHost(session.Host().NewDictionary());
    CHECK(log.Take({"pluginObjectType", "RuntimeObjectIsa", "REALLoadObjectMethod", "CFDictionaryCreateMutable"}) ==
          CallLines{"pluginObjectType(\"MemoryBlock\")", "RuntimeObjectIsa(Dictionary, ...)",
                    "REALLoadObjectMethod(Dictionary, \"TrueItem(Index as integer) as Folderitem\")",
                    "pluginObjectType(\"Dictionary\")", "RuntimeObjectIsa(Dictionary, ...)",
                    "CFDictionaryCreateMutable(0)"});
}

TEST_CASE("A Dictionary is read pair by pair: key, value, both converted, stored, the key given up, then the value") {
    ValueSession session;
    const Object dictionary = session.Host().NewDictionary({{"k", session.Host().NewMemoryBlock("v")}, {2, nullptr}});
    session.FromHost(dictionary);
    CallLog log(session);
    session.FromHost(dictionary);
    CallLines lines =
        log.Take({"CFDictionaryCreateMutable", "REALLoadObjectMethod", kKeyGetter, kGetter, "VariantToString",
                  "VariantToInt32", "CFDataCreate", "CFDictionarySetValue", "REALUnlockObject"});
    // The question whether an object is a folder item.
    std::erase_if(lines, [](const std::string &line) { return line.find("TrueItem") != std::string::npos; });
    CHECK(lines == CallLines{"CFDictionaryCreateMutable(2)", "REALLoadObjectMethod(Dictionary, " + kLoadSetter,
                             "REALLoadObjectMethod(Dictionary, " + kLoadGetter,
                             "REALLoadObjectMethod(Dictionary, " + kLoadKeyGetter, kKeyGetter + "(Dictionary, 0)",
                             kGetter + "(Dictionary, variant)", "VariantToString(variant)", "CFDataCreate(1)",
                             "REALUnlockObject(MemoryBlock)", // held while its bytes are read
                             "CFDictionarySetValue(\"k\", CFData)", "REALUnlockObject(variant)",
                             "REALUnlockObject(MemoryBlock)", kKeyGetter + "(Dictionary, 1)",
                             kGetter + "(Dictionary, variant)", "VariantToInt32(variant)",
                             "CFDictionarySetValue(CFNumber, CFNull)", "REALUnlockObject(variant)"});
}

TEST_CASE("A variant array is made for all its elements, and each is read, converted and appended in its turn") {
    AtAges({2013.04, 2016.1}, [&](double version) {
        ValueSession session(version);
        const Object array = session.Host().NewArray("variant", {"a", 2});
        CallLog log(session);
        session.FromHost(array);
        CallLines expected = {"CFArrayCreateMutable(2)"};
        for (int32_t index : {0, 1}) {
            expected.push_back("RuntimeUBound(variant()[2])");
            expected.push_back(version < 2016 ? "REALLockObject(variant)"
                                              : "object array get(variant()[2], " + std::to_string(index) + ")");
            expected.push_back(index == 0 ? "VariantToString(variant)" : "VariantToInt32(variant)");
            expected.push_back(index == 0 ? "CFArrayAppendValue(\"a\")" : "CFArrayAppendValue(CFNumber)");
        }
        CallLines found = log.Take({"RuntimeUBound", "CFArrayCreateMutable", "REALLockObject", "object array get",
                                    "VariantToString", "VariantToInt32", "CFArrayAppendValue"});
        REQUIRE(!found.empty());
        CHECK(found.front() == "RuntimeUBound(variant()[2])"); // how many there are
        found.erase(found.begin());
        CHECK(found == expected);
    });
}

TEST_CASE("An element of a typed array is given up once what it became is in the list, and that before it") {
    ValueSession session;
    auto &host = session.Host();
    const struct {
        const char *type;
        Value element;
        CallLines expected;
    } rows[] = {
        {"string",
         "a",
         {"REALLockString(\"a\")", "CFArrayAppendValue(\"a\")", "CFRelease(\"a\")", "REALUnlockString(\"a\")"}},
        {"date",
         host.NewDate({.year = 2014}),
         {"REALLockObject(Date)", "CFArrayAppendValue(CFDate)", "CFRelease(CFDate)", "REALUnlockObject(Date)"}},
        {"variant",
         7,
         {"REALLockObject(variant)", "CFArrayAppendValue(CFNumber)", "CFRelease(CFNumber)",
          "REALUnlockObject(variant)"}},
        {"boolean", true, {"CFRetain(CFBoolean)", "CFArrayAppendValue(CFBoolean)", "CFRelease(CFBoolean)"}},
        {"integer", 7, {"CFArrayAppendValue(CFNumber)", "CFRelease(CFNumber)"}},
    };
    for (const auto &row : rows) {
        CAPTURE(std::string(row.type));
        const Object array = host.NewArray(row.type, {row.element});
        CallLog log(session);
        session.FromHost(array);
        CallLines lines = log.Take({"REALLockString", "REALLockObject", "CFRetain", "CFArrayAppendValue", "CFRelease",
                                    "REALUnlockString", "REALUnlockObject"});
        const auto from = std::ranges::find(lines, row.expected.front());
        REQUIRE(from != lines.end());
        lines.erase(lines.begin(), from);
        lines.resize(std::min(lines.size(), row.expected.size()));
        CHECK(lines == row.expected);
    }
}

TEST_CASE("The getter of a number is called before the number is made, whatever becomes of its answer") {
    ValueSession session(2016.1);
    const Object array = session.Host().NewArray("integer", {7, 8});
    CallLog log(session);
    session.FromHost(array);
    CHECK(log.Take({"integer array get", "CFNumberCreate"}) ==
          CallLines{"integer array get(integer()[2], 0)", "CFNumberCreate(3)", "integer array get(integer()[2], 1)",
                    "CFNumberCreate(3)"});
}

TEST_CASE("A string of a list is read, converted, appended and given up before the next is read") {
    ValueSession session(2016.1);
    const CoreValue value = CoreText("x");
    Object item = session.ItemWith(value.Get());
    const Object names = session.Host().NewArray("string", {"a", nullptr});
    CallLog log(session);
    item.Call("GetAttributes", names);
    CHECK(log.Take({"RuntimeUBound", "CFArrayCreateMutable", "RuntimeDirectReadStringArray", "REALGetStringCFString",
                    "CFArrayAppendValue", "CFRelease", "REALUnlockString", "MDItemCopyAttributes"})
              .size() >= 9);
    item.Call("GetAttributes", names);
    CallLines lines =
        log.Take({"RuntimeUBound", "CFArrayCreateMutable", "RuntimeDirectReadStringArray", "REALGetStringCFString",
                  "CFArrayAppendValue", "CFRelease", "REALUnlockString", "MDItemCopyAttributes"});
    lines.resize(std::min<size_t>(lines.size(), 11));
    // There is room for one more than there are.
    CHECK(lines == CallLines{"RuntimeUBound(string()[2])", "CFArrayCreateMutable(3)", "RuntimeUBound(string()[2])",
                             "RuntimeDirectReadStringArray(string()[2], 0)", "REALGetStringCFString(\"a\", 0)",
                             "CFArrayAppendValue(\"a\")", "CFRelease(\"a\")", "REALUnlockString(\"a\")",
                             "RuntimeUBound(string()[2])", "RuntimeDirectReadStringArray(string()[2], 1)",
                             "CFArrayAppendValue(\"\")"});
}

TEST_CASE("Strings are inserted at 0, 1, 2 and given up each; a null in the list takes no place") {
    ValueSession session;
    // Without callbacks an array may hold null.
    const CoreValue first = CoreText("a"), second = CoreText("b"), empty = CoreText("");
    const void *elements[] = {nullptr, first.Get(), nullptr, empty.Get(), second.Get(), nullptr};
    const CoreValue list = CoreValue::Adopt(CFArrayCreate(nullptr, elements, 6, nullptr));
    Object item = session.ItemWith(list.Get());
    CallLog log(session);
    const auto strings = item.Call<Object>("AttributeStringArray", "value");
    CHECK(log.Take({"RuntimeArrayCreateSingleDimBoundedArray", "string array insert", "REALUnlockString"}) ==
          CallLines{"RuntimeArrayCreateSingleDimBoundedArray(3, -1)", "string array insert(string()[0], 0, \"a\")",
                    "REALUnlockString(\"a\")", "string array insert(string()[1], 1, null)",
                    "string array insert(string()[2], 2, \"b\")", "REALUnlockString(\"b\")"});
    CHECK(strings.UpperBound() == 2);
}

TEST_CASE("A text on its way to the host is built, made a variant and given up") {
    ValueSession session;
    CallLog log(session);
    const Value text = session.ToHost(CoreText("text"));
    CHECK(log.Take({"REALBuildString", "REALSetStringEncoding", "StringToVariant", "REALUnlockString"}) ==
          CallLines{"REALBuildString(..., 4)", "REALSetStringEncoding(\"text\", 134217984)",
                    "StringToVariant(\"text\")", "REALUnlockString(\"text\")"});
}

TEST_CASE("The absolute form of a URL is given up before its text is made a variant") {
    ValueSession session;
    const CoreValue url = tests::CoreURL("http://example.org/x");
    CallLog log(session);
    const Value text = session.ToHost(url);
    CallLines calls = log.Take({"CFURLCopyAbsoluteURL", "CFRelease", "StringToVariant"});
    REQUIRE(calls.size() > 4);
    calls.resize(4); // what follows belongs to the attribute that brought the URL
    CHECK(calls == CallLines{"CFRelease(<http://example.org/>)", "CFURLCopyAbsoluteURL()",
                             "CFRelease(<http://example.org/x>)", "StringToVariant(\"http://example.org/x\")"});
}

TEST_CASE("A text for which the host has no variants is given up all the same") {
    ValueSession session(HostOptions{.withheld = {"StringToVariant"}});
    CallLog log(session);
    CHECK(session.ToHost(CoreText("text")).IsNil());
    CHECK(log.Take({"REALUnlockString"}) == CallLines{"REALUnlockString(\"text\")"});
}

TEST_CASE("A date's constructor is loaded on the new date and given the six fields") {
    ValueSession session;
    CallLog log(session);
    session.ToHost(tests::CoreDate(0));
    CHECK(log.Take({"PluginNewInstance", "REALLoadObjectMethod"}) ==
          CallLines{"PluginNewInstance(\"Date\")",
                    "REALLoadObjectMethod(Date, \"Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as "
                    "Integer = 0, minute as Integer = 0, second as Integer = 0\")"});
}

TEST_CASE("Where the constructor is missing the six fields are set in their order") {
    ValueSession session(HostOptions{.withheld = {"REALLoadObjectMethod"}});
    CallLog log(session);
    session.ToHost(tests::CoreDate(3661.5));
    const auto set = [](const char *field, int32_t value) {
        return std::string("REALSetPropValueInteger(Date, \"") + field + "\", " + std::to_string(value) + ")";
    };
    CHECK(log.Take({"REALSetPropValueInteger"}) == CallLines{set("Year", 2001), set("Month", 1), set("Day", 1),
                                                             set("Hour", 1), set("Minute", 1), set("Second", 1)});
}

TEST_CASE("A memory block is made, asked for its bytes, and held and given up once") {
    ValueSession session;
    CallLog log(session);
    session.ToHost(tests::CoreData("abc"));
    CHECK(log.Take({"newMemoryBlock", "memoryBlockGetPtr", "REALLockObject", "REALUnlockObject"}) ==
          CallLines{"newMemoryBlock(3)", "memoryBlockGetPtr(MemoryBlock)", "REALLockObject(MemoryBlock)",
                    "REALUnlockObject(MemoryBlock)"});
}

TEST_CASE("A memory block without bytes is given up before the exception is made") {
    ValueSession session;
    session.Host().ReturnNothing("memoryBlockGetPtr");
    CallLog log(session);
    session.ToHost(tests::CoreData("abc"));
    CallLines lines = log.Take({"memoryBlockGetPtr", "REALUnlockObject", "PluginNewInstance", "RuntimeRaiseException"});
    CHECK(lines == CallLines{"memoryBlockGetPtr(MemoryBlock)", "REALUnlockObject(MemoryBlock)",
                             "PluginNewInstance(\"OutOfMemoryException\")",
                             "RuntimeRaiseException(OutOfMemoryException)", "REALUnlockObject(OutOfMemoryException)"});
    session.Host().TakeRaised();
}

TEST_CASE("An array is made whole, and each element is converted, stored where it belongs, and given up") {
    AtAges({2013.04, 2016.1}, [&](double version) {
        ValueSession session(version);
        const CoreValue list = CoreArray({CoreInteger(1), tests::CoreTruth(true)});
        CallLog log(session);
        const Value array = session.ToHost(list);
        const CallLines found =
            log.Take({"RuntimeArrayCreateSingleDimBoundedArray", "IntegerToVariant", "BooleanToVariant",
                      "RuntimeUBound", "PluginObjectArraySetProc", "REALLockObject", "REALUnlockObject"});
        const std::string store = version < 2016 ? "REALLockObject(variant)" : "PluginObjectArraySetProc(variant()[2])";
        CHECK(found == CallLines{"RuntimeArrayCreateSingleDimBoundedArray(4, 1)", "IntegerToVariant(1)",
                                 "RuntimeUBound(variant()[2])", store, "REALUnlockObject(variant)",
                                 "BooleanToVariant(1)", "RuntimeUBound(variant()[2])", store,
                                 "REALUnlockObject(variant)"});
    });
}

TEST_CASE("A CFDictionary's pair is stored by its setter before the key is given up, and the value after it") {
    ValueSession session;
    const CoreValue dictionary = CoreDictionary({{CoreText("k"), tests::CoreDate(0)}});
    CallLog log(session);
    const Value converted = session.ToHost(dictionary);
    CHECK(log.Take({"PluginNewInstance", "StringToVariant", "REALLoadObjectMethod", kSetter, "REALUnlockObject"}) ==
          CallLines{"PluginNewInstance(\"Dictionary\")", "PluginNewInstance(\"Date\")", kLoadConstructor,
                    "StringToVariant(\"k\")", "REALLoadObjectMethod(Dictionary, " + kLoadSetter,
                    "REALLoadObjectMethod(Dictionary, " + kLoadGetter,
                    "REALLoadObjectMethod(Dictionary, " + kLoadKeyGetter, kSetter + "(Dictionary, variant, Date)",
                    "REALUnlockObject(variant)", "REALUnlockObject(Date)"});
}

TEST_CASE("A file's catalogue is asked for its number and parent, for its name, and whether the parent is there") {
    const TemporaryFolder folder;
    const CoreValue url = tests::CoreFileURL(folder.File("file"));
    ValueSession session;
    CallLog log(session);
    const Value item = session.ToHost(url);
    const std::vector<std::string> calls = {"FSGetCatalogInfo", "REALFolderItemFromParentFSRef",
                                            "FolderItemFromFSSpec"};
    CHECK(log.Take(calls) == CallLines{"FSGetCatalogInfo(item, 16, out, null, null, out)",
                                       "FSGetCatalogInfo(item, 0, null, out, null, null)",
                                       "FSGetCatalogInfo(item, 0, null, null, null, null)",
                                       "REALFolderItemFromParentFSRef(..., ...)"});
}

TEST_CASE("The parent of a volume's root is cleared, whatever the system says it is, and the specification asked for") {
    ValueSession session;
    CallLog log(session);
    const Value item = session.ToHost(tests::CoreURL("file:///"));
    CHECK(log.Take({"FSGetCatalogInfo", "REALFolderItemFromParentFSRef", "FolderItemFromFSSpec"}) ==
          CallLines{"FSGetCatalogInfo(item, 16, out, null, null, out)",
                    "FSGetCatalogInfo(item, 0, null, out, null, null)",
                    "FSGetCatalogInfo(nothing, 0, null, null, null, null)",
                    "FSGetCatalogInfo(item, 0, null, null, out, null)", "FolderItemFromFSSpec(...)"});
}

TEST_CASE("A folder item is asked for its own reference without a name, and only then for its folder and name") {
    const TemporaryFolder folder;
    ValueSession session;
    const Object fresh = session.Host().NewFolderItem(folder.PathOf("n\u00E9w"));
    CallLog log(session);
    session.FromHost(fresh);
    const std::string parent = "<file://" + folder.Path() + "/>";
    CHECK(log.Take({"REALFSRefFromFolderItem", "CFURLCreateFromFSRef", "CFStringCreateWithCharacters",
                    "CFStringCreateMutableCopy", "CFStringNormalize", "CFURLCreateCopyAppendingPathComponent"}) ==
          CallLines{"REALFSRefFromFolderItem(FolderItem, ..., null)", "REALFSRefFromFolderItem(FolderItem, ..., ...)",
                    "CFURLCreateFromFSRef()", "CFStringCreateWithCharacters(3)",
                    "CFStringCreateMutableCopy(0, \"n\u00E9w\")", "CFStringNormalize(\"n\u00E9w\", 0)",
                    "CFURLCreateCopyAppendingPathComponent(" + parent + ", \"ne\u0301w\", false)"});
}

TEST_CASE("Of a date that a host gives, no field is read after the one that cannot be") {
    ValueSession session;
    session.Host().ReturnNothing("REALGetPropValueInteger", 3);
    CallLog log(session);
    session.FromHost(session.Host().NewDate({.year = 2014}));
    CHECK(log.Take({"REALGetPropValueInteger", "CFDateCreate"}) ==
          CallLines{"REALGetPropValueInteger(Date, \"Year\", ...)", "REALGetPropValueInteger(Date, \"Month\", ...)",
                    "REALGetPropValueInteger(Date, \"Day\", ...)"});
}
