// A host with the tests' own plugin loaded.
#pragma once

#include "tests/simulator/host/fake_plugin.h"
#include "tests/simulator/host/fixture.h"

#include <utility>

namespace tests {

struct LampHost : HostUnderTest {
    explicit LampHost(HostOptions options = {}) : HostUnderTest(std::move(options)) { Start(FakePluginMain); }
};

} // namespace tests
