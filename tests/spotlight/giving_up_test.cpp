// A host that throws when a reference is given back to it in the middle of a list: what it throws reaches the program
// that asked for the list, or for the changes.
#include <doctest/doctest.h>

#include "simulator/macos/CoreFoundation/dictionary.h"
#include "tests/spotlight/support/asked_texts.h"
#include "tests/spotlight/support/event_log.h"
#include "tests/spotlight/support/query_program.h"

using namespace tests;

namespace {

struct Refused {};

/// A query that has gathered two files; the host throws when it is given the first object back.
struct TwoRefused : QueryProgram {
    TwoRefused() {
        Add({"a", "b"});
        query = NewQuery(kText, {"kMDItemFSName"}, {"kMDItemFSName"});
        Gather(query);
        Host().Throw(
            "REALUnlockObject", [] { throw Refused(); }, 1, 1);
    }
    /// Gives up what the object holds that the host did not take back.
    void ReleaseLost(MDItemRef item) {
        Host().ExpectLeft("MDItemQTX", 1);
        CFRelease(item);
    }
    Object query;
};

} // namespace

TEST_CASE("What a host throws when it is given a result object back reaches the program") {
    TwoRefused program;
    CHECK_THROWS_AS(program.query.Call("Results", -1), Refused);
    program.ReleaseLost(ItemOf(program.query.Call<Object>("ResultAtIndex", 0)));
}

TEST_CASE("What a host throws when it is given a value back reaches the program") {
    TwoRefused program;
    CHECK_THROWS_AS(program.query.Call("ValuesOfAttribute", "kMDItemFSName"), Refused);
    program.Host().ExpectLeft("variant", 1);
}

TEST_CASE("What a host throws when it is given an object of an event back reaches whoever let the event happen") {
    TwoRefused program;
    EventLog events(program.query);
    const Object item = program.NewItem(program.FileNamed("a"));
    const auto items = ArrayOfItems({ItemOf(item)});
    const std::pair<CFTypeRef, CFTypeRef> pairs[] = {{kMDQueryUpdateAddedItems, items.Get()}};
    const auto info = sim::macos::MakeDictionary(pairs);
    CHECK_THROWS_AS(Post(kMDQueryDidUpdateNotification, program.query, info.Get()), Refused);
    CHECK(events.Take() == Events{});
    program.ReleaseLost(ItemOf(item));
}
