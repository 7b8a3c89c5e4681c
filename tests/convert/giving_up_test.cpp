// A host that throws when a reference is given back to it: what it throws passes through the conversion to the program
// that asked for it, and everything else that the conversion held is given up.
#include "tests/convert/value_session.h"

#include <doctest/doctest.h>

#include <functional>
#include <string>
#include <vector>

using sim::host::Value;
using tests::CoreArray;
using tests::CoreDictionary;
using tests::CoreInteger;
using tests::CoreText;
using tests::ValueSession;

namespace {

struct Refused {};

/// Asks a query for what has that value.
void Count(ValueSession &session, const Value &value) {
    tests::NewQuery(session).Call("CountOfResultsWithAttributeValue", "value", value);
}

/// A conversion in which `service` is called `calls` times, each time with a thing of a kind of its own.
struct GivenUp {
    const char *title;
    const char *service;
    std::vector<const char *> kinds;
    std::function<void(ValueSession &)> convert;
};

const GivenUp kRows[] = {
    {"an element of a string array",
     "REALUnlockString",
     {"string"},
     [](ValueSession &session) { Count(session, session.Host().NewArray("string", {"a"})); }},
    {"an element of a date array",
     "REALUnlockObject",
     {"Date"},
     [](ValueSession &session) {
         auto &host = session.Host();
         Count(session, host.NewArray("date", {host.NewDate({2014})}));
     }},
    {"an element of a variant array",
     "REALUnlockObject",
     {"variant"},
     [](ValueSession &session) { Count(session, session.Host().NewArray("variant", {7})); }},
    {"a name of a list",
     "REALUnlockString",
     {"string"},
     [](ValueSession &session) {
         session.ItemWith(CoreText("x").Get()).Call("GetAttributes", session.Host().NewArray("string", {"nothing"}));
     }},
    {"key and value of a Dictionary",
     "REALUnlockObject",
     {"variant", "variant"},
     [](ValueSession &session) {
         Count(session, session.Host().NewDictionary({{1, 2}}));
     }},
    {"the text of a variant", "REALUnlockString", {"string"}, [](ValueSession &session) { Count(session, "text"); }},
    {"an element of a CFArray",
     "REALUnlockObject",
     {"variant"},
     [](ValueSession &session) { session.ToHost(CoreArray({CoreInteger(1)})); }},
    {"key and value of a CFDictionary",
     "REALUnlockObject",
     {"variant", "Date"},
     [](ValueSession &session) {
         session.ToHost(CoreDictionary({{CoreInteger(1), tests::CoreDate(0)}}));
     }},
    {"the text of a CFString",
     "REALUnlockString",
     {"string"},
     [](ValueSession &session) { session.ToHost(CoreText("text")); }},
    {"the second reference on a memory block",
     "REALUnlockObject",
     {"MemoryBlock"},
     [](ValueSession &session) { session.ToHost(tests::CoreData("abc")); }},
};

} // namespace

TEST_CASE("What a host throws when it is given a reference back reaches the program, and nothing else is lost") {
    for (const GivenUp &row : kRows) {
        CAPTURE(std::string(row.title));
        for (size_t call = 1; call <= row.kinds.size(); call++) {
            CAPTURE(call);
            ValueSession session;
            const auto at = static_cast<int32_t>(call);
            session.Host().Throw(
                row.service, [] { throw Refused(); }, at, at);
            CHECK_THROWS_AS(row.convert(session), Refused);
            session.Host().ExpectLeft(row.kinds[call - 1], 1);
        }
    }
}
