// From one notification to one event: what decides, what is handed over, and what is left alone. The notifications are
// posted by hand, so they can be such as the framework would never post.
#include <doctest/doctest.h>

#include "simulator/macos/CoreFoundation/dictionary.h"
#include "simulator/macos/CoreFoundation/notifications.h"
#include "tests/spotlight/support/event_log.h"
#include "tests/support/host_ages.h"

using namespace tests;

namespace {

/// A query that has never been executed, and the items of five files to speak of.
struct HandPosted : QueryProgram {
    explicit HandPosted(HostOptions options = {}) : QueryProgram(std::move(options)) {
        Add({"a", "b", "c", "d", "e"});
        query = NewQuery();
    }
    explicit HandPosted(std::optional<double> version) : HandPosted(HostOptions{.version = version}) {}

    CFRef<MDItemRef> Item(const char *name) { return CFRef<MDItemRef>::Adopt(store.CopyItem(FileNamed(name))); }
    CFRef<CFArrayRef> Items(std::initializer_list<const char *> names) {
        std::vector<CFRef<MDItemRef>> items;
        std::vector<MDItemRef> borrowed;
        for (const char *name : names) {
            items.push_back(Item(name));
            borrowed.push_back(items.back().Get());
        }
        return ArrayOfItems(borrowed);
    }
    /// The plugin's own callback.
    CFNotificationCallback Callback() const {
        return sim::macos::notifications::EntriesOf(query.Address()).front().callback;
    }
    Object query;
};

using Pairs = std::vector<std::pair<CFTypeRef, CFTypeRef>>;

CFRef<CFDictionaryRef> UserInfo(const Pairs &pairs) { return sim::macos::MakeDictionary(pairs); }

} // namespace

TEST_CASE("Each of the three notifications raises the event of its own, on hosts of every age") {
    AtEveryAge([&](std::optional<double> version) {
        HandPosted program(version);
        EventLog log(program.query);
        Post(kMDQueryProgressNotification, program.query);
        Post(kMDQueryDidFinishNotification, program.query);
        Post(kMDQueryDidUpdateNotification, program.query);
        CHECK(log.Take() == Events{Progress(), Finish(), Update({})});
    });
}

TEST_CASE("On hosts of every age the three lists reach the handler as added, changed and removed items") {
    AtEveryAge([&](std::optional<double> version) {
        HandPosted program(version);
        const auto added = program.Items({"a"}), changed = program.Items({"b", "c"}), removed = program.Items({"d"});
        const auto info = UserInfo({{kMDQueryUpdateRemovedItems, removed.Get()},
                                    {kMDQueryUpdateAddedItems, added.Get()},
                                    {kMDQueryUpdateChangedItems, changed.Get()}});
        EventLog log(program.query);
        Post(kMDQueryProgressNotification, program.query, info.Get());
        Post(kMDQueryDidUpdateNotification, program.query, info.Get());
        CHECK(log.Take() == Events{Progress({"a"}, {"b", "c"}, {"d"}), Update({"a"}, {"b", "c"}, {"d"})});
    });
}

TEST_CASE("A progress notification without user info reaches the handler with three empty arrays") {
    HandPosted program;
    EventLog log(program.query);
    Post(kMDQueryProgressNotification, program.query, nullptr);
    CHECK(log.Take() == Events{Progress()});
}

TEST_CASE("Each key of the user info may be missing or hold an empty array; the handler gets an empty array") {
    const CFStringRef keys[] = {kMDQueryUpdateAddedItems, kMDQueryUpdateChangedItems, kMDQueryUpdateRemovedItems};
    HandPosted program;
    EventLog log(program.query);
    const auto full = program.Items({"a"}), none = program.Items({});
    for (size_t missing = 0; missing < 3; missing++)
        for (const bool empty : {false, true}) {
            Pairs pairs;
            for (size_t key = 0; key < 3; key++)
                if (key != missing)
                    pairs.emplace_back(keys[key], full.Get());
                else if (empty)
                    pairs.emplace_back(keys[key], none.Get());
            Post(kMDQueryDidUpdateNotification, program.query, UserInfo(pairs).Get());
            Event expected = Update({"a"}, {"a"}, {"a"});
            Names *const lists[] = {&expected.added, &expected.changed, &expected.removed};
            lists[missing]->clear();
            CHECK(log.Take() == Events{expected});
        }
    Post(kMDQueryDidUpdateNotification, program.query, UserInfo({}).Get());
    CHECK(log.Take() == Events{Update({})});
}

