#include "tests/simulator/host/fixture.h"

namespace tests {

StopsThrow::StopsThrow() : previous_(SetStopHandler([](const std::string &reason) { throw Stopped(reason); })) {}

StopsThrow::~StopsThrow() { SetStopHandler(previous_); }

HostUnderTest::~HostUnderTest() {
    for (const std::string &finding : Balance())
        CHECK_MESSAGE(false, finding);
}

} // namespace tests
