// Which texts are queries and which are not.
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreServices/metadata/expression/expression.h"
#include "simulator/macos/CoreServices/metadata/expression/parser.h"

#include <doctest/doctest.h>

#include <string>

namespace sim::macos {

namespace {

bool IsQuery(std::string_view text) { return expression::Expression::Parse(Utf16(text)) != nullptr; }

} // namespace

TEST_CASE("well-formed queries are understood") {
    constexpr const char *kQueries[] = {
        "kMDItemFSName == \"a\"",
        "kMDItemFSName = 'a'",
        "kMDItemFSName=='a'",
        "kMDItemFSName!='a'",
        "  kMDItemFSName\t==\n\"a\"  ",
        "kMDItemFSName == \"\"",
        "kMDItemFSName == \"it's\"",
        "kMDItemFSName == 'say \"so\"'",
        "kMDItemFSName == \"a\"c",
        "kMDItemFSName == \"a\"cdw",
        "kMDItemFSName == \"a\"wdct",
        "kMDItemFSName == \"a\"cc",
        "kMDItemFSName ==[c] \"a\"",
        "kMDItemFSName ==[cd]\"a\"",
        "kMDItemFSName !=[cdw] \"a\"",
        "kMDItemFSName == [c] \"a\"d",
        "kMDItemFSSize == 5",
        "kMDItemFSSize<5",
        "kMDItemFSSize >= -5.25e3",
        "kMDItemFSSize > +5",
        "kMDItemFSSize > \"100\"",
        "InRange(kMDItemFSSize,1,2)",
        "inRange( kMDItemFSSize , 1 , 2 )",
        "InRange(kMDItemFSContentChangeDate,$time.today(-1),$time.now)",
        "InRange == 5",
        "kMDItemFSContentChangeDate > $time.now",
        "kMDItemFSContentChangeDate > $time.now(-3600)",
        "kMDItemFSContentChangeDate > $time.now( -3600.5 )",
        "kMDItemFSContentChangeDate == $time.today",
        "kMDItemFSContentChangeDate == $time.today(+1)",
        "kMDItemFSContentChangeDate == $time.yesterday",
        "kMDItemFSContentChangeDate == $time.this_week(-1)",
        "kMDItemFSContentChangeDate == $time.this_month(-12)",
        "kMDItemFSContentChangeDate == $time.this_year(0)",
        "kMDItemFSContentChangeDate > $time.iso(2014-06-30T23:30:59Z)",
        "kMDItemFSContentChangeDate > $time.iso(\"2014-06-30\")",
        "com_example_color == 'red'",
        "com.example.color:shade == 'red'",
        "_x1 == 'red'",
        "größe == 1",
        "(a==1)",
        "((a==1))",
        "a==1 && b==2",
        "a==1&&b==2||c==3",
        "a==1 || (b==2 && (c==3 || d==4))",
    };
    for (const char *query : kQueries) {
        CAPTURE(query);
        CHECK(IsQuery(query));
    }
}

TEST_CASE("malformed queries are refused") {
    constexpr const char *kQueries[] = {
        "",
        " ",
        "\n",
        "kMDItemFSName",
        "kMDItemFSName ==",
        "== 'a'",
        "'a' == kMDItemFSName",
        "kMDItemFSName === 'a'",
        "kMDItemFSName == a",
        "kMDItemFSName == true",
        "kMDItemFSName == \"a",
        "kMDItemFSName == 'a\"",
        "kMDItemFSName == \"a\\\"",
        "kMDItemFSName == \"a\"x",
        "kMDItemFSName == \"a\"cx",
        "kMDItemFSName == \"a\"C",
        "kMDItemFSName == \"a\" c",
        "kMDItemFSName ==[] \"a\"",
        "kMDItemFSName ==[x] \"a\"",
        "kMDItemFSName ==[c \"a\"",
        "kMDItemFSName ==[c d] \"a\"",
        "kMDItemFSName [c]== \"a\"",
        "kMDItemFSName ==[c] 5",
        "kMDItemFSName <[c] \"a\"",
        "kMDItemFSName < \"a\"",
        "kMDItemFSName >= \"a*\"",
        "kMDItemFSSize == 5px",
        "kMDItemFSSize == 5.5.5",
        "kMDItemFSSize == 1e999",
        "kMDItemFSSize == .5",
        "kMDItemFSSize == 0x10",
        "kMDItemFSSize == --5",
        "kMDItemFSSize => 5",
        "kMDItemFSSize =< 5",
        "kMDItemFSSize <> 5",
        "kMDItemFSSize ! = 5",
        "kMDItemFSSize & 5",
        "InRange(kMDItemFSSize,1)",
        "InRange(kMDItemFSSize,1,2,3)",
        "InRange(kMDItemFSSize,1,2",
        "InRange(kMDItemFSSize 1 2)",
        "InRange(kMDItemFSName,'a','b')",
        "InRange(1,1,2)",
        "InRange(,1,2)",
        "INRANGE(kMDItemFSSize,1,2)",
        "inrange(kMDItemFSSize,1,2)",
        "5 == 5",
        "1a == 5",
        "a==1 &&",
        "&& a==1",
        "a==1 & b==2",
        "a==1 | b==2",
        "a==1 and b==2",
        "a==1 AND b==2",
        "a==1 b==2",
        "a==1 && && b==2",
        "a==1 || && b==2",
        "(a==1",
        "a==1)",
        "()",
        "(a)==1",
        "!(a==1)",
        "a==1;",
        "a==1,",
        "a == $time",
        "a == $time.",
        "a == $time.tomorrow",
        "a == $time.Today",
        "a == $time.today()",
        "a == $time.today(1",
        "a == $time.today(x)",
        "a == $time.today(1.5)",
        "a == $time.today(1)(2)",
        "a == $time.this_week(--1)",
        "a == $time.iso",
        "a == $time.iso()",
        "a == $time.iso(yesterday)",
        "a == $time.iso(2014-13-01)",
        "a == $time.iso(2014-02-29)",
        "a == $now",
        "a == $time.todayx",
        "a == \xff",
        "\x01",
        "]",
        "a == 1 ]",
    };
    for (const char *query : kQueries) {
        CAPTURE(query);
        CHECK_FALSE(IsQuery(query));
    }
}

TEST_CASE("a NUL is no part of a query outside quotes") {
    using namespace std::string_view_literals;
    CHECK_FALSE(IsQuery("a == 1\0"sv));
    CHECK(IsQuery("a == 'x\0y'"sv));
}

TEST_CASE("parentheses nest to a fixed depth and are refused beyond it") {
    const auto nested = [](int depth) {
        const auto count = static_cast<std::size_t>(depth);
        return std::string(count, '(') + "a==1" + std::string(count, ')');
    };
    CHECK(IsQuery(nested(1)));
    CHECK(IsQuery(nested(expression::kDeepestNesting)));
    CHECK_FALSE(IsQuery(nested(expression::kDeepestNesting + 1)));
}

TEST_CASE("a megabyte of opening parentheses is malformed and nothing worse") {
    CHECK_FALSE(IsQuery(std::string(1 << 20, '(')));
}

TEST_CASE("a query may be long: twenty thousand comparisons in a row") {
    std::string query = "a==0";
    for (int number = 1; number < 20000; ++number)
        query += (number % 2 ? " && a==" : " || a==") + std::to_string(number);
    CHECK(IsQuery(query));
}

TEST_CASE("every beginning of a well-formed query is either a query or refused") {
    const std::string query = "(a ==[cd] \"x\\*y*?\"w && InRange(b,-1.5e3,$time.today(-1))) || c != 'z'";
    int queries = 0;
    for (std::size_t length = 0; length <= query.size(); ++length)
        queries += IsQuery(query.substr(0, length));
    CHECK(queries == 3); // the parenthesis alone, with a blank behind it, and all of it
}

} // namespace sim::macos
