// What a program reads of any file, against what stat(2) and stat(1) say.
#include "tests/simulator/macos/items/support/reading.h"
#include "tests/simulator/macos/support/balance.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sim::macos {

namespace {

struct stat64 StatusOf(const std::string &path) {
    struct stat64 status;
    REQUIRE(lstat64(path.c_str(), &status) == 0);
    return status;
}

double InSeconds(const timespec &time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// stat(1)'s reading of a time: seconds and, for %.9X and the like, their fraction.
double TimeByStat(const std::string &path, const char *format) {
    return std::strtod(OutputOf(std::string("stat --format=") + format + " " + path).c_str(), nullptr);
}

} // namespace

TEST_CASE("an item tells the names and the path of its file") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto item = ItemAt(folder.File("Letter to Zo\xC3\xAB.txt", "Dear Zoe"));
    CHECK(Text(Attribute(item, "kMDItemFSName")) == "Letter to Zo\xC3\xAB.txt");
    CHECK(Text(Attribute(item, "kMDItemDisplayName")) == "Letter to Zo\xC3\xAB.txt");
    CHECK(Text(Attribute(item, "kMDItemPath")) == folder.PathOf("Letter to Zo\xC3\xAB.txt"));
    CHECK(Text(Attribute("/", "kMDItemFSName")) == "/");
    CHECK(Text(Attribute("/", "kMDItemPath")) == "/");
}

TEST_CASE("a name keeps its characters as the file system has them, decomposed or not") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(Text(Attribute(folder.File("e\xCC\x81", ""), "kMDItemFSName")) == "e\xCC\x81");
    CHECK(Text(Attribute(folder.File("\xC3\xA9", ""), "kMDItemFSName")) == "\xC3\xA9");
}

TEST_CASE("the size is that of the file, whatever its magnitude, and folders have none") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(Whole(Attribute(folder.File("empty", ""), "kMDItemFSSize")) == 0);
    CHECK(Whole(Attribute(folder.File("small", std::string(1234, 'x')), "kMDItemFSSize")) == 1234);
    const std::string large = folder.File("large", "");
    REQUIRE(truncate64(large.c_str(), 5'000'000'000) == 0);
    CHECK(Whole(Attribute(large, "kMDItemFSSize")) == 5'000'000'000);
    CHECK(Whole(Attribute(large, "kMDItemFSSize")) == StatusOf(large).st_size);
    CHECK_FALSE(Attribute(folder.Path(), "kMDItemFSSize"));
}

TEST_CASE("a folder tells how many entries it has, hidden ones among them, and a file does not") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(Whole(Attribute(folder.Path(), "kMDItemFSNodeCount")) == 0);
    folder.File("a", "");
    folder.File(".b", "");
    folder.Folder("c");
    CHECK(Whole(Attribute(folder.Path(), "kMDItemFSNodeCount")) == 3);
    CHECK_FALSE(Attribute(folder.PathOf("a"), "kMDItemFSNodeCount"));
}

TEST_CASE("owner and group are those of the file") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("mine", "");
    if (geteuid() == 0)
        REQUIRE(chown(path.c_str(), 12345, 4'000'000'000) == 0);
    const auto item = ItemAt(path);
    CHECK(Whole(Attribute(item, "kMDItemFSOwnerUserID")) == StatusOf(path).st_uid);
    CHECK(Whole(Attribute(item, "kMDItemFSOwnerGroupID")) == StatusOf(path).st_gid);
}

TEST_CASE("the dates are the times of the file, to the fraction of a second") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("dated", "words");
    const timespec kTimes[] = {{.tv_sec = 1'404'171'059, .tv_nsec = 900'000'000}, // opened 2014-06-30T23:30:59.9Z
                               {.tv_sec = 915'148'800, .tv_nsec = 250'000'000}};  // changed 1999-01-01T00:00:00.25Z
    REQUIRE(utimensat(AT_FDCWD, path.c_str(), kTimes, 0) == 0);
    const auto item = ItemAt(path);
    CHECK(Seconds(Attribute(item, "kMDItemFSContentChangeDate")) == 915'148'800.25);
    CHECK(Seconds(Attribute(item, "kMDItemContentModificationDate")) == 915'148'800.25);
    CHECK(Seconds(Attribute(item, "kMDItemLastUsedDate")) == doctest::Approx(1'404'171'059.9).epsilon(1e-15));
    CHECK(Seconds(Attribute(item, "kMDItemAttributeChangeDate")) ==
          doctest::Approx(InSeconds(StatusOf(path).st_ctim)).epsilon(1e-15));
}

TEST_CASE("dates are read on the platform's scale, whose zero is the beginning of 2001") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("dated", "");
    const timespec kEpoch = {.tv_sec = 978'307'200, .tv_nsec = 0};
    const timespec kTimes[] = {kEpoch, kEpoch};
    REQUIRE(utimensat(AT_FDCWD, path.c_str(), kTimes, 0) == 0);
    const auto date = Attribute(path, "kMDItemFSContentChangeDate");
    REQUIRE(CFGetTypeID(date.Get()) == CFDateGetTypeID());
    CHECK(CFDateGetAbsoluteTime(static_cast<CFDateRef>(date.Get())) == 0);
}

TEST_CASE("the date of creation is the time of birth where the file system keeps it") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("new", "words");
    const timespec kTimes[] = {{.tv_sec = 1, .tv_nsec = 0}, {.tv_sec = 2, .tv_nsec = 0}};
    REQUIRE(utimensat(AT_FDCWD, path.c_str(), kTimes, 0) == 0);
    const double birth = TimeByStat(path, "%.9W"); // 0 where it is not kept; then the oldest time counts
    const double expected = birth == 0 ? 2 : birth;
    const auto item = ItemAt(path);
    for (const char *key : {"kMDItemFSCreationDate", "kMDItemContentCreationDate", "kMDItemDateAdded"}) {
        CAPTURE(key);
        CHECK(Seconds(Attribute(item, key)) == doctest::Approx(expected).epsilon(1e-15));
    }
}

TEST_CASE("reading a file's attributes leaves the time of its last access alone") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("quiet", "words without an extension");
    const timespec kTimes[] = {{.tv_sec = 1000, .tv_nsec = 0}, {.tv_sec = 2000, .tv_nsec = 0}};
    REQUIRE(utimensat(AT_FDCWD, path.c_str(), kTimes, 0) == 0);
    CHECK(Text(Attribute(path, "kMDItemContentType")) == "public.plain-text");
    CHECK(StatusOf(path).st_atim.tv_sec == 1000);
}

TEST_CASE("a file exists and may be read and written as access(2) says") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("guarded", "");
    REQUIRE(chmod(path.c_str(), 0400) == 0);
    const auto item = ItemAt(path);
    CHECK(Truth(Attribute(item, "kMDItemFSExists")));
    CHECK(Truth(Attribute(item, "kMDItemFSIsReadable")) == (access(path.c_str(), R_OK) == 0));
    CHECK(Truth(Attribute(item, "kMDItemFSIsWriteable")) == (access(path.c_str(), W_OK) == 0));
    CHECK(Truth(Attribute(item, "kMDItemFSIsReadable")));
}

