// What the methods that read a query do, call by call, and how its scope is set.
#include <doctest/doctest.h>

#include "tests/spotlight/support/asked_texts.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/call_log.h"

using namespace tests;

namespace {

/// A query of two files that has gathered, and a log that begins behind that.
struct TwoGathered : QueryProgram {
    explicit TwoGathered(double version = 2013.04) : QueryProgram(version) {
        Add({"a", "b"});
        query = NewQuery(kText, {"kMDItemFSName"}, {"kMDItemFSName"});
        Gather(query);
    }
    Object query;
};

} // namespace

TEST_CASE("A list of attributes is made before the framework is asked, filled, and the framework's let go") {
    TwoGathered program;
    const struct {
        const char *property;
        const char *call;
    } rows[] = {{"ValueListAttributes", "MDQueryCopyValueListAttributes(MDQuery)"},
                {"SortingAttributes", "MDQueryCopySortingAttributes(MDQuery)"}};
    for (const auto &row : rows) {
        CallLog log(program);
        const auto names = program.query.Get<Object>(row.property);
        CHECK(log.Take({"RuntimeArrayCreateSingleDimBoundedArray", "MDQueryCopyValueListAttributes",
                        "MDQueryCopySortingAttributes", "string array insert", "REALUnlockString", "CFRelease"}) ==
              CallLines{"RuntimeArrayCreateSingleDimBoundedArray(3, -1)", row.call,
                        "string array insert(string()[0], 0, \"kMDItemFSName\")", "REALUnlockString(\"kMDItemFSName\")",
                        "CFRelease([\"kMDItemFSName\"])"});
    }
}

TEST_CASE("QueryString is copied, built for the host, and the framework's let go") {
    TwoGathered program;
    CallLog log(program);
    program.query.Get<std::string>("QueryString");
    CHECK(log.Take({"MDQueryCopyQueryString", "REALBuildString", "CFRelease"}) ==
          CallLines{"MDQueryCopyQueryString(MDQuery)", "REALBuildString(..., 20)", "CFRelease(" + kQuotedText + ")"});
}

TEST_CASE("Results makes its array first, counts, and makes, inserts and gives up each object in its turn") {
    TwoGathered program;
    CallLog log(program);
    const auto results = program.query.Call<Object>("Results", -1);
    CallLines lines = log.Take();
    std::erase_if(lines, [](const std::string &line) { return line.starts_with("PluginObjectArrayInsertProc"); });
    CHECK(lines == CallLines{"RuntimeArrayCreateSingleDimBoundedArray(4, -1)", "MDQueryGetResultCount(MDQuery)",
                             "MDQueryGetResultAtIndex(MDQuery, 0)", "PluginNewInstance(\"MDItemQTX\")",
                             "CFRetain(MDItem)", "object array insert(variant()[0], 0, MDItemQTX)",
                             "REALUnlockObject(MDItemQTX)", "MDQueryGetResultAtIndex(MDQuery, 1)",
                             "PluginNewInstance(\"MDItemQTX\")", "CFRetain(MDItem)",
                             "object array insert(variant()[1], 1, MDItemQTX)", "REALUnlockObject(MDItemQTX)"});
}

TEST_CASE("An item object has its item before it is handed on, and an instance that is not made retains nothing") {
    TwoGathered program;
    CallLog log(program);
    program.query.Call<Object>("ResultAtIndex", 0);
    CallLines lines = log.Take();
    lines.resize(std::min<size_t>(lines.size(), 3));
    CHECK(lines ==
          CallLines{"MDQueryGetResultAtIndex(MDQuery, 0)", "PluginNewInstance(\"MDItemQTX\")", "CFRetain(MDItem)"});
    program.Host().ReturnNothing("PluginNewInstance");
    log.Take();
    CHECK(program.query.Call("ResultAtIndex", 0).IsNil());
    CHECK(log.Take() == CallLines{"MDQueryGetResultAtIndex(MDQuery, 0)", "PluginNewInstance(\"MDItemQTX\")"});
}

TEST_CASE("For a result that is not there no object is made") {
    TwoGathered program;
    CallLog log(program);
    CHECK(program.query.Call("ResultAtIndex", 2).IsNil());
    CHECK(log.Take() == CallLines{"MDQueryGetResultAtIndex(MDQuery, 2)"});
}

