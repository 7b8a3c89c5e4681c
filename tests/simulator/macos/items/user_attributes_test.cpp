// What a user or a desktop program has written down with a file, in extended attributes.
#include "simulator/macos/CoreServices/metadata/schema/schema_attributes.h"
#include "tests/simulator/macos/items/support/reading.h"
#include "tests/simulator/macos/support/balance.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <sys/xattr.h>

namespace sim::macos {

namespace {

using Lines = std::vector<std::string>;

std::string Stored(const std::string &path, const char *name) {
    char value[200];
    const ssize_t size = getxattr(path.c_str(), name, value, sizeof value);
    REQUIRE(size >= 0);
    return {value, static_cast<std::size_t>(size)};
}

/// The attribute of a file that carries one extended attribute.
Value With(const tests::TemporaryFolder &folder, const char *name, std::string_view text, std::string_view key) {
    const std::string path = folder.File("carrier", "");
    tests::SetExtendedAttribute(path, name, text);
    return Attribute(path, key);
}

} // namespace

TEST_CASE("a comment is both the file's comment and the Finder's, and agrees with getxattr(2)") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("letter", "");
    CHECK_FALSE(Attribute(path, "kMDItemFinderComment"));
    tests::SetExtendedAttribute(path, "user.xdg.comment", "From Zo\xC3\xAB, \xF0\x9F\x93\xA8");
    CHECK(Text(Attribute(path, "kMDItemFinderComment")) == Stored(path, "user.xdg.comment"));
    CHECK(Text(Attribute(path, "kMDItemComment")) == "From Zo\xC3\xAB, \xF0\x9F\x93\xA8");
    tests::SetExtendedAttribute(path, "user.xdg.comment", "\xFF is no UTF-8");
    CHECK_FALSE(Attribute(path, "kMDItemFinderComment"));
}

TEST_CASE("tags are keywords, without blanks around them, in their order") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(Texts(With(folder, "user.xdg.tags", "Red, to do ,Important", "kMDItemKeywords")) ==
          Lines{"Red", "to do", "Important"});
    CHECK_FALSE(With(folder, "user.xdg.tags", " , ", "kMDItemKeywords"));
    CHECK_FALSE(With(folder, "user.xdg.tags", "", "kMDItemKeywords"));
}

TEST_CASE("a rating of ten half stars is five stars, and an odd one a fraction") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto rating = [&](std::string_view text) {
        return With(folder, "user.baloo.rating", text, "kMDItemStarRating");
    };
    CHECK(Whole(rating("10")) == 5);
    CHECK(Whole(rating("0")) == 0);
    CHECK(Fraction(rating("7")) == 3.5);
    for (const char *text : {"", "11", "-2", "4.5", "many", "4 "}) {
        CAPTURE(text);
        CHECK_FALSE(rating(text));
    }
}

TEST_CASE("a downloaded file tells its address and the page that led to it") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("download", "");
    tests::SetExtendedAttribute(path, "user.xdg.origin.url", "https://example.org/a.zip?x=1,2");
    CHECK(Texts(Attribute(path, "kMDItemWhereFroms")) == Lines{"https://example.org/a.zip?x=1,2"});
    tests::SetExtendedAttribute(path, "user.xdg.referrer.url", "https://example.org/");
    CHECK(Texts(Attribute(path, "kMDItemWhereFroms")) ==
          Lines{"https://example.org/a.zip?x=1,2", "https://example.org/"});
}

TEST_CASE("each common attribute of documents has its key, single or a list as the schema says") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const struct {
        const char *name;
        const char *key;
        bool isList;
    } kRows[] = {
        {"user.dublincore.title", "kMDItemTitle", false},
        {"user.dublincore.creator", "kMDItemAuthors", true},
        {"user.dublincore.subject", "kMDItemSubject", false},
        {"user.dublincore.description", "kMDItemDescription", false},
        {"user.dublincore.publisher", "kMDItemPublishers", true},
        {"user.dublincore.contributor", "kMDItemContributors", true},
        {"user.dublincore.identifier", "kMDItemIdentifier", false},
        {"user.dublincore.language", "kMDItemLanguages", true},
        {"user.dublincore.coverage", "kMDItemCoverage", true},
        {"user.dublincore.rights", "kMDItemRights", false},
        {"user.xdg.creator", "kMDItemCreator", false},
    };
    for (const auto &row : kRows) {
        CAPTURE(row.name);
        const auto value = With(folder, row.name, "One, Two", row.key);
        if (row.isList)
            CHECK(Texts(value) == Lines{"One", "Two"});
        else
            CHECK(Text(value) == "One, Two");
    }
}

