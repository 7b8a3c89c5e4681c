// What each method of an item, each schema look-up and each key does, call by call.
#include <doctest/doctest.h>

#include "tests/spotlight/support/asked_texts.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/call_log.h"
#include "tests/support/plugin_watch.h"

using namespace tests;

namespace {

struct ItemAlone : QueryProgram {
    ItemAlone() { item = NewItem(Add("a")); }
    Object item;
};

const std::string kNew = "RuntimeArrayCreateSingleDimBoundedArray(3, -1)";

} // namespace

TEST_CASE("An item's constructor makes the URL, the item, and lets the URL go") {
    QueryProgram program;
    Object item = program.Host().Create("MDItemQTX");
    const Object folder = program.Host().NewFolderItem("/usr");
    CallLog log(program);
    item.Call<void>("Constructor", folder);
    CHECK(log.Take() == CallLines{"REALFSRefFromFolderItem(FolderItem, ..., null)", "CFURLCreateFromFSRef()",
                                  "MDItemCreateWithURL(<file:///usr/>)", "CFRelease(<file:///usr/>)"});
}

TEST_CASE("A constructor that raises has not gone further: no URL of nil, no item of no URL") {
    QueryProgram program;
    Object item = program.Host().Create("MDItemQTX");
    CallLog log(program);
    item.Call<void>("Constructor", nullptr);
    CHECK(log.Take() == CallLog::OfRaising("NilObjectException", "Folderitem is nil"));
    CHECK(program.TakeException() == "NilObjectException: Folderitem is nil");
    item.Call<void>("Constructor", program.Host().NewFolderItem(""));
    CallLines expected = {"REALFSRefFromFolderItem(FolderItem, ..., null)",
                          "REALFSRefFromFolderItem(FolderItem, ..., ...)"};
    for (const std::string &line : CallLog::OfRaising("NilObjectException", "Folderitem is invalid"))
        expected.push_back(line);
    CHECK(log.Take() == expected);
    CHECK(program.TakeException() == "NilObjectException: Folderitem is invalid");
}

TEST_CASE("Without an item a method raises and does nothing else, and the three texts do nothing at all") {
    QueryProgram program;
    Object item = program.Host().Create("MDItemQTX");
    const Object names = program.Strings({"a"});
    const CallLines raise = CallLog::OfRaising("NilObjectException", "MDItem Reference is nil");
    const struct {
        const char *method;
        std::vector<Value> arguments;
        bool makesArray = false;
    } rows[] = {{"GetAttribute", {"a"}},
                {"GetAttributes", {names}},
                {"AttributeNames", {}, true},
                {"AttributeString", {"a"}},
                {"AttributeBoolean", {"a"}},
                {"AttributeDouble", {"a"}},
                {"AttributeStringArray", {"a"}, true}};
    for (const auto &row : rows) {
        CAPTURE(row.method);
        CallLines expected = raise;
        if (row.makesArray) {
            expected.insert(expected.begin(), kNew);
            expected.push_back("REALUnlockObject(string()[0])");
        }
        CallLog log(program);
        item.CallWith(row.method, row.arguments);
        CHECK(log.Take() == expected);
        CHECK(program.TakeException() == kNilItem);
    }
    CallLog log(program);
    item.Get("FSSize");
    CHECK(log.Take() == raise);
    CHECK(program.TakeException() == kNilItem);
    for (const char *property : {"DisplayName", "FSName", "Path"})
        item.Get(property);
    CHECK(log.Take() == CallLines{});
}

TEST_CASE("For a name that does not convert no attribute is asked for") {
    ItemAlone program;
    CallLog log(program);
    for (const char *method : {"GetAttribute", "AttributeString", "AttributeBoolean", "AttributeDouble"}) {
        CAPTURE(method);
        program.item.CallWith(method, {nullptr});
        CHECK(log.Take() == CallLines{});
    }
    program.item.CallWith("AttributeStringArray", {nullptr});
    CHECK(log.Take() == CallLines{kNew});
    program.item.CallWith("GetAttributes", {nullptr});
    CHECK(log.Take() == CallLines{});
}

TEST_CASE("An attribute is asked for by its name, converted, and let go of, the value before the name") {
    ItemAlone program;
    CallLog log(program);
    program.item.Call("GetAttribute", "kMDItemFSName");
    CHECK(log.Take({kAsk, "MDItemCopyAttribute", "StringToVariant", "CFRelease"}) ==
          CallLines{Asked("kMDItemFSName"), "MDItemCopyAttribute(MDItem, \"kMDItemFSName\")", "StringToVariant(\"a\")",
                    "CFRelease(\"a\")", "CFRelease(\"kMDItemFSName\")"});
}

