// Events of an old host that had no memory for the copy of an event's record.
#include <doctest/doctest.h>

#include "host/services.h"
#include "spotlight/query.h"
#include "spotlight/query_events.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"

#include <vector>

namespace {

std::vector<uint32_t> asked;

HostCode NoHandler(REALobjectStruct *, uint32_t event) {
    asked.push_back(event);
    return nullptr;
}

/// What the host is asked for when the query that `object` stands for has finished.
std::vector<uint32_t> AskedAtFinish(int32_t layout, uint32_t forSystemUse) {
    const whitebox::Restored restored(REALGetEventInstance);
    whitebox::FakeResolver resolver;
    resolver.Offer("GetEventInstance", NoHandler);
    CurrentREALControlVersion = layout;
    MDQueryEvents[1].forSystemUse = forSystemUse;
    asked.clear();
    int object = 0;
    MyCallBack(nullptr, &object, kMDQueryDidFinishNotification, nullptr, nullptr);
    MDQueryEvents[1].forSystemUse = 0;
    CurrentREALControlVersion = 13;
    return asked;
}

} // namespace

TEST_CASE("On an old host an event whose copy could not be allocated is not asked for") {
    CHECK(AskedAtFinish(9, 0).empty());
    const uint32_t copy[] = {0, 77};
    CHECK(AskedAtFinish(9, static_cast<uint32_t>(reinterpret_cast<uintptr_t>(copy))) == std::vector<uint32_t>{77});
}

TEST_CASE("On later hosts an event is asked for by whatever the host wrote, 0 too") {
    for (const int32_t layout : {10, 13}) {
        CHECK(AskedAtFinish(layout, 0) == std::vector<uint32_t>{0});
        CHECK(AskedAtFinish(layout, 78) == std::vector<uint32_t>{78});
    }
}
