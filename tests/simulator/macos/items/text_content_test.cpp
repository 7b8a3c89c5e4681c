// The text of a file, which queries search and programs cannot read back.
#include "simulator/macos/CoreServices/metadata/items/file_source.h"
#include "tests/simulator/macos/items/support/reading.h"
#include "tests/simulator/macos/items/support/sample_images.h"
#include "tests/simulator/macos/support/balance.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace sim::macos {

namespace {

using namespace std::string_literals;

Value TextOf(const std::string &path) {
    const auto source = FileSource::At(path);
    REQUIRE(source);
    return Value::Adopt(source->CopyForSearch("kMDItemTextContent"));
}

} // namespace

TEST_CASE("the text of a file can be searched and not be read back") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("letter.txt", "Dear Zo\xC3\xAB,\n");
    CHECK(Text(TextOf(path)) == "Dear Zo\xC3\xAB,\n");
    CHECK_FALSE(Attribute(path, "kMDItemTextContent"));
}

TEST_CASE("text is decoded as UTF-16 with a mark, as UTF-8, and else as Latin-1") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(Text(TextOf(folder.File("a.txt", "\xFF\xFEz\0\xEB\0"s))) == "z\xC3\xAB");
    CHECK(Text(TextOf(folder.File("b.txt", "\xFE\xFF\0z\0\xEB"s))) == "z\xC3\xAB");
    CHECK(Text(TextOf(folder.File("c.txt", "\xFE\xFF\0z\0\xEB\0"s))) == "z\xC3\xAB");
    CHECK(Text(TextOf(folder.File("d.txt", "\xEF\xBB\xBFz\xC3\xAB"))) == "z\xC3\xAB");
    CHECK(Text(TextOf(folder.File("e.txt", "z\xEB"))) == "z\xC3\xAB");
}

TEST_CASE("source code is text; pictures, markup, folders, links and pipes have none to search") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(Text(TextOf(folder.File("tool.py", "print()\n"))) == "print()\n");
    CHECK_FALSE(TextOf(folder.File("a.png", kRGBAPicture)));
    CHECK_FALSE(TextOf(folder.File("a.html", "<p>words</p>")));
    CHECK_FALSE(TextOf(folder.File("empty.txt", "")));
    CHECK_FALSE(TextOf(folder.Folder("folder.txt")));
    REQUIRE(symlink("tool.py", folder.PathOf("link.py").c_str()) == 0);
    CHECK_FALSE(TextOf(folder.PathOf("link.py")));
    REQUIRE(mkfifo(folder.PathOf("pipe.txt").c_str(), 0600) == 0);
    CHECK_FALSE(TextOf(folder.PathOf("pipe.txt")));
}

TEST_CASE("a long text is cut at ten million bytes, between two characters") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    std::string most;
    most.resize(9'999'999, 'x');
    const auto whole = TextOf(folder.File("fits.txt", most + "y"));
    CHECK(CFStringGetLength(static_cast<CFStringRef>(whole.Get())) == 10'000'000);
    const auto cut = TextOf(folder.File("cut.txt", most + "\xC3\xABz"));
    CHECK(CFStringGetLength(static_cast<CFStringRef>(cut.Get())) == 9'999'999);
}

TEST_CASE("a query compares with every attribute that can be read, but not with the path") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto source = FileSource::At(folder.File("a.txt", "words"));
    REQUIRE(source);
    CHECK(Whole(Value::Adopt(source->CopyForSearch("kMDItemFSSize"))) == 5);
    CHECK_FALSE(Value::Adopt(source->CopyForSearch("kMDItemPath")));
    CHECK(Text(Value::Adopt(source->Copy("kMDItemPath"))) == folder.PathOf("a.txt"));
}

} // namespace sim::macos