TEST_CASE("The finish event takes no items, whatever its notification carries") {
    HandPosted program;
    EventLog log(program.query);
    const auto added = program.Items({"a"});
    program.Host().ClearLog();
    Post(kMDQueryDidFinishNotification, program.query, UserInfo({{kMDQueryUpdateAddedItems, added.Get()}}).Get());
    CHECK(log.Take() == Events{Finish()});
    CHECK(program.Host().CallNames() == std::vector<std::string>{"GetEventInstance"});
}

TEST_CASE("A null element of an item array leaves no gap") {
    HandPosted program;
    EventLog log(program.query);
    const auto first = program.Item("a"), last = program.Item("b");
    const void *elements[] = {nullptr, first.Get(), nullptr, nullptr, last.Get(), nullptr};
    const auto items = CFRef<CFArrayRef>::Adopt(CFArrayCreate(kCFAllocatorDefault, elements, 6, nullptr));
    Post(kMDQueryDidUpdateNotification, program.query, UserInfo({{kMDQueryUpdateAddedItems, items.Get()}}).Get());
    CHECK(log.Take() == Events{Update({"a", "b"})});
}

TEST_CASE("A name that is equal in content but another string than the framework's is recognised") {
    HandPosted program;
    EventLog log(program.query);
    Post(MakeString("kMDQueryProgressNotification").Get(), program.query);
    Post(MakeString("kMDQueryDidFinishNotification").Get(), program.query);
    Post(MakeString("kMDQueryDidUpdateNotification").Get(), program.query);
    CHECK(log.Take() == Events{Progress(), Finish(), Update({})});
}

TEST_CASE("Any other name is ignored, however similar, without asking the host") {
    HandPosted program;
    EventLog log(program.query);
    const auto callback = program.Callback();
    program.Host().ClearLog();
    for (const char *name : {"", "kMDQueryDidUpdateNotificatio", "kMDQueryDidUpdateNotification ",
                             "KMDQUERYDIDUPDATENOTIFICATION", "kMDQueryDidFailNotification"})
        callback(CFNotificationCenterGetLocalCenter(), program.query.Address(), MakeString(name).Get(),
                 QueryOf(program.query), nullptr);
    CHECK(log.Take().empty());
    CHECK(program.Host().Calls().empty());
}

TEST_CASE("A notification without an observer is ignored") {
    HandPosted program;
    EventLog log(program.query);
    program.Host().ClearLog();
    program.Callback()(CFNotificationCenterGetLocalCenter(), nullptr, kMDQueryDidFinishNotification,
                       QueryOf(program.query), nullptr);
    CHECK(log.Take().empty());
    CHECK(program.Host().Calls().empty());
}

TEST_CASE("The posting object is not examined: who observes gets the event") {
    HandPosted program;
    EventLog log(program.query);
    program.Callback()(nullptr, program.query.Address(), kMDQueryDidFinishNotification, nullptr, nullptr);
    CHECK(log.Take() == Events{Finish()});
}

TEST_CASE("Without a handler nothing is read or made: the host is asked for the handler and nothing else") {
    HandPosted program;
    const auto info = UserInfo({{kMDQueryUpdateAddedItems, program.Items({"a"}).Get()}});
    program.Host().ClearLog();
    for (const CFStringRef name :
         {kMDQueryProgressNotification, kMDQueryDidFinishNotification, kMDQueryDidUpdateNotification})
        Post(name, program.query, info.Get());
    CHECK(program.Host().CallNames() == std::vector<std::string>(3, "GetEventInstance"));
}

TEST_CASE("Handlers are independent: each event reaches its own whether the others are there or not") {
    const std::pair<const char *, CFStringRef> kEvents[] = {{"Progress", kMDQueryProgressNotification},
                                                            {"Finish", kMDQueryDidFinishNotification},
                                                            {"Update", kMDQueryDidUpdateNotification}};
    AtAges({2011.4, 2013.04}, [&](double version) {
        for (unsigned handled = 0; handled < 8; handled++) {
            CAPTURE(handled);
            HandPosted program(version);
            std::vector<std::string> heard, expected;
            for (unsigned event = 0; event < 3; event++)
                if (handled & (1U << event)) {
                    expected.push_back(kEvents[event].first);
                    program.query.OnEvent(kEvents[event].first,
                                          [&](const EventCall &call) { heard.push_back(call.name); });
                }
            for (const auto &event : kEvents)
                Post(event.second, program.query);
            CHECK(heard == expected);
        }
    });
}