TEST_CASE("a dot makes a file invisible") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(Truth(Attribute(folder.File(".profile", ""), "kMDItemFSInvisible")));
    CHECK_FALSE(Truth(Attribute(folder.File("profile", ""), "kMDItemFSInvisible")));
}

TEST_CASE("a file without Finder information has no flags and no label") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto item = ItemAt(folder.File("plain.txt", ""));
    for (const char *key :
         {"kMDItemFSInvisible", "kMDItemFSHasCustomIcon", "kMDItemFSIsStationery", "kMDItemFSIsExtensionHidden"}) {
        CAPTURE(key);
        CHECK_FALSE(Truth(Attribute(item, key)));
    }
    CHECK(Whole(Attribute(item, "kMDItemFSLabel")) == 0);
}

TEST_CASE("Finder information gives a file its flags and its label, each by its own bits") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const struct {
        unsigned char high, low;
        bool invisible, customIcon, stationery, extensionHidden;
        int label;
    } kCases[] = {
        {0x40, 0x00, true, false, false, false, 0},  {0x04, 0x00, false, true, false, false, 0},
        {0x08, 0x00, false, false, true, false, 0},  {0x00, 0x10, false, false, false, true, 0},
        {0x00, 0x0C, false, false, false, false, 6}, {0xFF, 0xFF, true, true, true, true, 7},
        {0xB3, 0xE1, false, false, false, false, 0},
    };
    const std::string path = folder.File("flagged.txt", "");
    for (const auto &flags : kCases) {
        std::string information(32, '\0');
        information[8] = static_cast<char>(flags.high);
        information[9] = static_cast<char>(flags.low);
        tests::SetExtendedAttribute(path, "user.com.apple.FinderInfo", information);
        const auto item = ItemAt(path);
        CAPTURE(flags.high);
        CAPTURE(flags.low);
        CHECK(Truth(Attribute(item, "kMDItemFSInvisible")) == flags.invisible);
        CHECK(Truth(Attribute(item, "kMDItemFSHasCustomIcon")) == flags.customIcon);
        CHECK(Truth(Attribute(item, "kMDItemFSIsStationery")) == flags.stationery);
        CHECK(Truth(Attribute(item, "kMDItemFSIsExtensionHidden")) == flags.extensionHidden);
        CHECK(Whole(Attribute(item, "kMDItemFSLabel")) == flags.label);
        CHECK(Text(Attribute(item, "kMDItemDisplayName")) == (flags.extensionHidden ? "flagged" : "flagged.txt"));
        CHECK(Text(Attribute(item, "kMDItemFSName")) == "flagged.txt");
    }
    tests::SetExtendedAttribute(path, "user.com.apple.FinderInfo",
                                std::string(9, '\xFF')); // too short to hold the flags
    CHECK_FALSE(Truth(Attribute(path, "kMDItemFSInvisible")));
}

TEST_CASE("a symbolic link tells of itself, not of what it leads to") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    folder.File("target.txt", "words");
    REQUIRE(symlink("target.txt", folder.PathOf("link.txt").c_str()) == 0);
    const auto item = ItemAt(folder.PathOf("link.txt"));
    CHECK(Whole(Attribute(item, "kMDItemFSSize")) == 10);
    CHECK(Text(Attribute(item, "kMDItemFSName")) == "link.txt");
    CHECK(Text(Attribute(item, "kMDItemKind")) == "Alias");
}

} // namespace sim::macos
