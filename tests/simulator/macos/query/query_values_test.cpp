// Results one by one, their attribute values, and the value lists.
#include "tests/simulator/macos/query/support/scripted_query.h"

#include <doctest/doctest.h>

#include <algorithm>

namespace sim::macos {

namespace {

CFRef<CFArrayRef> AttributeValuesOf(const TestQuery &query, std::string_view name) {
    return CFRef<CFArrayRef>::Adopt(MDQueryCopyValuesOfAttribute(query.Get(), MakeString(name).Get()));
}

FileNames TextsOf(const TestQuery &query, std::string_view name) {
    const auto values = AttributeValuesOf(query, name);
    FileNames texts;
    for (const void *value : macos::ValuesOf(values.Get()))
        texts.push_back(Utf8Of(static_cast<CFStringRef>(value)));
    std::sort(texts.begin(), texts.end());
    return texts;
}

CFIndex CountOf(const TestQuery &query, std::string_view name, CFTypeRef value) {
    return MDQueryGetCountOfResultsWithAttributeValue(query.Get(), MakeString(name).Get(), value);
}

CFTypeRef ValueAt(const TestQuery &query, std::string_view name, CFIndex index) {
    return MDQueryGetAttributeValueOfResultAtIndex(query.Get(), MakeString(name).Get(), index);
}

/// Five files: kinds text, text, picture, none, several.
struct Kinds : ScriptedQuery {
    Kinds() : ScriptedQuery({"a", "b", "c", "d", "e"}, "kMDItemFSName == '*'", {"kMDItemKind"}, {"kMDItemFSName"}) {
        store.Prepare(files["a"], "kMDItemKind", Text("text").Get());
        store.Prepare(files["b"], "kMDItemKind", Text("text").Get());
        store.Prepare(files["c"], "kMDItemKind", Text("picture").Get());
        store.Prepare(files["e"], "kMDItemKind", Texts({"text", "sound", "sound"}).Get());
    }
};

} // namespace

TEST_CASE("a result is made when it is first asked for, and stays the same object") {
    ScriptedQuery scripted({"a", "b"});
    scripted.GoLive();
    const std::size_t before = ledger::LiveCount();
    const void *item = MDQueryGetResultAtIndex(scripted.query.Get(), 1);
    CHECK(ledger::LiveCount() == before + 1);
    CHECK(CFGetTypeID(item) == MDItemGetTypeID());
    CHECK(MDQueryGetResultAtIndex(scripted.query.Get(), 1) == item);
    CHECK(CFGetRetainCount(item) == 1); // lent, not given
    CHECK(NameOf(item) == "b");
}

TEST_CASE("an item that was retained outlives the query") {
    CFRef<CFTypeRef> item;
    tests::Balanced balance;
    {
        ScriptedStore store;
        store.Add("/files/a");
        TestQuery query("kMDItemFSName == '*'");
        REQUIRE(query.Execute(kMDQuerySynchronous));
        item = CFRef<CFTypeRef>::Retain(MDQueryGetResultAtIndex(query.Get(), 0));
    }
    CHECK(NameOf(item.Get()) == "a");
    item = {};
}

TEST_CASE("an index outside the results gives nothing") {
    ScriptedQuery scripted({"a"}, "kMDItemFSName == '*'", {}, {"kMDItemFSName"});
    scripted.GoLive();
    for (CFIndex index : {-1L, 1L, 2147483647L, -2147483647L - 1}) {
        CHECK(MDQueryGetResultAtIndex(scripted.query.Get(), index) == nullptr);
        CHECK(ValueAt(scripted.query, "kMDItemFSName", index) == nullptr);
    }
}

TEST_CASE("the index of a result is found by its file, whoever made the item") {
    ScriptedQuery scripted({"a", "b", "c"});
    scripted.GoLive();
    const auto own = CFRef<MDItemRef>::Adopt(scripted.store.CopyItem(scripted.files["c"]));
    CHECK(MDQueryGetIndexOfResult(scripted.query.Get(), own.Get()) == 2);
    CHECK(MDQueryGetIndexOfResult(scripted.query.Get(), MDQueryGetResultAtIndex(scripted.query.Get(), 1)) == 1);
}

TEST_CASE("the index of what is no result is not found") {
    ScriptedQuery scripted({"a", "other"}, "kMDItemFSName == 'a'");
    scripted.GoLive();
    const auto other = CFRef<MDItemRef>::Adopt(scripted.store.CopyItem(scripted.files["other"]));
    CHECK(MDQueryGetIndexOfResult(scripted.query.Get(), other.Get()) == kCFNotFound);
    CHECK(MDQueryGetIndexOfResult(scripted.query.Get(), nullptr) == kCFNotFound);
    CHECK(MDQueryGetIndexOfResult(scripted.query.Get(), MakeString("a").Get()) == kCFNotFound);
}

TEST_CASE("indices follow the list as it changes") {
    ScriptedQuery scripted({"a", "b", "c"});
    scripted.GoLive();
    const auto c = CFRef<CFTypeRef>::Retain(MDQueryGetResultAtIndex(scripted.query.Get(), 2));
    scripted.Remove("a");
    scripted.Settle();
    CHECK(MDQueryGetIndexOfResult(scripted.query.Get(), c.Get()) == 1);
}

TEST_CASE("each distinct value of the value list comes once, those of an array one by one") {
    Kinds kinds;
    kinds.GoLive();
    CHECK(TextsOf(kinds.query, "kMDItemKind") == FileNames{"picture", "sound", "text"});
}

TEST_CASE("an attribute that is not in the value list has no values") {
    Kinds kinds;
    kinds.GoLive();
    CHECK_FALSE(AttributeValuesOf(kinds.query, "kMDItemFSName")); // sorting only
    CHECK_FALSE(AttributeValuesOf(kinds.query, "kMDItemTitle"));
    CHECK(CountOf(kinds.query, "kMDItemFSName", Text("a").Get()) == 0);
    CHECK(CountOf(kinds.query, "kMDItemTitle", nullptr) == 0);
}

TEST_CASE("results are counted by value, and without one those that lack the attribute") {
    Kinds kinds;
    kinds.GoLive();
    CHECK(CountOf(kinds.query, "kMDItemKind", Text("text").Get()) == 3);
    CHECK(CountOf(kinds.query, "kMDItemKind", Text("sound").Get()) == 1); // one result, though it says so twice
    CHECK(CountOf(kinds.query, "kMDItemKind", Text("film").Get()) == 0);
    CHECK(CountOf(kinds.query, "kMDItemKind", Whole(1).Get()) == 0);
    CHECK(CountOf(kinds.query, "kMDItemKind", nullptr) == 1);
}

TEST_CASE("value lists are up to date in every notification") {
    Kinds kinds;
    kinds.GoLive();
    CHECK(TextsOf(kinds.query, "kMDItemKind").size() == 3);
    FileNames seen;
    kinds.listener.handler = [&](const Notification &, CFDictionaryRef) { seen = TextsOf(kinds.query, "kMDItemKind"); };
    kinds.store.SetText(kinds.files["c"], "kMDItemKind", "film");
    kinds.Settle();
    CHECK(seen == FileNames{"film", "sound", "text"});
    CHECK(CountOf(kinds.query, "kMDItemKind", Text("picture").Get()) == 0);
}

TEST_CASE("the value of a result is lent for attributes of either list") {
    Kinds kinds;
    kinds.GoLive();
    const CFTypeRef kind = ValueAt(kinds.query, "kMDItemKind", 2);
    REQUIRE(kind);
    CHECK(Utf8Of(static_cast<CFStringRef>(kind)) == "picture");
    CHECK(ValueAt(kinds.query, "kMDItemKind", 2) == kind);
    CHECK(Utf8Of(static_cast<CFStringRef>(ValueAt(kinds.query, "kMDItemFSName", 4))) == "e");
    CHECK(ValueAt(kinds.query, "kMDItemKind", 3) == nullptr);  // lacks it
    CHECK(ValueAt(kinds.query, "kMDItemTitle", 0) == nullptr); // in neither list
}

TEST_CASE("an attribute named in both lists, or twice in one, is one attribute") {
    ScriptedQuery scripted({"b", "a"}, "kMDItemFSName == '*'", {"kMDItemFSName", "kMDItemFSName"},
                           {"kMDItemFSName", "kMDItemFSName"});
    scripted.GoLive();
    CHECK(scripted.query.Results() == FileNames{"a", "b"});
    CHECK(TextsOf(scripted.query, "kMDItemFSName") == FileNames{"a", "b"});
}

} // namespace sim::macos
