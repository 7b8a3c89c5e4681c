// What a host sees while it starts the plugin: which services are asked for, what is registered, and in what order.
#include <doctest/doctest.h>

#include "tests/support/host_ages.h"
#include "tests/support/kept_for_good.h"
#include "tests/support/test_session.h"

using sim::host::HostOptions;
using tests::AtAges;
using tests::KeptForGood;
using tests::TestSession;

namespace {

struct Age {
    std::optional<double> version;
    int32_t layout;
    bool takesModules;
};

const Age kAges[] = {
    {std::nullopt, 9, false}, {0.0, 9, false},      {2011.4, 9, false}, {2011.99, 9, false}, {2012.0, 10, false},
    {2012.5, 10, false},      {2012.99, 10, false}, {2013.0, 11, true}, {2013.02, 11, true}, {2013.03, 12, true},
    {2013.04, 13, true},      {2016.1, 13, true},   {2999.9, 13, true}, {3000.0, 13, false}, {3001.0, 13, false},
};

HostOptions Aged(const Age &age) {
    HostOptions options;
    options.version = age.version;
    return options;
}

std::vector<std::string> Names(const std::vector<sim::host::ClassRecord> &classes) {
    std::vector<std::string> names;
    for (const auto &record : classes)
        names.push_back(record.name);
    return names;
}

} // namespace

TEST_CASE("The host's version decides the declaration layout, and the host is told it once") {
    for (const Age &age : kAges) {
        CAPTURE(age.version.value_or(-1));
        TestSession session(Aged(age));
        CHECK(session.Host().Arrived().pluginVersions == std::vector<int32_t>{age.layout});
        for (const auto &record : session.Host().Arrived().classes)
            CHECK(record.version == age.layout);
    }
}

TEST_CASE("The item class is registered first, then the query class, then the batching parameters") {
    TestSession session;
    CHECK(Names(session.Host().Arrived().classes) ==
          std::vector<std::string>{"MDItemQTX", "MDQueryQTX", "MDQueryBatchingParamsQTX"});
}

TEST_CASE(
    "The global method comes in a module from 2013.0 to below 3000.0, with flags 20, and directly otherwise, with "
    "flags 4") {
    for (const Age &age : kAges) {
        CAPTURE(age.version.value_or(-1));
        TestSession session(Aged(age));
        const auto &arrived = session.Host().Arrived();
        REQUIRE(arrived.modules.size() == (age.takesModules ? 1 : 0));
        REQUIRE(arrived.globalMethods.size() == (age.takesModules ? 0 : 1));
        if (age.takesModules) {
            const auto &module = arrived.modules.front();
            CHECK(module.version == age.layout);
            CHECK(module.name == "SpotlightGlobalsQTX");
            REQUIRE(module.methods.size() == 1);
            CHECK(module.words.size() == 24);
            for (size_t word = 4; word < module.words.size(); word++)
                CHECK(module.words[word] == 0);
        }
        const auto &method = age.takesModules ? arrived.modules.front().methods.front() : arrived.globalMethods.front();
        CHECK(method.declaration == "ShotlightQTX(searchString as string) as integer");
        CHECK(method.flags == (age.takesModules ? 20 : 4));
        CHECK(method.function != 0);
        CHECK(method.setterFunction == 0);
        // An old host reads the first four words of the same record.
        CHECK(method.words.size() == (age.layout == 9 ? 4 : 6));
        for (size_t word = 4; word < method.words.size(); word++)
            CHECK(method.words[word] == 0);
    }
}

TEST_CASE("Start-up asks the resolver in a fixed order and once for each name") {
    const auto requested = [](const HostOptions &options) {
        TestSession session(options);
        std::vector<std::string> names;
        for (const auto &request : session.Host().Requests())
            names.push_back(request.name);
        return names;
    };
    HostOptions options;
    CHECK(requested(options) == std::vector<std::string>{"REALGetRBVersion", "RegisterPluginVersion", "REALinRuntime",
                                                         "PluginRegisterClass", "PluginRegisterModule"});
    options.version = 2012.5;
    CHECK(requested(options) == std::vector<std::string>{"REALGetRBVersion", "RegisterPluginVersion", "REALinRuntime",
                                                         "PluginRegisterClass", "PluginRegisterMethod"});
}

TEST_CASE("Start-up calls the host in a fixed order") {
    TestSession session;
    CHECK(session.Host().CallNames() ==
          std::vector<std::string>{"REALGetRBVersion", "RegisterPluginVersion", "REALinRuntime", "PluginRegisterClass",
                                   "PluginRegisterClass", "PluginRegisterClass", "PluginRegisterModule"});
}

TEST_CASE("A host without a start-up service is started all the same and misses only what needs it") {
    SUBCASE("no class registration") {
        TestSession session(HostOptions{.withheld = {"PluginRegisterClass"}});
        CHECK(session.Host().Arrived().classes.empty());
        CHECK(session.Host().Arrived().modules.size() == 1);
        // A failed lookup is tried again for each class.
        CHECK(session.Host().RequestCount("PluginRegisterClass") == 3);
    }
    SUBCASE("no class registration, old layout") {
        // The converted tables belong to the plugin's own records then, and stay for good.
        const KeptForGood tables;
        TestSession session(HostOptions{.version = 2011.4, .withheld = {"PluginRegisterClass"}});
        CHECK(session.Host().Arrived().classes.empty());
        CHECK(session.Host().Arrived().globalMethods.size() == 1);
    }
    SUBCASE("no module registration") {
        TestSession session(HostOptions{.withheld = {"PluginRegisterModule"}});
        CHECK(session.Host().Arrived().classes.size() == 3);
        CHECK(session.Host().Arrived().modules.empty());
        CHECK(session.Host().Arrived().globalMethods.empty());
    }
    SUBCASE("no method registration") {
        TestSession session(HostOptions{.version = 2012.5, .withheld = {"PluginRegisterMethod"}});
        CHECK(session.Host().Arrived().classes.size() == 3);
        CHECK(session.Host().Arrived().modules.empty());
        CHECK(session.Host().Arrived().globalMethods.empty());
    }
    SUBCASE("no answer whether an application runs") {
        TestSession session(HostOptions{.withheld = {"REALinRuntime"}});
        CHECK(session.Host().Arrived().classes.size() == 3);
    }
}

TEST_CASE("Starting the plugin a second time in one process does nothing") {
    AtAges({2011.4, 2013.04}, [&](double version) {
        TestSession session(version);
        session.Start();
        CHECK(session.Host().Arrived().classes.size() == 3);
        CHECK(session.Host().Arrived().pluginVersions.size() == 1);
    });
}
