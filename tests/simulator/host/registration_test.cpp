#include "tests/simulator/host/fake_plugin.h"
#include "tests/simulator/host/fixture.h"

namespace tests {

namespace {

struct Announce {
    explicit Announce(int32_t version, bool module = true) {
        announcedVersion = version;
        registersModule = module;
    }
    Announce(const Announce &) = delete;
    Announce &operator=(const Announce &) = delete;
    ~Announce() {
        announcedVersion = 13;
        registersModule = true;
    }
};

} // namespace

TEST_CASE("Starting a plugin gives it the resolver and keeps what it announces and registers, in order") {
    HostUnderTest host(2013.04);
    host.Start(FakePluginMain);
    CHECK(host.Arrived().pluginVersions == std::vector<int32_t>{13});
    REQUIRE(host.Arrived().classes.size() == 2);
    CHECK(host.Arrived().classes[0].name == "Lamp");
    CHECK(host.Arrived().classes[1].name == "Shade");
    REQUIRE(host.Arrived().modules.size() == 1);
    CHECK(host.Arrived().modules[0].name == "LampGlobals");
    CHECK(host.CallNames(true) == std::vector<std::string>{"RegisterPluginVersion(13)", "PluginRegisterClass()",
                                                           "PluginRegisterClass()", "PluginRegisterModule()"});
}

TEST_CASE("A class record arrives with its raw words and its fields decoded by the long layout") {
    HostUnderTest host(2013.04);
    host.Start(FakePluginMain);
    const ClassRecord &lamp = host.Arrived().Class("Lamp");
    CHECK(lamp.address == LampRecord());
    CHECK(lamp.words.size() == 29);
    CHECK(lamp.words[4] == 0);
    CHECK(lamp.version == 13);
    CHECK(lamp.dataSize == sizeof(LampData));
    CHECK(lamp.flags == 4);
    REQUIRE(lamp.properties.size() == 5);
    CHECK(lamp.properties[3].name == "Title");
    CHECK(lamp.properties[3].words.size() == 12);
    CHECK(lamp.properties[3].setter == 0);
    CHECK(lamp.properties[3].param == 5);
    CHECK(lamp.methods.front().declaration == "Add(a as integer, b as integer = 10) as integer");
    CHECK(lamp.methods.front().words.size() == 6);
    CHECK(lamp.methods.back().setterFunction != 0);
    CHECK(lamp.events[0].words.size() == 4);
    CHECK(lamp.constants[1].declaration == "kLampName=\"Lamp\"");
    CHECK(lamp.constants[1].words.size() == 5);
    CHECK(lamp.sharedMethods.size() == 1);
}

TEST_CASE("Declaration version 9 is read by the short layout") {
    Announce announce(9, false);
    HostUnderTest host(2011.4);
    host.Start(FakePluginMain);
    const ClassRecord &lamp = host.Arrived().Class("Lamp");
    CHECK(lamp.words.size() == 25);
    CHECK(lamp.properties[4].words.size() == 10);
    CHECK(lamp.methods.back().words.size() == 4);
    CHECK(lamp.methods.back().declaration == "Shade as Shade");
    CHECK(lamp.events[1].words.size() == 2);
    CHECK(lamp.constants[1].words.size() == 3);
    CHECK(host.Create("Lamp").Call<int32_t>("Add", 1, 2) == 3);
    REQUIRE(host.Arrived().globalMethods.size() == 1);
    CHECK(host.Arrived().globalMethods[0].words.size() == 4);
}

TEST_CASE("The host writes forSystemUse into the class record and an identifier into each event record") {
    HostOptions options;
    options.rootDataOffset = 32;
    HostUnderTest host(options);
    host.Start(FakePluginMain);
    CHECK(LampRecord()[4] == 32);
    CHECK(host.Arrived().Class("Lamp").forSystemUse == 32);
    CHECK(EventIdentifier(0) != 0);
    CHECK(EventIdentifier(0) != EventIdentifier(1));
    CHECK(host.Arrived().Class("Lamp").events[0].linkWord == 0);
    CHECK(host.Arrived().Class("Lamp").events[0].identifier == EventIdentifier(0));
}

TEST_CASE("Only hosts from 2013.0 on take modules") {
    HostUnderTest older(2012.5);
    CHECK_FALSE(IsOffered("PluginRegisterModule"));
}

TEST_CASE("A dump shows the same text wherever the records lie, and every stray word") {
    std::string first, second;
    {
        HostUnderTest host(2013.04);
        host.Start(FakePluginMain);
        first = Dump(host.Arrived().Class("Lamp"));
    }
    HostUnderTest host(2013.04);
    host.Start(FakePluginMain);
    second = Dump(host.Arrived().Class("Lamp"));
    CHECK(first == second);
    CHECK(Contains(first,
                   "property \"Handle\" as \"Integer\" group \"\" flags 6 getter standard setter standard param 0"));
    CHECK(Contains(first, "method \"Shade as Shade\" flags 4 function present setter present other 0 0"));
    CHECK(Contains(first, "event \"TurnedOn()\" link word none other 0 0"));
    CHECK(Contains(Dump(host.Arrived().modules[0]), "method \"SwitchAll(how as string) as integer\" flags 20"));
}

TEST_CASE("Records that break the interface stop the host") {
    SUBCASE("a version that no layout is known for") {
        HostUnderTest host(2013.04);
        std::vector<Word> record(29);
        record[0] = 14;
        Ask<void(int32_t)>("RegisterPluginVersion")(14);
        CHECK(Contains(ReasonOfStop([&] { Ask<void(Word *)>("PluginRegisterClass")(record.data()); }), "version 14"));
    }
    SUBCASE("a version other than the announced one") {
        HostUnderTest host(2013.04);
        std::vector<Word> record(29);
        record[0] = 12;
        Ask<void(int32_t)>("RegisterPluginVersion")(13);
        CHECK(Contains(ReasonOfStop([&] { Ask<void(Word *)>("PluginRegisterClass")(record.data()); }), "announced 13"));
    }
    SUBCASE("a count without a table") {
        HostUnderTest host(2013.04);
        std::vector<Word> record(29);
        record[0] = 13;
        record[10] = 3;
        Ask<void(int32_t)>("RegisterPluginVersion")(13);
        CHECK(Contains(ReasonOfStop([&] { Ask<void(Word *)>("PluginRegisterClass")(record.data()); }), "3 methods"));
    }
}

TEST_CASE("A global method is called wherever it was registered") {
    Announce announce(13, false);
    HostUnderTest host(2013.04);
    host.Start(FakePluginMain);
    CHECK(host.Arrived().modules.empty());
    CHECK(host.Global<int32_t>("SwitchAll", "on") == 7);
    CHECK(host.Global<int32_t>("SwitchAll", nullptr) == -1);
}

TEST_CASE("Constants are read from their declarations") {
    HostUnderTest host(2013.04);
    host.Start(FakePluginMain);
    CHECK(host.Constant("Lamp", "kLampOn") == Value(1));
    CHECK(host.Constant("Lamp", "kLampName") == Value("Lamp"));
    CHECK(ReasonOfRefusal([&] { host.Constant("Lamp", "kOther"); }) == "Lamp has no constant kOther");
}

TEST_CASE("A second host cannot be alive beside the first") {
    HostUnderTest host;
    CHECK(Contains(ReasonOfStop([] { Host second; }), "one host is alive already"));
}

} // namespace tests
