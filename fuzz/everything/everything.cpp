// All entry points at once: a hostile program on a host of any age that lacks up to two services. Nothing crashes, and
// when all is dropped every reference has ended.
//
// Input: the age, the services that are missing, then the program.
#include "fuzz/everything/hostile_program.h"

#include "simulator/host/host.h"

namespace {

using fuzz::Input;
using fuzz::Require;

tests::faults::Setting ChosenSetting(Input &input) {
    static const std::vector<std::string> services = sim::host::Host::ServiceNames();
    tests::faults::Setting setting{SPOTLIGHT_PLUGIN, input.Choose(tests::faults::kAges)};
    for (int left = input.Take<uint8_t>() % 3; left > 0; left--) {
        const std::string &service = services[input.Take<uint16_t>() % services.size()];
        // The library is not started without these two.
        if (fuzz::MayFail(service) && service != "RegisterPluginVersion" && service != "REALGetRBVersion")
            setting.withheld.insert(service);
    }
    return setting;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    Input input(bytes, size);
    tests::faults::Stage stage(ChosenSetting(input));
    {
        fuzz::HostileProgram program(input, stage);
        program.Run();
        program.End();
    }
    const auto lines = stage.NewlyOutOfBalance();
    for (const std::string &line : lines)
        std::fprintf(stderr, "out of balance: %s\n", line.c_str());
    Require(lines.empty());
    return 0;
}