TEST_CASE("an attribute under its own name has the type that the schema gives it") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto with = [&](const char *name, std::string_view text) {
        return With(folder, name, text, std::string_view(name).substr(5));
    };
    CHECK(Text(with("user.kMDItemAlbum", " spaces stay ")) == " spaces stay ");
    CHECK(Whole(with("user.kMDItemNumberOfPages", "412")) == 412);
    CHECK(Whole(with("user.kMDItemTotalBitRate", "-5000000000")) == -5'000'000'000);
    CHECK(Fraction(with("user.kMDItemDurationSeconds", "2.5e2")) == 250);
    CHECK(Truth(with("user.kMDItemStreamable", "true")));
    CHECK_FALSE(Truth(with("user.kMDItemIsLikelyJunk", "0")));
    CHECK(Seconds(with("user.kMDItemDueDate", "2014-06-30T23:30:59Z")) == 1'404'171'059);
    CHECK(Seconds(with("user.kMDItemDueDate", "2014-07-01T01:30:59+02:00")) == 1'404'171'059);
    CHECK(Seconds(with("user.kMDItemDueDate", "2001-01-01")) == 978'307'200);
    CHECK(Texts(with("user.kMDItemEditors", "Ann Lee\nBo, Junior\n")) == Lines{"Ann Lee", "Bo, Junior"});
}

TEST_CASE("text that does not read as its attribute's type gives no value") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const struct {
        const char *name;
        const char *text;
    } kRows[] = {
        {"user.kMDItemNumberOfPages", "many"},
        {"user.kMDItemNumberOfPages", ""},
        {"user.kMDItemNumberOfPages", "12 pages"},
        {"user.kMDItemStreamable", "maybe"},
        {"user.kMDItemDueDate", "30.6.2014"},
        {"user.kMDItemDueDate", "2014-02-30"},
        {"user.kMDItemDueDate", "2014-06-30T25:00:00Z"},
        {"user.kMDItemEditors", "\n \n"},
        {"user.kMDItemLabelUUID", "5A3C"},
        {"user.kMDItemLabelIcon", "bytes"},
        {"user.kMDItemAlbum", "\xFF"},
        {"user.kMDItemTextContent", "words"},
    };
    for (const auto &row : kRows) {
        CAPTURE(row.name);
        CAPTURE(row.text);
        CHECK_FALSE(With(folder, row.name, row.text, std::string_view(row.name).substr(5)));
    }
}

TEST_CASE("a custom attribute is a string, and of its type once the schema knows it") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(Text(With(folder, "user.kMDItemShelf", "7", "kMDItemShelf")) == "7");
    const AddedSchemaAttribute shelf({.name = "kMDItemShelf", .type = ElementType::Number});
    CHECK(Whole(With(folder, "user.kMDItemShelf", "7", "kMDItemShelf")) == 7);
    CHECK_FALSE(With(folder, "user.shelf", "7", "shelf"));
}

TEST_CASE("an extended attribute never takes the place of what the file itself tells") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(Whole(With(folder, "user.kMDItemFSSize", "99", "kMDItemFSSize")) == 0);
    CHECK(Text(With(folder, "user.kMDItemFSName", "other", "kMDItemFSName")) == "carrier");
    const std::string path = folder.File("both", "");
    tests::SetExtendedAttribute(path, "user.kMDItemTitle", "own name");
    CHECK(Text(Attribute(path, "kMDItemTitle")) == "own name");
    tests::SetExtendedAttribute(path, "user.dublincore.title", "common name");
    CHECK(Text(Attribute(path, "kMDItemTitle")) == "common name");
}

TEST_CASE("the names of an item's attributes include those that the user set and leave out those that do not read") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("listed", "words");
    tests::SetExtendedAttribute(path, "user.xdg.tags", "Red");
    tests::SetExtendedAttribute(path, "user.kMDItemShelf", "7");
    tests::SetExtendedAttribute(path, "user.kMDItemNumberOfPages", "many");
    tests::SetExtendedAttribute(path, "user.kMDItemKeywords", "hidden by the tags");
    const auto names = Texts(Value::Adopt(MDItemCopyAttributeNames(ItemAt(path).Get())));
    const auto times = [&](std::string_view name) { return std::count(names.begin(), names.end(), name); };
    CHECK(times("kMDItemKeywords") == 1);
    CHECK(times("kMDItemShelf") == 1);
    CHECK(times("kMDItemNumberOfPages") == 0);
    CHECK(times("kMDItemTitle") == 0);
}

} // namespace sim::macos
