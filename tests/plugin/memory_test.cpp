// Start-up without memory: what each allocation that fails takes away, and what it leaves.
#include <doctest/doctest.h>

#include "tests/plugin/bare_start.h"
#include "tests/support/plugin_watch.h"

#include <iterator>

// Defined by the leak checker when the program is built with it.
extern "C" [[gnu::weak]] void __lsan_disable();
extern "C" [[gnu::weak]] void __lsan_enable();

using tests::BareStart;
using tests::FailedAllocation;

namespace {

/// A host keeps what it is handed for good, and the plugin frees none of it: what is allocated meanwhile is no leak.
BareStart Started(double version) {
    if (__lsan_disable)
        __lsan_disable();
    BareStart start(version);
    if (__lsan_enable)
        __lsan_enable();
    return start;
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
    for (const double version : {2012.5, 3000.0}) {
        CAPTURE(version);
        const FailedAllocation none(0);
        const BareStart start = Started(version);
        CHECK(none.Count() == 0);
        CHECK(start.Arrived().method);
    }
}
