#include <doctest/doctest.h>

#include "tests/faults/stage.h"
#include "tests/support/plugin_path.h"

using tests::faults::Stage;

TEST_CASE("A reference of the host that is left over is out of balance, and told of once") {
    Stage stage({tests::PluginPath(), 2013.04});
    sim::host::Object item = stage.NewItem();
    // A host that throws there has kept the string.
    stage.Host().Throw(
        "REALUnlockString", [] { throw 42; }, 1, 1);
    CHECK_THROWS_AS(item.CallWith("GetAttributes", {stage.Strings({"kMDItemNoSuch"})}), int);
    stage.Host().Mend("REALUnlockString");
    item = {};
    const std::vector<std::string> lines = stage.NewlyOutOfBalance();
    REQUIRE(lines.size() == 1);
    CHECK(lines.front().find("that nobody gives up") != std::string::npos);
    CHECK(stage.NewlyOutOfBalance().empty());
}

TEST_CASE("An object of the system that is left over is out of balance, and told of once") {
    Stage stage({tests::PluginPath(), 2013.04});
    sim::host::Object item = stage.NewItem();
    const auto handle = item.Get<int32_t>("Handle");
    item.Set("Handle", int32_t{0}); // nobody will give it up
    item = {};
    CHECK(stage.NewlyOutOfBalance().size() == 1);
    CHECK(stage.NewlyOutOfBalance().empty());
    CFRelease(reinterpret_cast<CFTypeRef>(static_cast<uintptr_t>(static_cast<uint32_t>(handle))));
    CHECK(stage.NewlyOutOfBalance().empty());
}
