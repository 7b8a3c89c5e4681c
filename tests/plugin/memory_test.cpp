// Start-up without memory: what each allocation that fails takes away, and what it leaves.
#include <doctest/doctest.h>

#include "tests/plugin/bare_start.h"
#include "tests/support/host_ages.h"
#include "tests/support/kept_for_good.h"
#include "tests/support/plugin_watch.h"

#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

using tests::AtAges;
using tests::BareStart;
using tests::FailedAllocation;
using tests::KeptForGood;

namespace {

BareStart Started(double version) {
    const KeptForGood kept;
    return BareStart(version);
}

/// The place of a table's address in the class record, its count behind it.
struct Table {
    const char *className;
    size_t word;
    uint32_t count;
};

/// Those that are converted for hosts before 2012, in the order in which that is done.
constexpr Table kTables[] = {
    {"MDItemQTX", 7, 6},   {"MDItemQTX", 9, 8},   {"MDItemQTX", 23, 174}, {"MDQueryQTX", 7, 2},
    {"MDQueryQTX", 9, 27}, {"MDQueryQTX", 11, 3}, {"MDQueryQTX", 18, 9},  {"MDQueryBatchingParamsQTX", 7, 6},
};

/// A host string as hosts before 2016 lay it out; its storage is a byte, which tells the length, and the text.
struct OldString {
    uint32_t unknown;
    const char *storage;
    uint32_t alsoUnknown;
    uint32_t length;
};

/// Whether the host is asked for a handler when a query has finished.
bool AsksAtFinish(const BareStart &start) {
    const BareStart::Words &query = start.Arrived().classes.at("MDQueryQTX");
    const auto *methods = reinterpret_cast<const uint32_t *>(query[9]);
    constexpr size_t kOldMethodWords = 4, kConstructor = 4;
    const uint32_t *row = methods + kConstructor * kOldMethodWords;
    REQUIRE(reinterpret_cast<const char *>(row[2]) == std::string("Constructor(queryString as string)"));

    std::array<void *, 8> object = {};
    const std::string text = "kMDItemFSName == '*'", storage = '\0' + text;
    const OldString expression{0, storage.data(), 0, static_cast<uint32_t>(text.size())};
    reinterpret_cast<void (*)(void *, const OldString *)>(row[0])(object.data(), &expression);
    REQUIRE(object[0]);
    CFNotificationCenterPostNotification(CFNotificationCenterGetLocalCenter(), kMDQueryDidFinishNotification, object[0],
                                         nullptr, true);
    reinterpret_cast<void (*)(void *)>(query[6])(object.data());
    return std::ranges::count(BareStart::Asked(), "GetEventInstance") > 0;
}

} // namespace

TEST_CASE("On an old host a table for which there is no memory is null and keeps its count; the others are there") {
    const int count = static_cast<int>(std::size(kTables));
    for (int failing = 0; failing <= count; failing++) {
        CAPTURE(failing);
        const FailedAllocation allocation(failing);
        const BareStart start = Started(2011.4);
        CHECK(allocation.Count() == count);
        REQUIRE(start.Arrived().classes.size() == 3);
        for (int i = 0; i < count; i++) {
            const Table &table = kTables[i];
            const auto &words = start.Arrived().classes.at(table.className);
            CHECK((words[table.word] != 0) == (i + 1 != failing));
            CHECK(words[table.word + 1] == table.count);
            CHECK(words[0] == 9);
        }
        CHECK(start.Arrived().method);
    }
}

TEST_CASE("An old host for whose copies of the events there was no memory is not asked for any") {
    constexpr int kEventsOfQueries = 6;
    for (const int failing : {0, kEventsOfQueries}) {
        CAPTURE(failing);
        const FailedAllocation allocation(failing);
        CHECK(AsksAtFinish(Started(2011.4)) == (failing == 0));
    }
}

TEST_CASE("Without memory for the module or its method the global method is not registered, and the classes are") {
    for (const int failing : {1, 2}) {
        CAPTURE(failing);
        const FailedAllocation allocation(failing);
        const BareStart start = Started(2013.04);
        CHECK(allocation.Count() == failing);
        CHECK(start.Arrived().classes.size() == 3);
        CHECK_FALSE(start.Arrived().module);
        CHECK_FALSE(start.Arrived().method);
    }
}

TEST_CASE("A module for whose name there is no memory is registered without one") {
    const FailedAllocation allocation(3);
    const BareStart start = Started(2013.04);
    CHECK(allocation.Count() == 3);
    REQUIRE(start.Arrived().module);
    const auto &words = *start.Arrived().module;
    CHECK(words[0] == 13);
    CHECK(words[1] == 0);
    CHECK(words[2] != 0);
    CHECK(words[3] == 1);
}

TEST_CASE("Where a host takes the global method directly, or takes no module, start-up allocates nothing for it") {
    AtAges({2012.5, 3000.0}, [&](double version) {
        const FailedAllocation none(0);
        const BareStart start = Started(version);
        CHECK(none.Count() == 0);
        CHECK(start.Arrived().method);
    });
}
