#include "simulator/cli/text_width.h"

#include <doctest/doctest.h>

namespace sim::cli {
namespace {

TEST_CASE("A character takes the columns that a terminal gives it") {
    struct Row {
        const char *text;
        size_t width;
    };
    for (const Row &row :
         {Row{"", 0}, Row{"abc", 3}, Row{"é", 1}, Row{"e\u0301", 1}, Row{"日本", 4}, Row{"ハ\u309A", 2},
          Row{"\u1112\u1161\u11AB", 2}, Row{"ｱ", 1}, Row{"Ａ", 2}, Row{"😀", 2}, Row{"👩\u200D👩\u200D👧", 2}, Row{"🇩🇪", 2},
          Row{"\u2600\uFE0F", 2}, Row{"a\u200Bb", 2}, Row{"\u0915\u094D\u0937", 1}, Row{"…", 1}, Row{"→", 1}}) {
        CAPTURE(row.text);
        CHECK(WidthOf(row.text) == row.width);
    }
}

TEST_CASE("A text that is too wide is cut between characters and marked") {
    CHECK(Fitted("holiday.txt", 11) == "holiday.txt");
    CHECK(Fitted("holiday.txt", 8) == "holiday…");
    CHECK(Fitted("日本語", 4) == "日…");
    CHECK(Fitted("e\u0301e\u0301e\u0301", 2) == "e\u0301…");
    CHECK(Fitted("abc", 1) == "…");
    CHECK(Fitted("abc", 0) == "");
}

TEST_CASE("A path is cut in its middle, so that its end can be read") {
    CHECK(Fitted("/home/user/documents/letter.txt", 16, Cut::kMiddle) == "/home…letter.txt");
    CHECK(Fitted("/a/日本語/b", 8, Cut::kMiddle) == "/a/…語/b");
}

TEST_CASE("Padding counts columns, not bytes") {
    CHECK(PaddedRight("日本", 6) == "日本  ");
    CHECK(PaddedRight("e\u0301", 3) == "e\u0301  ");
    CHECK(PaddedLeft("é", 3) == "  é");
    CHECK(PaddedRight("abcd", 3) == "abcd");
}

TEST_CASE("What could move the cursor or turn the writing around is spelled out") {
    CHECK(Printable("plain ünïcode 日本") == "plain ünïcode 日本");
    CHECK(Printable("a\nb\tc\rd") == "a\\nb\\tc\\rd");
    CHECK(Printable("\x1b[31mred") == "\\x1b[31mred");
    CHECK(Printable("\x7f\u009b") == "\\x7f\\x9b");
    CHECK(Printable("\u202Egnp.exe") == "\\u202egnp.exe");
    CHECK(Printable("\u2028") == "\\u2028");
    CHECK(Printable("a\xff\xfe") == "a\\xff\\xfe");
}

} // namespace
} // namespace sim::cli