TEST_CASE("A handler that is taken away is called no more") {
    HandPosted program;
    EventLog log(program.query);
    program.query.RemoveEvent("Finish");
    Post(kMDQueryDidFinishNotification, program.query);
    Post(kMDQueryProgressNotification, program.query);
    CHECK(log.Take() == Events{Progress()});
}

TEST_CASE("A host without GetEventInstance gets no events, and gets them once it has it") {
    HandPosted program;
    EventLog log(program.query);
    program.Host().Withhold("GetEventInstance");
    const auto info = UserInfo({{kMDQueryUpdateAddedItems, program.Items({"a"}).Get()}});
    program.Host().ClearLog();
    Post(kMDQueryDidUpdateNotification, program.query, info.Get());
    CHECK(log.Take().empty());
    CHECK(program.Host().Calls().empty());
    program.Host().Offer("GetEventInstance");
    Post(kMDQueryDidUpdateNotification, program.query, info.Get());
    CHECK(log.Take() == Events{Update({"a"})});
}

TEST_CASE("The framework's arrays are held while the handler runs, and given up afterwards") {
    HandPosted program;
    const auto added = program.Items({"a"}), changed = program.Items({"b"}), removed = program.Items({"c"});
    const CFArrayRef arrays[] = {added.Get(), changed.Get(), removed.Get()};
    const auto info = UserInfo({{kMDQueryUpdateAddedItems, arrays[0]},
                                {kMDQueryUpdateChangedItems, arrays[1]},
                                {kMDQueryUpdateRemovedItems, arrays[2]}});
    EventLog log(program.query, [&](const EventCall &) {
        for (const CFArrayRef array : arrays)
            CHECK(CFGetRetainCount(array) == 3); // the test, the dictionary, the plugin
    });
    Post(kMDQueryDidUpdateNotification, program.query, info.Get());
    CHECK(log.heard.size() == 1);
    for (const CFArrayRef array : arrays)
        CHECK(CFGetRetainCount(array) == 2);
}

TEST_CASE("After the handler the host's arrays are given up in the order added, changed, removed") {
    HandPosted program;
    auto &host = program.Host();
    const auto added = program.Items({"a"}), changed = program.Items({"b", "c"}),
               removed = program.Items({"d", "e", "a"});
    const auto info = UserInfo({{kMDQueryUpdateAddedItems, added.Get()},
                                {kMDQueryUpdateChangedItems, changed.Get()},
                                {kMDQueryUpdateRemovedItems, removed.Get()}});
    std::vector<int32_t> alive;
    program.query.OnEvent("Update", [&](const EventCall &) {
        for (int32_t call = 1; call <= 3; call++)
            host.Before("REALUnlockObject", call, [&] { alive.push_back(host.Alive("MDItemQTX")); });
    });
    Post(kMDQueryDidUpdateNotification, program.query, info.Get());
    CHECK(alive == std::vector<int32_t>{6, 5, 3});
    CHECK(host.Alive("MDItemQTX") == 0);
}

TEST_CASE("What the program keeps of an event lives on: the array, or one item of it") {
    HandPosted program;
    Object keptArray, keptItem;
    program.query.OnEvent("Update", [&](const EventCall &call) {
        keptArray = call.arguments[0].As<Object>();
        keptItem = call.arguments[2].As<Object>().At(0).As<Object>();
    });
    {
        const auto added = program.Items({"a", "b"}), removed = program.Items({"c", "d"});
        const auto info =
            UserInfo({{kMDQueryUpdateAddedItems, added.Get()}, {kMDQueryUpdateRemovedItems, removed.Get()}});
        Post(kMDQueryDidUpdateNotification, program.query, info.Get());
    }
    program.query.Release();
    CHECK(keptArray.References() == 1);
    CHECK(NamesIn(keptArray) == Names{"a", "b"});
    CHECK(keptItem.References() == 1);
    CHECK(keptItem.Get<std::string>("FSName") == "c");
    CHECK(program.Host().Alive("MDItemQTX") == 3);
}
