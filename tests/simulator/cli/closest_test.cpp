#include "simulator/cli/closest.h"

#include <doctest/doctest.h>

#include <vector>

namespace sim::cli {
namespace {

const std::vector<std::string> kNames = {"kMDItemFSName", "kMDItemFSSize", "kMDItemPixelWidth", "--limit", "--live"};

TEST_CASE("A few letters swapped, left out, added or changed, or another case, are seen through") {
    CHECK(Closest("kMDItemFSNmae", kNames) == "kMDItemFSName");
    CHECK(Closest("kMDItemFSNam", kNames) == "kMDItemFSName");
    CHECK(Closest("kMDItemFSSizes", kNames) == "kMDItemFSSize");
    CHECK(Closest("kmditempixelwidth", kNames) == "kMDItemPixelWidth");
    CHECK(Closest("--limt", kNames) == "--limit");
}

TEST_CASE("Nothing is suggested where nothing is close") {
    CHECK_FALSE(Closest("com_example_mine", kNames).has_value());
    CHECK_FALSE(Closest("--colour", kNames).has_value());
    CHECK_FALSE(Closest("", kNames).has_value());
    CHECK_FALSE(Closest("kMDItemFSName", {}).has_value());
}

} // namespace
} // namespace sim::cli
