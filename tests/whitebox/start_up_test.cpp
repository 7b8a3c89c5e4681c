// Start-up from inside: what it notes about the host and about the plugin, and the memory of the global method.
#include <doctest/doctest.h>

#include "host/services.h"
#include "plugin/global_method.h"
#include "plugin/identity.h"
#include "tests/whitebox/failing_memory.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

extern "C" void REALPluginMain(HostResolver resolver);

using whitebox::FailingMemory;
using whitebox::FakeResolver;
using whitebox::Restored;

namespace {

// As they are before anything has run.
const double versionAtFirst = rbversion;
const int32_t layoutAtFirst = CurrentREALControlVersion;

double reported = 0;
double ReportedVersion() { return reported; }

std::optional<int32_t> toldLayout;
void PluginVersion(int32_t layout) { toldLayout = layout; }

const uint32_t *module = nullptr;
void RegisterModule(const uint32_t *record) { module = record; }

/// A host that the plugin has not been started by yet, and what it then knows is forgotten afterwards.
class NewHost {
public:
    explicit NewHost(std::optional<double> version) {
        Forget();
        if (version) {
            reported = *version;
            resolver.Offer("REALGetRBVersion", ReportedVersion);
        }
        resolver.Offer("RegisterPluginVersion", PluginVersion);
        resolver.Offer("PluginRegisterModule", RegisterModule);
    }
    ~NewHost() { Forget(); }
    NewHost(const NewHost &) = delete;
    NewHost &operator=(const NewHost &) = delete;

    FakeResolver resolver;

private:
    static void Forget() {
        rbversion = versionAtFirst;
        CurrentREALControlVersion = layoutAtFirst;
        gplugin = 0;
        gpartname = gpluginname = nullptr;
        toldLayout.reset();
        module = nullptr;
    }

    Restored<decltype(REALinRuntime)> inRuntime_{REALinRuntime};
    Restored<decltype(REALRegisterClass)> registerClass_{REALRegisterClass};
    Restored<decltype(REALRegisterModule)> registerModule_{REALRegisterModule};
    Restored<decltype(REALRegisterMethod)> registerMethod_{REALRegisterMethod};
};

std::string NameOf(const uint32_t *record) { return reinterpret_cast<const char *>(record[1]); }

void Free(uint32_t word) { std::free(reinterpret_cast<void *>(word)); }

} // namespace

TEST_CASE("Before start-up no version of the host is known, and records have the newest layout") {
    CHECK(versionAtFirst == 0.0);
    CHECK(layoutAtFirst == 13);
}

TEST_CASE("The version that a host reports decides its layout and every question about its age") {
    const struct {
        std::optional<double> version;
        int32_t layout;
        bool isOf2012, convertsUTF32, takesModules, hidesLayouts;
    } rows[] = {
        {std::nullopt, 9, false, false, false, false}, {0.0, 9, false, false, false, false},
        {2011.99, 9, false, false, false, false},      {2012.0, 10, true, false, false, false},
        {2012.99, 10, true, false, false, false},      {2013.0, 11, true, true, true, false},
        {2013.03, 12, true, true, true, false},        {2013.04, 13, true, true, true, false},
        {2015.99, 13, true, true, true, false},        {2016.0, 13, true, true, true, true},
        {2999.99, 13, true, true, true, true},         {3000.0, 13, true, true, false, true},
    };
    for (const auto &row : rows) {
        CAPTURE(row.version.value_or(-1));
        const NewHost host(row.version);
        ReadHostVersion();
        CHECK(rbversion == row.version.value_or(0.0));
        CHECK(CurrentREALControlVersion == row.layout);
        CHECK(HostReadsOldRecords() == (row.layout == 9));
        CHECK(HostBuildsWithEncoding() == row.isOf2012);
        CHECK(HostGivesCFStrings() == row.isOf2012);
        CHECK(HostConvertsUTF32() == row.convertsUTF32);
        CHECK(HostTakesModules() == row.takesModules);
        CHECK(HostHidesLayouts() == row.hidesLayouts);
    }
}

TEST_CASE("Start-up notes the plugin's names and that it has begun, and does nothing when it has") {
    const NewHost host(2016.1);
    REALPluginMain(gResolver);
    CHECK(gpartname == std::string("Spotlight"));
    CHECK(gpluginname == std::string("MacOSX"));
    CHECK(gplugin == 1);
    CHECK(toldLayout == 13);
    REQUIRE(module);
    CHECK(NameOf(module) == "SpotlightGlobalsQTX");
    const uint32_t *const record = std::exchange(module, nullptr);
    toldLayout.reset();
    REALPluginMain(gResolver);
    CHECK_FALSE(toldLayout);
    CHECK_FALSE(module);
    Free(record[1]);
    Free(record[2]);
    std::free(const_cast<uint32_t *>(record));
}

TEST_CASE("The module takes 96 bytes and its method 24, which stay where they are") {
    const NewHost host(2013.04);
    ReadHostVersion();
    gpartname = "Part";
    const FailingMemory memory(0);
    RegisterGlobalMethod();
    CHECK(memory.Asked() == std::vector<size_t>{96, 24});
    REQUIRE(module);
    CHECK(NameOf(module) == "PartGlobalsQTX");
    Free(module[1]);
    Free(module[2]);
    std::free(const_cast<uint32_t *>(module));
}

TEST_CASE("A module for whose method there is no memory is given back") {
    const NewHost host(2013.04);
    ReadHostVersion();
    gpartname = "Part";
    // The leak checker sees what is not.
    const FailingMemory memory(2);
    RegisterGlobalMethod();
    CHECK(memory.Asked() == std::vector<size_t>{96, 24});
    CHECK_FALSE(module);
}
