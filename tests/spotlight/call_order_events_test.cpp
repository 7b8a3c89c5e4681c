// What a notification does, call by call: which handler is asked for, which arrays are read and made, and what is given
// up behind the handler.
#include <doctest/doctest.h>

#include "simulator/macos/CoreFoundation/dictionary.h"
#include "tests/spotlight/support/event_log.h"
#include "tests/support/call_log.h"
#include "tests/support/host_ages.h"

#include <span>

using namespace tests;

namespace {

using Info = CFRef<CFDictionaryRef>;

Info InfoOf(const std::vector<std::pair<CFTypeRef, CFTypeRef>> &pairs) { return sim::macos::MakeDictionary(pairs); }

/// An array of so many items, in front of each of which is a null: without callbacks an array may hold that.
CFRef<CFArrayRef> ItemsAndNulls(MDItemRef item, size_t count) {
    std::vector<const void *> elements;
    for (size_t i = 0; i < count; i++)
        elements.insert(elements.end(), {nullptr, item});
    return CFRef<CFArrayRef>::Adopt(
        CFArrayCreate(nullptr, elements.data(), static_cast<CFIndex>(elements.size()), nullptr));
}

/// The name is compared with the framework's three in this order, up to the one that it is.
CallLines Compared(const std::string &name, size_t count) {
    constexpr const char *kNames[] = {"kMDQueryProgressNotification", "kMDQueryDidFinishNotification",
                                      "kMDQueryDidUpdateNotification"};
    CallLines lines;
    for (const char *known : std::span(kNames).first(count))
        lines.push_back("CFStringCompare(\"" + name + "\", \"" + known + "\", 0)");
    return lines;
}

const std::vector<std::string> kWork = {"CFDictionaryGetValue",
                                        "CFRetain",
                                        "RuntimeArrayCreateSingleDimBoundedArray",
                                        "PluginNewInstance",
                                        "object array insert",
                                        "handler",
                                        "REALUnlockObject",
                                        "CFRelease"};

} // namespace

TEST_CASE("A notification's arrays are fetched and kept, then made into host arrays, and given up behind the handler") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        Object query = program.NewQuery();
        const Object item = program.NewItem(program.Add("a"));
        const MDItemRef handle = ItemOf(item);
        const auto one = ArrayOfItems({handle}), two = ArrayOfItems({handle, handle});
        const auto three = ArrayOfItems({handle, handle, handle});
        const Info info = InfoOf({{kMDQueryUpdateAddedItems, one.Get()},
                                  {kMDQueryUpdateChangedItems, two.Get()},
                                  {kMDQueryUpdateRemovedItems, three.Get()}});
        CallLog log(program);
        for (const char *event : {"Progress", "Update"})
            query.OnEvent(event, [&](const EventCall &) { log.Note("handler()"); });
        CallLines expected = {
            "CFDictionaryGetValue(\"kMDQueryUpdateAddedItems\")",   "CFRetain([MDItem])",
            "CFDictionaryGetValue(\"kMDQueryUpdateChangedItems\")", "CFRetain([MDItem, MDItem])",
            "CFDictionaryGetValue(\"kMDQueryUpdateRemovedItems\")", "CFRetain([MDItem, MDItem, MDItem])"};
        const auto append = [&](const CallLines &lines) {
            expected.insert(expected.end(), lines.begin(), lines.end());
        };
        for (int count = 1; count <= 3; count++) {
            append({"RuntimeArrayCreateSingleDimBoundedArray(4, -1)"});
            for (int i = 0; i < count; i++) {
                std::string insertion = "object array insert(variant()[";
                insertion.append(std::to_string(i)).append("], ").append(std::to_string(i)).append(", MDItemQTX)");
                append(
                    {"PluginNewInstance(\"MDItemQTX\")", "CFRetain(MDItem)", insertion, "REALUnlockObject(MDItemQTX)"});
            }
        }
        append({"handler()"});
        // The items die with the arrays, for the handler kept none.
        for (int count = 1; count <= 3; count++) {
            append({"REALUnlockObject(MDItemQTX()[" + std::to_string(count) + "])"});
            append(CallLines(static_cast<size_t>(count), "CFRelease(MDItem)"));
        }
        append({"CFRelease([MDItem])", "CFRelease([MDItem, MDItem])", "CFRelease([MDItem, MDItem, MDItem])"});
        log.Take();
        Post(kMDQueryProgressNotification, query, info.Get());
        CHECK(log.Take(kWork) == expected);
        Post(kMDQueryDidUpdateNotification, query, info.Get());
        CHECK(log.Take(kWork) == expected);
    });
}

TEST_CASE("The name of a notification is compared with progress, finish and update, up to the one that it is") {
    QueryProgram program;
    Object query = program.NewQuery();
    CallLog log(program);
    const struct {
        const char *name;
        size_t compared;
        bool asksForHandler;
    } rows[] = {{"kMDQueryProgressNotification", 1, true},
                {"kMDQueryDidFinishNotification", 2, true},
                {"kMDQueryDidUpdateNotification", 3, true}};
    for (const auto &row : rows) {
        // Equal in content only.
        Post(MakeString(row.name).Get(), query);
        CallLines lines = log.Take();
        REQUIRE(!lines.empty());
        // Nobody handles the event, so nothing is done behind the question.
        CHECK(lines.back().starts_with("GetEventInstance(MDQueryQTX, "));
        lines.pop_back();
        CHECK(lines == Compared(row.name, row.compared));
    }
}

TEST_CASE("Finish is handed on without arrays, whatever comes with it") {
    QueryProgram program;
    Object query = program.NewQuery();
    const Object item = program.NewItem(program.Add("a"));
    const auto items = ArrayOfItems({ItemOf(item)});
    const Info info = InfoOf({{kMDQueryUpdateAddedItems, items.Get()}});
    CallLog log(program);
    query.OnEvent("Finish", [&](const EventCall &) { log.Note("handler()"); });
    Post(kMDQueryDidFinishNotification, query, info.Get());
    CHECK(log.Take(kWork) == CallLines{"handler()"});
}

TEST_CASE("Nulls in a notification's array take no place in the host's") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        Object query = program.NewQuery();
        const Object item = program.NewItem(program.Add("a"));
        const auto items = ItemsAndNulls(ItemOf(item), 2);
        const Info info = InfoOf({{kMDQueryUpdateChangedItems, items.Get()}});
        EventLog events(query);
        Post(kMDQueryDidUpdateNotification, query, info.Get());
        CHECK(events.Take() == Events{Update({}, {"a", "a"})});
    });
}

TEST_CASE("What the host knows an event by is read at each notification") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        Object query = program.NewQuery();
        std::vector<std::string> heard;
        for (const char *event : {"Progress", "Finish", "Update"})
            query.OnEvent(event, [&](const EventCall &call) { heard.push_back(call.name); });
        const auto &events = program.Host().Arrived().Class("MDQueryQTX").events;
        // The host's own word, in the record that it was given: the copy on old hosts.
        uint32_t *const progress = events[0].address + 1, *const update = events[2].address + 1;
        const auto post = [&] {
            Post(kMDQueryProgressNotification, query);
            Post(kMDQueryDidUpdateNotification, query);
            return std::exchange(heard, {});
        };
        CHECK(post() == std::vector<std::string>{"Progress", "Update"});
        std::swap(*progress, *update);
        CHECK(post() == std::vector<std::string>{"Update", "Progress"});
        std::swap(*progress, *update);
        CHECK(post() == std::vector<std::string>{"Progress", "Update"});
    });
}