TEST_CASE("GetAttributes converts the names, copies, makes and fills the Dictionary, and lets go of both") {
    ItemAlone program;
    CallLog log(program);
    const auto attributes = program.item.Call<Object>("GetAttributes", program.Strings({"kMDItemFSName"}));
    CHECK(log.Take({"CFArrayCreateMutable", "MDItemCopyAttributes", "PluginNewInstance", "CFDictionaryApplyFunction",
                    "Dictionary.Value(key As Variant, Assigns _value As Variant)", "CFRelease"}) ==
          CallLines{"CFArrayCreateMutable(2)", "CFRelease(\"kMDItemFSName\")",
                    "MDItemCopyAttributes(MDItem, [\"kMDItemFSName\"])", "PluginNewInstance(\"Dictionary\")",
                    "CFDictionaryApplyFunction()",
                    "Dictionary.Value(key As Variant, Assigns _value As Variant)(Dictionary, variant, variant)",
                    "CFRelease(CFDictionary)", "CFRelease([\"kMDItemFSName\"])"});
}

TEST_CASE("AttributeNames makes its array, copies the names, fills it, and lets the names go") {
    ItemAlone program;
    CallLog log(program);
    const auto names = program.item.Get<Object>("AttributeNames");
    const CallLines lines = log.Take(
        {"RuntimeArrayCreateSingleDimBoundedArray", "MDItemCopyAttributeNames", "string array insert", "CFRelease"});
    REQUIRE(lines.size() > 3);
    CHECK(lines[0] == kNew);
    CHECK(lines[1] == "MDItemCopyAttributeNames(MDItem)");
    CHECK(lines[2].starts_with("string array insert(string()[0], 0, "));
    CHECK(lines.back().starts_with("CFRelease(["));
}

TEST_CASE("A typed attribute of the wrong type raises once, behind which everything is let go") {
    ItemAlone program;
    CallLog log(program);
    program.item.Call<double>("AttributeDouble", "kMDItemFSName");
    CHECK(program.TakeException() == "RuntimeException: Wrong type used for getting attribute value.");
    CHECK(log.Take({"MDItemCopyAttribute", "PluginNewInstance", "RuntimeRaiseException", "CFRelease"}) ==
          CallLines{"MDItemCopyAttribute(MDItem, \"kMDItemFSName\")", "PluginNewInstance(\"RuntimeException\")",
                    "RuntimeRaiseException(RuntimeException)", "CFRelease(\"a\")", "CFRelease(\"kMDItemFSName\")"});
}

TEST_CASE("Each property asks the item once, for its own key") {
    ItemAlone program;
    CallLog log(program);
    for (const char *property : {"DisplayName", "FSName", "Path", "FSSize"}) {
        CAPTURE(property);
        program.item.Get(property);
        CHECK(log.Take({"MDItemCopyAttribute"}) ==
              CallLines{std::string("MDItemCopyAttribute(MDItem, \"kMDItem") + property + "\")"});
    }
}

TEST_CASE("The destructor of an item object lets go of the item and then of the Tag") {
    ItemAlone program;
    program.item.Set("Tag", program.Host().NewDate({.year = 2014}));
    CallLog log(program);
    program.item.Release();
    CHECK(log.Take() == CallLines{"CFRelease(MDItem)", "REALUnlockObject(Date)"});
}

TEST_CASE("While an item object gives up its Tag it has no item any more, and at its end it has neither") {
    for (const bool canUnlock : {true, false}) {
        CAPTURE(canUnlock);
        ItemAlone program;
        program.item.Set("Tag", program.Host().NewDate({.year = 2014}));
        const auto *const words = static_cast<const uint32_t *>(program.item.Data());
        bool hadItem = false;
        program.Host().Before("REALUnlockObject", 1, [&] { hadItem = words[0] != 0; });
        if (!canUnlock)
            program.Host().Withhold("REALUnlockObject");
        const auto destructor =
            reinterpret_cast<void (*)(void *)>(program.Host().Arrived().Class("MDItemQTX").destructor);
        destructor(program.item.Address());
        CHECK_FALSE(hadItem);
        CHECK(words[0] == 0);
        CHECK(words[1] == 0);
        if (!canUnlock)
            program.Host().ExpectLeft("Date", 1);
    }
}

