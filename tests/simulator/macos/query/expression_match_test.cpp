// What a query means: each row is an attribute value, a query, and whether they fit. The moment of asking is fixed.
#include "simulator/macos/CoreServices/metadata/expression/expression.h"
#include "tests/simulator/macos/query/support/attributes.h"
#include "tests/simulator/macos/support/balance.h"

#include <doctest/doctest.h>

namespace sim::macos {

namespace {

/// A Monday.
const CFAbsoluteTime kMatchedAt = Date(2014, 6, 30, 15, 4, 5);

bool Matches(const AttributeSource &file, std::string_view query) {
    const auto expression = expression::Expression::Parse(Utf16(query));
    REQUIRE_MESSAGE(expression != nullptr, query);
    return expression->Matches(file, kMatchedAt);
}

/// A file with the value as attribute a.
bool Fits(Value value, std::string_view query) { return Matches(Attributes().With("a", std::move(value)), query); }

struct TextRow {
    const char *text;
    const char *query;
    bool fits;
};

void CheckTexts(std::initializer_list<TextRow> rows) {
    for (const TextRow &row : rows) {
        CAPTURE(row.text);
        CAPTURE(row.query);
        CHECK(Fits(Text(row.text), row.query) == row.fits);
    }
}

} // namespace

TEST_CASE("without modifiers a text compares exactly and as a whole") {
    tests::Balanced balance;
    CheckTexts({
        {"Paris", "a == \"Paris\"", true},
        {"Paris", "a = 'Paris'", true},
        {"paris", "a == \"Paris\"", false},
        {"I love Paris", "a == \"Paris\"", false},
        {"Paris", "a == \"Pari\"", false},
        {"Pari", "a == \"Paris\"", false},
        {"", "a == \"\"", true},
        {"x", "a == \"\"", false},
        {"", "a == \"x\"", false},
        {"Paris", "a != \"Paris\"", false},
        {"Rome", "a != \"Paris\"", true},
        {"say \"so\"", R"(a == "say \"so\"")", true},
        {"say \"so\"", R"(a == 'say "so"')", true},
        {"it's", R"(a == 'it\'s')", true},
        {"a*b", R"(a == "a\*b")", true},
        {"axb", R"(a == "a\*b")", false},
        {"a?b", R"(a == "a\?b")", true},
        {"a\\b", R"(a == "a\\b")", true},
        {"a\\xb", R"(a == "a\\*b")", true},
        {"a b", "a == 'a b'", true},
    });
}

TEST_CASE("a text that is composed equals the same text decomposed") {
    tests::Balanced balance;
    CheckTexts({
        {"caf\xc3\xa9", "a == 'cafe\xcc\x81'", true},
        {"cafe\xcc\x81", "a == 'caf\xc3\xa9'", true},
        {"caf\xc3\xa9", "a == 'cafe'", false},
        {"cafe\xcc\x81", "a == 'cafe*'", false}, // the mark belongs to its letter
        {"cafe\xcc\x81s", "a == 'caf?s'", true},
        {"\xea\xb0\x81", "a == '\xe1\x84\x80\xe1\x85\xa1\xe1\x86\xa8'", true}, // a Korean syllable and its parts
        {"\xe1\x84\x80\xe1\x85\xa1\xe1\x86\xa8", "a == '?'", true},
        {"\xf0\x9f\x98\x80", "a == '?'", true}, // beyond the basic plane
    });
}

TEST_CASE("the modifier c ignores case") {
    tests::Balanced balance;
    CheckTexts({
        {"paris", "a == \"PARIS\"c", true},
        {"PaRiS", "a ==[c] \"pArIs\"", true},
        {"\xc3\x89t\xc3\xa9", "a == '\xc3\xa9T\xc3\x89'c", true},
        {"\xc3\x89t\xc3\xa9", "a == 'ete'c", false},
        {"stra\xc3\x9f"
         "e",
         "a == 'STRASSE'c", true},
        {"stra\xc3\x9f"
         "e",
         "a == 'STRA?E'c", true}, // one character, however it folds
        {"STRASSE", "a == 'stra?e'c", false},
        {"\xce\xa3\xce\xaf\xcf\x83\xcf\x85\xcf\x86\xce\xbf\xcf\x82",
         "a == '\xcf\x83\xce\xaf\xce\xa3\xcf\x85\xcf\x86\xce\xbf\xcf\x83'c", true}, // the two small sigmas
        {"paris", "a == \"PARIS\"d", false},
    });
}

TEST_CASE("the modifier d ignores diacritics") {
    tests::Balanced balance;
    CheckTexts({
        {"caf\xc3\xa9", "a == 'cafe'd", true},
        {"cafe", "a == 'caf\xc3\xa9'd", true},
        {"cafe\xcc\x81", "a ==[d] 'cafe'", true},
        {"Caf\xc3\xa9", "a == 'cafe'd", false},
        {"Caf\xc3\x89", "a == 'cafe'cd", true},
        {"Caf\xc3\x89", "a ==[c] 'cafe'd", true}, // both spellings at once
        {"\xc3\x85ngstr\xc3\xb6m", "a == 'angstrom'cd", true},
        {"\xe3\x81\x8c", "a == '\xe3\x81\x8b'd", false}, // a voiced kana is another letter
    });
}

TEST_CASE("the modifier w matches whole words anywhere in the text") {
    tests::Balanced balance;
    CheckTexts({
        {"I love Paris", "a == \"Paris\"wc", true},
        {"paris-france.jpg", "a == \"Paris\"wc", true},
        {"paris-france.jpg", "a == \"France\"wc", true},
        {"paris-france.jpg", "a == \"jpg\"w", true},
        {"Comparison", "a == \"Paris\"wc", false},
        {"Parisian", "a == \"Paris\"wc", false},
        {"I love paris", "a == \"Paris\"w", false},
        {"MyWindowClass", "a == \"Window\"w", true},
        {"MyWindowClass", "a == \"Class\"w", true},
        {"MyWindowClass", "a == \"My\"w", true},
        {"NSWindow", "a == \"Window\"w", false},
        {"NSWindow", "a == \"NSWindow\"w", true},
        {"Parisian nights", "a == \"Paris*\"w", true},
        {"Comparison", "a == \"Par*\"w", false},
        {"the end of it", "a == \"end of\"w", true},
        {"the end of it", "a == \"d of\"w", false},
        {"the end of it", "a == \"en?\"w", true},
        {"snake_case_name", "a == \"case\"w", true},
        {"un \xc3\xa9t\xc3\xa9 \xc3\xa0 Paris", "a == '\xc3\xa9t\xc3\xa9'w", true},
        {"un \xc3\xa9t\xc3\xa9 \xc3\xa0 Paris", "a == 'ete'wd", true},
        {"r\xc3\xa9p\xc3\xa9t\xc3\xa9", "a == 't\xc3\xa9'w", false},
        // "I like coffee" in Thai, which writes no blanks: the second word, and half of it
        {"\xe0\xb8\x89\xe0\xb8\xb1\xe0\xb8\x99\xe0\xb8\x8a\xe0\xb8\xad\xe0\xb8\x9a\xe0\xb8\x81\xe0\xb8\xb2\xe0\xb9\x81"
         "\xe0\xb8\x9f",
         "a == '\xe0\xb8\x8a\xe0\xb8\xad\xe0\xb8\x9a'w", true},
        {"\xe0\xb8\x89\xe0\xb8\xb1\xe0\xb8\x99\xe0\xb8\x8a\xe0\xb8\xad\xe0\xb8\x9a\xe0\xb8\x81\xe0\xb8\xb2\xe0\xb9\x81"
         "\xe0\xb8\x9f",
         "a == '\xe0\xb8\xad\xe0\xb8\x9a'w", false},
        {"I love Paris", "a == \"Paris\"t", true},
        {"Comparison", "a == \"paris\"t", false},
        {"I love Paris", "a !=[w] \"Paris\"", false},
    });
}

TEST_CASE("a star stands for any characters and a question mark for one") {
    tests::Balanced balance;
    CheckTexts({
        {"report.txt", "a == '*.txt'", true},
        {"report.txt.zip", "a == '*.txt'", false},
        {".txt", "a == '*.txt'", true},
        {"report.txt", "a == 'rep*'", true},
        {"report.txt", "a == '*port*'", true},
        {"report.txt", "a == 'r*t.t*t'", true},
        {"report.txt", "a == 'r*x.t*t'", false},
        {"report.txt", "a == 'report.txt*'", true},
        {"report.txt", "a == '*report.txt'", true},
        {"report.txt", "a == '**o**'", true},
        {"report.txt", "a == 'report.t?t'", true},
        {"report.txt", "a == '??????.txt'", true},
        {"report.txt", "a == '?????.txt'", false},
        {"report.txt", "a == '?*?'", true},
        {"r", "a == '?*?'", false},
        {"", "a == '?'", false},
        {"", "a == '**'", true},
        {"REPORT.TXT", "a == '*.txt'c", true},
        {"r\xc3\xa9sum\xc3\xa9.txt", "a == 'resume.*'d", true},
        {"report.txt", "a != '*.txt'", false},
        {"report.png", "a != '*.txt'", true},
    });
}

TEST_CASE("a pattern full of stars takes no time to speak of") {
    const std::string text(4000, 'a');
    std::string query = "a == '";
    for (int star = 0; star < 200; ++star)
        query += "*a";
    CHECK_FALSE(Fits(Text(text), query + "*b'"));
    CHECK(Fits(Text(text), query + "'"));
}

TEST_CASE("a star alone asks whether there is a value, of any kind") {
    tests::Balanced balance;
    CHECK(Fits(Text("x"), "a == '*'"));
    CHECK(Fits(Text(""), "a == \"*\""));
    CHECK(Fits(Whole(0), "a == '*'"));
    CHECK(Fits(Truth(false), "a = '*'"));
    CHECK(Fits(Moment(0), "a ==[cd] '*'w"));
    CHECK(Fits(Bytes("x"), "a == '*'"));
    CHECK(Fits(Texts({}), "a == '*'"));
    CHECK_FALSE(Fits(Text("x"), "b == '*'"));
    CHECK_FALSE(Fits(Text("x"), "a != '*'"));
    CHECK(Fits(Text("x"), "b != '*'"));
    CHECK_FALSE(Fits(Whole(0), R"(a == '\*')"));
}

TEST_CASE("a file without the attribute is not equal to anything") {
    CHECK_FALSE(Fits(Text("x"), "b == 'x'"));
    CHECK(Fits(Text("x"), "b != 'x'"));
    CHECK(Fits(Text("x"), "b != 5"));
    CHECK_FALSE(Fits(Text("x"), "b < 5"));
    CHECK_FALSE(Fits(Text("x"), "b >= 5"));
    CHECK_FALSE(Fits(Text("x"), "InRange(b,0,9)"));
    CHECK_FALSE(Fits(Text("x"), "b == ''"));
}

TEST_CASE("numbers compare by value") {
    tests::Balanced balance;
    CHECK(Fits(Whole(42), "a == 42"));
    CHECK(Fits(Whole(42), "a == 42.0"));
    CHECK(Fits(Whole(42), "a == 4.2e1"));
    CHECK(Fits(Whole(42), "a == '42'"));
    CHECK_FALSE(Fits(Whole(42), "a == '42*'"));
    CHECK_FALSE(Fits(Whole(42), "a == 43"));
    CHECK(Fits(Whole(42), "a != 43"));
    CHECK(Fits(Whole(42), "a != 'x'"));
    CHECK(Fits(Whole(42), "a > 41"));
    CHECK_FALSE(Fits(Whole(42), "a > 42"));
    CHECK(Fits(Whole(42), "a >= 42"));
    CHECK(Fits(Whole(42), "a < 42.5"));
    CHECK_FALSE(Fits(Whole(42), "a < 42"));
    CHECK(Fits(Whole(42), "a <= \"42\""));
    CHECK(Fits(Whole(-1), "a < 0"));
    CHECK(Fits(Real(1.5), "a == 1.5"));
    CHECK(Fits(Real(1.5), "a > 1"));
    CHECK(Fits(Real(1.5), "a == +1.5"));
    CHECK(Fits(Real(-1e300), "a < -1"));
}

TEST_CASE("whole numbers beyond what a float holds still differ") {
    CHECK(Fits(Whole(9007199254740993), "a == 9007199254740993"));
    CHECK_FALSE(Fits(Whole(9007199254740993), "a == 9007199254740992"));
    CHECK(Fits(Whole(9007199254740993), "a > 9007199254740992"));
    CHECK(Fits(Whole(9223372036854775807), "a == 9223372036854775807"));
}

TEST_CASE("booleans are the numbers 0 and 1") {
    CHECK(Fits(Truth(true), "a == 1"));
    CHECK(Fits(Truth(false), "a == 0"));
    CHECK(Fits(Truth(true), "a != 0"));
    CHECK(Fits(Truth(true), "a > 0"));
}

TEST_CASE("values of another kind than the query asks for do not fit") {
    CHECK_FALSE(Fits(Text("42"), "a == 42"));
    CHECK_FALSE(Fits(Text("42"), "a > 41"));
    CHECK_FALSE(Fits(Text("42"), "a > '41'"));
    CHECK(Fits(Text("42"), "a == '42'"));
    CHECK_FALSE(Fits(Whole(0), "a == $time.today"));
    CHECK_FALSE(Fits(Text("x"), "a == $time.now"));
    CHECK_FALSE(Fits(Bytes("42"), "a == '42'"));
}

TEST_CASE("a range includes both its bounds") {
    CHECK(Fits(Whole(1), "InRange(a,1,3)"));
    CHECK(Fits(Whole(3), "inRange(a,1,3)"));
    CHECK_FALSE(Fits(Whole(0), "InRange(a,1,3)"));
    CHECK_FALSE(Fits(Whole(4), "InRange(a,1,3)"));
    CHECK_FALSE(Fits(Whole(2), "InRange(a,3,1)"));
    CHECK(Fits(Real(2.5), "InRange(a,'1','3')"));
    CHECK(Fits(Moment(5), "InRange(a,5,5)"));
    CHECK_FALSE(Fits(Text("2"), "InRange(a,1,3)"));
}

TEST_CASE("an attribute with several values fits when one of them does") {
    tests::Balanced balance;
    CHECK(Fits(Texts({"Steve", "Ann"}), "a == 'Ann'"));
    CHECK(Fits(Texts({"Steve", "Ann"}), "a ==[c] 'steve'"));
    CHECK_FALSE(Fits(Texts({"Steve", "Ann"}), "a == 'Bob'"));
    CHECK_FALSE(Fits(Texts({"Steve", "Ann"}), "a != 'Ann'"));
    CHECK(Fits(Texts({"Steve", "Ann"}), "a != 'Bob'"));
    CHECK_FALSE(Fits(Texts({}), "a == 'Bob'"));
    CHECK(Fits(List({Whole(1), Whole(9)}), "a > 5"));
    CHECK_FALSE(Fits(List({Whole(1), Whole(9)}), "InRange(a,2,8)")); // no single one is in it
    CHECK_FALSE(Fits(List({Texts({"x"})}), "a == 'x'"));
}

TEST_CASE("and binds closer than or, and parentheses closer still") {
    Attributes file;
    file.With("t", Whole(1)).With("f", Whole(0));
    CHECK(Matches(file, "t==1 && f==0"));
    CHECK_FALSE(Matches(file, "t==1 && f==1"));
    CHECK(Matches(file, "t==0 || f==0"));
    CHECK_FALSE(Matches(file, "t==0 || f==1"));
    CHECK(Matches(file, "t==1 || t==0 && t==0"));
    CHECK_FALSE(Matches(file, "(t==1 || t==0) && t==0"));
    CHECK(Matches(file, "t==0 && t==0 || t==1"));
    CHECK_FALSE(Matches(file, "t==0 && (t==0 || t==1)"));
    CHECK(Matches(file, "t==1 && t==1 && t==1 && (t==0 || t==0 || f==0)"));
}

TEST_CASE("attribute names are taken to the letter, custom ones too") {
    Attributes file;
    file.With("com.example:Colour", Text("red"))
        .With("gr\xc3\xb6\xc3\x9f"
              "e",
              Whole(7));
    CHECK(Matches(file, "com.example:Colour == 'red'"));
    CHECK_FALSE(Matches(file, "com.example:colour == 'red'"));
    CHECK(Matches(file, "gr\xc3\xb6\xc3\x9f"
                        "e == 7"));
}

TEST_CASE("content can be searched though it cannot be read") {
    Attributes file;
    file.WithSearchable("kMDItemTextContent", Text("the quick brown fox"));
    CHECK(Matches(file, "kMDItemTextContent == 'quick'w"));
    CHECK(file.Copy("kMDItemTextContent") == nullptr);
}

TEST_CASE("the path can be read but not searched") {
    Attributes file;
    file.With("kMDItemPath", Text("/a/b"));
    CHECK_FALSE(Matches(file, "kMDItemPath == '/a/b'"));
    CHECK_FALSE(Matches(file, "kMDItemPath == '*'"));
}

TEST_CASE("malformed text in an attribute or a query does no harm") {
    const char16_t kLone[] = {u'a', 0xD800, u'b'};
    const auto lone = Value::Adopt(CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar *>(kLone), 3));
    CHECK(Fits(lone.Copy(), "a == 'a?b'"));
    CHECK(Fits(lone.Copy(), "a == 'A*B'cdw"));
    CHECK_FALSE(Fits(lone.Copy(), "a == 'ab'"));
    std::u16string query = u"a == '";
    query.append(kLone, 3);
    query += u"'";
    const auto expression = expression::Expression::Parse(query);
    REQUIRE(expression != nullptr);
    CHECK(expression->Matches(Attributes().With("a", lone.Copy()), kMatchedAt));
}

} // namespace sim::macos