TEST_CASE("ValuesOfAttribute makes its array, converts the name, asks, and converts, inserts and gives up each value") {
    TwoGathered program;
    CallLog log(program);
    const auto values = program.query.Call<Object>("ValuesOfAttribute", "kMDItemFSName");
    CHECK(log.Take({"RuntimeArrayCreateSingleDimBoundedArray", kAsk, "MDQueryCopyValuesOfAttribute", "StringToVariant",
                    "object array insert", "REALUnlockObject", "CFRelease"}) ==
          CallLines{"RuntimeArrayCreateSingleDimBoundedArray(4, -1)", Asked("kMDItemFSName"),
                    "MDQueryCopyValuesOfAttribute(MDQuery, \"kMDItemFSName\")", "StringToVariant(\"a\")",
                    "object array insert(variant()[0], 0, variant)", "REALUnlockObject(variant)",
                    "StringToVariant(\"b\")", "object array insert(variant()[1], 1, variant)",
                    "REALUnlockObject(variant)", "CFRelease([\"a\", \"b\"])", "CFRelease(\"kMDItemFSName\")"});
}

TEST_CASE("A scope is made for twenty, filled with folders and then names, each let go of, and set without options") {
    QueryProgram program(2016.1);
    Object query = program.NewQuery();
    const Object paths = program.FolderItems({"/usr", ""}), options = program.Strings({"one"});
    paths.Append(nullptr);
    CallLog log(program);
    query.Call<void>("SetSearchScope", paths, options);
    CHECK(log.Take({"CFArrayCreateMutable", "object array get", "REALFSRefFromFolderItem", "CFURLCreateFromFSRef",
                    "CFArrayAppendValue", "CFRelease", "REALUnlockObject", "RuntimeDirectReadStringArray", kAsk,
                    "REALUnlockString", "MDQuerySetSearchScope"}) ==
          CallLines{"CFArrayCreateMutable(20)", "object array get(folderitem()[3], 0)",
                    "REALFSRefFromFolderItem(FolderItem, ..., null)", "CFURLCreateFromFSRef()",
                    "CFArrayAppendValue(<file:///usr/>)", "CFRelease(<file:///usr/>)", "REALUnlockObject(FolderItem)",
                    "object array get(folderitem()[3], 1)", "REALFSRefFromFolderItem(FolderItem, ..., null)",
                    "REALFSRefFromFolderItem(FolderItem, ..., ...)", "REALUnlockObject(FolderItem)",
                    "object array get(folderitem()[3], 2)", "RuntimeDirectReadStringArray(string()[1], 0)",
                    Asked("one"), "CFArrayAppendValue(\"one\")", "CFRelease(\"one\")", "REALUnlockString(\"one\")",
                    "MDQuerySetSearchScope(MDQuery, [<file:///usr/>, \"one\"], 0)",
                    "CFRelease([<file:///usr/>, \"one\"])"});
}

TEST_CASE("CountOfResultsWithAttributeValue and AttributeValueOfResultAtIndex let go of what they converted") {
    TwoGathered program;
    CallLog log(program);
    CHECK(program.query.Call<uint32_t>("CountOfResultsWithAttributeValue", "kMDItemFSName", "a") == 1);
    CallLines lines = log.Take({"MDQueryGetCountOfResultsWithAttributeValue", "CFRelease"});
    REQUIRE(lines.size() == 3);
    CHECK(lines[0] == "MDQueryGetCountOfResultsWithAttributeValue(MDQuery, \"kMDItemFSName\", \"a\")");
    program.query.Call("AttributeValueOfResultAtIndex", "kMDItemFSName", uint32_t{1});
    CHECK(log.Take({kAsk, "MDQueryGetAttributeValueOfResultAtIndex", "StringToVariant", "CFRelease"}) ==
          CallLines{Asked("kMDItemFSName"), "MDQueryGetAttributeValueOfResultAtIndex(MDQuery, \"kMDItemFSName\", 1)",
                    "StringToVariant(\"b\")", "CFRelease(\"kMDItemFSName\")"});
}