TEST_CASE("A schema look-up converts the name and asks once, and asks nothing for a name that does not convert") {
    QueryProgram program;
    auto &host = program.Host();
    CallLog log(program);
    const struct {
        const char *method;
        const char *call;
        const char *key;
    } rows[] = {{"AttributeType", "MDSchemaCopyMetaAttributesForAttribute(\"kMDItemFSName\")", "kMDAttributeType"},
                {"AttributeMultiValued", "MDSchemaCopyMetaAttributesForAttribute(\"kMDItemFSName\")",
                 "kMDAttributeMultiValued"}};
    for (const auto &row : rows) {
        host.SharedWith("MDItemQTX", row.method, {"kMDItemFSName"});
        CHECK(log.Take({kAsk, "MDSchemaCopyMetaAttributesForAttribute", "CFDictionaryGetValue"}) ==
              CallLines{Asked("kMDItemFSName"), row.call, std::string("CFDictionaryGetValue(\"") + row.key + "\")"});
    }
    host.SharedWith("MDItemQTX", "DisplayNameForAttribute", {"kMDItemFSName"});
    CHECK(log.Take({kAsk, "MDSchemaCopyDisplayNameForAttribute"}) ==
          CallLines{Asked("kMDItemFSName"), "MDSchemaCopyDisplayNameForAttribute(\"kMDItemFSName\")"});
    host.SharedWith("MDItemQTX", "DisplayDescriptionForAttribute", {"kMDItemFSName"});
    CHECK(log.Take({kAsk, "MDSchemaCopyDisplayDescriptionForAttribute"}) ==
          CallLines{Asked("kMDItemFSName"), "MDSchemaCopyDisplayDescriptionForAttribute(\"kMDItemFSName\")"});
    for (const char *method :
         {"AttributeType", "AttributeMultiValued", "DisplayNameForAttribute", "DisplayDescriptionForAttribute"})
        host.SharedWith("MDItemQTX", method, {nullptr});
    CHECK(log.Take() == CallLines{});
}

TEST_CASE("AllAttributes makes its array before it asks the schema") {
    QueryProgram program;
    CallLog log(program);
    program.Host().SharedWith("MDItemQTX", "AllAttributes", {});
    CallLines lines = log.Take({"RuntimeArrayCreateSingleDimBoundedArray", "MDSchemaCopyAllAttributes"});
    CHECK(lines == CallLines{kNew, "MDSchemaCopyAllAttributes()"});
}

TEST_CASE("A key is built from the system's constant, the date added from its own 16 characters of ASCII") {
    QueryProgram program;
    CallLog log(program);
    program.Host().SharedWith("MDItemQTX", "kMDItemFSName", {});
    CHECK(log.Take() == CallLines{"REALBuildString(..., 13)", "REALSetStringEncoding(\"kMDItemFSName\", 134217984)"});
    program.Host().SharedWith("MDItemQTX", "kMDItemDateAdded", {});
    CHECK(log.Take() == CallLines{"REALBuildString(..., 16)", "REALSetStringEncoding(\"kMDItemDateAdded\", 1536)"});
}

TEST_CASE("The data of batching parameters is found where their class record says at that moment") {
    QueryProgram program;
    Object query = program.NewQuery();
    for (const int32_t offset : {24, 64, 24}) {
        CAPTURE(offset);
        program.Host().SetForSystemUse("MDQueryBatchingParamsQTX", offset);
        program.SetBatches(query, {offset, 2, 3, 4, 5, 6});
        const auto read = query.Get<Object>("BatchingParameters");
        CHECK(read.Get<int32_t>("firstMaxNum") == offset);
        CHECK(read.Get<int32_t>("updateMaxMS") == 6);
    }
}

TEST_CASE("Without memory a text of 100 units gives nil, as text, as variant and in a list, and nothing is lost") {
    QueryProgram program;
    const std::string name(100, 'x');
    const Object item = program.NewItem(program.Add(name));
    const auto without = [&](const char *method, const std::vector<Value> &arguments) {
        const FailedAllocation failed(1);
        Value result = item.CallWith(method, arguments);
        CHECK(failed.Count() == 1);
        return result;
    };
    CHECK(without("AttributeString", {"kMDItemFSName"}).IsNil());
    CHECK(without("GetAttribute", {"kMDItemFSName"}).IsNil());
    CHECK(item.Get<std::string>("FSName") == name);
    CHECK(program.Host().Raised().empty());
}
