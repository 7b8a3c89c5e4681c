// Strings of the system on their way to the host: what a query's text becomes when a host program asks for it.
#include <doctest/doctest.h>

#include "simulator/macos/CoreServices/metadata/schema/schema_attributes.h"
#include "simulator/macos/control/faults.h"
#include "tests/host/front_doors.h"
#include "tests/support/host_ages.h"

#include <cstring>

using namespace sim::host;
using namespace tests;

namespace {

using Calls = std::vector<std::string>;

constexpr std::string_view kBegin = "kMDItemFSName == \"";

/// A query's text with that inside, in UTF-8.
std::string Expression(std::string_view inside) { return std::string(kBegin) + std::string(inside) + '"'; }

Text UTF16Text(std::u16string_view text) {
    std::string bytes(text.size() * 2, '\0');
    std::memcpy(bytes.data(), text.data(), bytes.size());
    return {bytes, kUTF16};
}

std::string Repeated(std::string_view text, size_t count) {
    std::string all;
    while (count--)
        all += text;
    return all;
}

} // namespace

TEST_CASE("A text comes out as UTF-8, built and tagged, on hosts of every age") {
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(HostOptions{.version = age});
        const std::string text = Expression("caf\u00E9 \u691C\u7D22 \U0001F600");
        const Object query = NewQuery(session, text);
        session.Host().ClearLog();
        const Value result = query.GetValue("QueryString");
        CHECK(session.Host().CallNames() == Calls{"REALBuildString", "REALSetStringEncoding"});
        CHECK(result.As<Text>() == Text{text, kUTF8});
    });
}

TEST_CASE("A 99-unit string and a 100-unit string both come out as the same text that went in") {
    for (const std::string_view unit : {"x", "\u00E9", "\u20AC"})
        for (const size_t units : {20U, 98U, 99U, 100U, 101U, 199U, 200U, 601U, 50000U}) {
            CAPTURE(units);
            TestSession session;
            const std::string text = Expression(Repeated(unit, units - kBegin.size() - 1));
            const Object query = NewQuery(session, text);
            CHECK(query.GetValue("QueryString").As<Text>() == Text{text, kUTF8});
        }
}

TEST_CASE("Text of surrogate pairs on both sides of 100 units comes out whole") {
    for (const size_t pairs : {39U, 40U, 41U, 1000U}) {
        TestSession session;
        const std::string text = Expression(Repeated("\U0001F600", pairs));
        CHECK(NewQuery(session, text).Get<std::string>("QueryString") == text);
    }
}

TEST_CASE("The length of a text decides nothing about it: each of 1 to 300 units comes out") {
    TestSession session;
    for (size_t units = 1; units <= 300; units++) {
        const std::string name(units, 'n');
        const Object query = NewQuery(session, "kMDItemFSName == \"*\"", {name});
        CHECK(query.Get<Object>("ValueListAttributes").Elements() == std::vector<Value>{name});
    }
}

TEST_CASE("Every plane of Unicode comes out") {
    TestSession session;
    std::string text;
    for (const char *character : {"\u0001", "\u007F", "\u0080", "\u07FF", "\u0800", "\uD7FF", "\uE000", "\uFFFD",
                                  "\uFFFF", "\U00010000", "\U0001FFFF", "\U000F0000", "\U0010FFFF", "e\u0301"})
        text += character;
    CHECK(NewQuery(session, Expression(text)).Get<std::string>("QueryString") == Expression(text));
}

TEST_CASE("An empty CFString gives a nil host string") {
    TestSession session;
    const Object query = NewQuery(session, "kMDItemFSName == \"*\"", {"", "kMDItemKind"});
    session.Host().ClearLog();
    CHECK(query.Get<Object>("ValueListAttributes").Elements() == std::vector<Value>{nullptr, "kMDItemKind"});
    CHECK(session.Host().CallCount("REALBuildString") == 1);
}

TEST_CASE("No CFString at all gives a nil host string") {
    TestSession session;
    CHECK(session.Host().SharedWith("MDItemQTX", "DisplayNameForAttribute", {"no such attribute"}).IsNil());
    CHECK(session.Host().CallCount("REALBuildString") == 0);
}

TEST_CASE("A text with a lone surrogate, of which there is no UTF-8 form, gives a nil host string") {
    TestSession session;
    for (const size_t length : {1U, 98U, 99U, 100U, 1000U}) {
        std::u16string text(length, u'x');
        text[length / 2] = 0xD800;
        const Object query = NewQuery(session, "kMDItemFSName == \"*\"", {UTF16Text(text)});
        CHECK(query.Get<Object>("ValueListAttributes").Elements() == std::vector<Value>{nullptr});
        CHECK(session.TakeException() == "");
    }
}

TEST_CASE("A text with a zero in it ends there, and one that begins with it gives a nil host string") {
    TestSession session;
    const Object query =
        NewQuery(session, "kMDItemFSName == \"*\"",
                 {UTF16Text(std::u16string_view(u"abc\0def", 7)), UTF16Text(std::u16string_view(u"\0abc", 4))});
    CHECK(query.Get<Object>("ValueListAttributes").Elements() == std::vector<Value>{"abc", nullptr});
}

TEST_CASE("Texts of the system's own come out the same way") {
    for (const size_t units : {1U, 99U, 100U, 5000U}) {
        const std::string text = Repeated("\u00FC", units);
        const sim::macos::AddedSchemaAttribute added(sim::macos::SchemaAttribute{.name = "test", .displayName = text});
        TestSession session;
        CHECK(session.Host().Shared<std::string>("MDItemQTX", "DisplayNameForAttribute", "test") == text);
    }
}

TEST_CASE("The name of a type is built as ASCII") {
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(HostOptions{.version = age});
        CHECK(session.Host().SharedWith("MDItemQTX", "AttributeType", {"kMDItemFSName"}).As<Text>() ==
              Text{"String", kASCII});
    });
}

TEST_CASE("A host without \"REALBuildString\" gets nil strings") {
    TestSession session(Without({"REALBuildString"}));
    CHECK(NewQuery(session).GetValue("QueryString").IsNil());
    CHECK(session.TakeException() == "");
}

TEST_CASE("A host whose \"REALBuildString\" fails gets a nil string, untagged") {
    TestSession session;
    const Object query = NewQuery(session);
    session.Host().ReturnNothing("REALBuildString");
    CHECK(query.GetValue("QueryString").IsNil());
    CHECK(session.Host().CallCount("REALSetStringEncoding") == 0);
    CHECK(session.TakeException() == "");
}

TEST_CASE("A host without \"REALSetStringEncoding\" gets the bytes without their encoding") {
    TestSession session(Without({"REALSetStringEncoding"}));
    CHECK(NewQuery(session, Expression("\u00E9")).GetValue("QueryString").As<Text>() ==
          Text{Expression("\u00E9"), kUnknownEncoding});
}

TEST_CASE("A text goes round between host and system any number of times without a change") {
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(HostOptions{.version = age});
        Value text = Expression(Repeated("\u00E9\U0001F600 o\u0308 \u691C", 20));
        for (int i = 0; i < 5; i++)
            text = NewQuery(session, text).GetValue("QueryString");
        CHECK(text.As<std::string>() == Expression(Repeated("\u00E9\U0001F600 o\u0308 \u691C", 20)));
    });
}
