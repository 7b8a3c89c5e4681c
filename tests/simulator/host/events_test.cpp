#include "tests/simulator/host/lamp_host.h"

namespace tests {

TEST_CASE("An event without a handler has no function") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    CHECK_FALSE(RaiseTurnedOn(lamp.Address()));
    lamp.OnEvent("Dimmed", [](const EventCall &) {});
    CHECK_FALSE(RaiseTurnedOn(lamp.Address()));
}

TEST_CASE("A handler gets the object and the declared arguments") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    Object names = host.NewArray("string", {"desk", "floor"});
    int calls = 0;
    lamp.OnEvent("dimmed", [&](const EventCall &event) {
        ++calls;
        CHECK(event.name == "Dimmed");
        CHECK(event.object == lamp);
        REQUIRE(event.arguments.size() == 3);
        CHECK(event.arguments[0].As<Object>() == names);
        CHECK(event.arguments[1] == Value(-3));
        CHECK(event.arguments[2] == Value(0.25));
    });
    CHECK(RaiseDimmed(lamp.Address(), names.Address(), -3, 0.25));
    host.RethrowFromHandlers();
    CHECK(calls == 1);
    CHECK(names.References() == 1);
}

TEST_CASE("Each object has its own handlers, through the same function") {
    LampHost host;
    Object one = host.Create("Lamp"), other = host.Create("Lamp");
    std::vector<Object> turnedOn;
    auto handler = [&](const EventCall &event) { turnedOn.push_back(event.object); };
    one.OnEvent("TurnedOn", handler);
    other.OnEvent("TurnedOn", handler);
    RaiseTurnedOn(other.Address());
    RaiseTurnedOn(one.Address());
    CHECK(turnedOn == std::vector<Object>{other, one});
    one.RemoveEvent("TurnedOn");
    CHECK_FALSE(RaiseTurnedOn(one.Address()));
}

TEST_CASE("What a handler throws stays out of the plugin and comes out afterwards, once") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    lamp.OnEvent("TurnedOn", [](const EventCall &) { throw std::runtime_error("blown"); });
    RaiseTurnedOn(lamp.Address());
    CHECK_THROWS_WITH(host.RethrowFromHandlers(), "blown");
    host.RethrowFromHandlers();
    RaiseTurnedOn(lamp.Address());
    CHECK_THROWS_WITH(lamp.Call("TurnOff"), "blown");
}

TEST_CASE("A handler may call the object, replace itself, and drop the last reference to the object") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    void *address = lamp.Address();
    lamp.OnEvent("TurnedOn", [&](const EventCall &event) {
        CHECK(event.object.CallWith("Add", {1, 2}) == Value(3));
        event.object.OnEvent("TurnedOn", nullptr);
        lamp.Release();
        CHECK(lampsDestroyed == 0);
    });
    RaiseTurnedOn(address);
    host.RethrowFromHandlers();
    CHECK(lampsDestroyed == 1);
}

TEST_CASE("An identifier that the object's class does not have stops the host") {
    LampHost host;
    Object shade = host.Create("Shade");
    CHECK(Contains(ReasonOfStop([&] { RaiseTurnedOn(shade.Address()); }), "an event that Shade does not have"));
    CHECK(ReasonOfRefusal([&] { shade.OnEvent("TurnedOn", nullptr); }) == "Shade has no event TurnedOn");
}

} // namespace tests
