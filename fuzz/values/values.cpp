// Both directions over nested values of every kind, on hosts of every age, whole or with one thing failing: nothing
// crashes, nothing is raised that should not be, every reference ends where it began, and what has gone there and back
// twice does not change any more.
//
// Input: the host, what fails, the direction, then the value.
#include "fuzz/values/made_values.h"

#include "convert/values.h"
#include "simulator/macos/CoreFoundation/ledger.h"
#include "simulator/session/core_foundation_text.h"
#include "simulator/session/system_files.h"
#include "spotlight/item.h"
#include "tests/convert/value_text.h"

#include <algorithm>

namespace {

using fuzz::Input;
using fuzz::Require;
using sim::host::Host;
using sim::host::HostOptions;
using sim::host::Value;
using tests::CoreValue;

namespace faults = sim::macos::faults;

/// What an armed service throws.
struct Thrown {};

const char *const kWrappers[] = {"CGColorSpaceQTX", "CGColorQTX",  "CGImageQTX",  "CGLayerQTX", "CGPathQTX",
                                 "CGFontQTX",       "CGEventQTX",  "CFUUIDQTX",   "CFSetQTX",   "CFErrorQTX",
                                 "CTFontQTX",       "CTLineQTX",   "CFObjectQTX", "NSTimerQTX", "KeychainQTX",
                                 "CGContextQTX",    "CFBundleQTX", "CTFrameQTX"};

HostOptions ChosenHost(Input &input) {
    static sim::SystemFiles files;
    constexpr double kVersions[] = {2011.4, 2012.5, 2013.04, 2016.0};
    HostOptions options;
    options.version = input.Choose(kVersions);
    const auto choice = input.Take<uint8_t>();
    options.directArrayStorage = choice & 1;
    options.offersCFStrings = (choice & 2) != 0;
    options.rootDataOffset = choice & 4 ? 24 : 40;
    options.recordCalls = false;
    options.files = &files;
    options.makeCFString = [](const sim::host::Text &text) -> const void * {
        const sim::macos::OwnCalls own;
        return sim::NewCFString(text);
    };
    for (const auto &[name, count] :
         {std::pair("CGRectQTX", 4U), std::pair("CGSizeQTX", 2U), std::pair("CGPointQTX", 2U)})
        options.companions.push_back({.name = name, .wraps = false, .dataSize = count * 8});
    const auto present = input.Take<uint32_t>();
    for (size_t i = 0; i < std::size(kWrappers); i++)
        if (!(present >> i & 1))
            options.companions.push_back({.name = kWrappers[i], .release = [](const void *held) { CFRelease(held); }});
    return options;
}

/// Arms one failure, or none. True for none.
bool ArmFailure(Input &input, Host &host) {
    static const std::vector<std::string> services = Host::ServiceNames();
    const auto kind = input.Take<uint8_t>() % 8;
    const int32_t call = 1 + input.Take<uint8_t>() % 32;
    const std::string &service = services[input.Take<uint8_t>() % services.size()];
    // Taking and giving up references cannot be done without.
    const bool counts = service.ends_with("ockObject") || service.ends_with("ockString");
    if (kind == 5)
        faults::FailCall(static_cast<size_t>(call));
    else if (kind == 6 && !counts)
        host.ReturnNothing(service, call, call + input.Take<uint8_t>() % 4);
    else if (kind == 7 && !counts)
        host.Throw(
            service, [] { throw Thrown(); }, call, call);
    else
        return true;
    return false;
}

Value ToHost(Host &host, CFTypeRef value) { return host.Unbox(host.Adopt(GetCFTypeAsVariant(value))); }

CoreValue FromHost(Host &host, const Value &value) {
    const sim::host::Object boxed = host.Box(value);
    return CoreValue::Adopt(CopyVariantAsCFType(static_cast<REALobjectStruct *>(boxed.Address())));
}

/// A value that has been in the host twice can go there and back as often as it likes. The first time what has no form
/// becomes null, the second time keys that are null are left out.
void CheckStable(Host &host, CFTypeRef value) {
    const CoreValue once = FromHost(host, ToHost(host, value));
    const CoreValue settled = FromHost(host, ToHost(host, once.Get()));
    const CoreValue again = FromHost(host, ToHost(host, settled.Get()));
    const std::string was = tests::TextOf(settled), is = tests::TextOf(again);
    if (was != is)
        std::fprintf(stderr, "was: %s\nis:  %s\n", was.c_str(), is.c_str());
    Require(was == is);
}

void Convert(Host &host, Input &input, bool isWhole, bool fromHost) {
    fuzz::Making making{input};
    if (fromHost) {
        const Value value = fuzz::MakeHostValue(making, host);
        const CoreValue converted = FromHost(host, value);
        if (isWhole && !making.isUnstable)
            CheckStable(host, converted.Get());
    } else {
        const CoreValue value = fuzz::MakeCoreValue(making);
        ToHost(host, value.Get());
        if (isWhole && !making.isUnstable)
            CheckStable(host, value.Get());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    Input input(bytes, size);
    const auto before = sim::macos::ledger::LiveCount();
    const HostOptions options = ChosenHost(input);
    Host host(options);
    gResolver = Host::GetResolver();
    rbversion = options.version.value_or(0);
    MDItemClass.forSystemUse = static_cast<decltype(MDItemClass.forSystemUse)>(options.rootDataOffset);

    faults::Reset();
    const bool fromHost = input.Take<uint8_t>() % 2;
    const bool isWhole = ArmFailure(input, host);
    try {
        Convert(host, input, isWhole, fromHost);
    } catch (const Thrown &) {
    }
    faults::Reset();

    const auto raised = host.TakeRaised();
    Require(!isWhole || raised.empty());
    for (const std::string &line : host.Balance()) {
        std::fprintf(stderr, "out of balance: %s\n", line.c_str());
        Require(false);
    }
    Require(sim::macos::ledger::LiveCount() == before);
    return 0;
}
