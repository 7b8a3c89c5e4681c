#include "tests/faults/stage.h"

#include "simulator/macos/CoreFoundation/array.h"
#include "simulator/macos/CoreFoundation/data.h"
#include "simulator/macos/CoreFoundation/dictionary.h"
#include "simulator/macos/CoreFoundation/instances.h"
#include "simulator/macos/CoreFoundation/number.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "tests/support/plugin_watch.h"

#include <algorithm>

namespace tests::faults {

namespace {

using sim::host::Object;
using sim::host::Value;
using sim::macos::CFRef;

constexpr int kFiles = 3;

sim::SessionOptions Options(const Setting &setting) {
    sim::SessionOptions options;
    options.plugin = setting.plugin;
    options.watch = &PluginWatch::Instance();
    options.start = setting.start;
    options.host.version = setting.version > 0 ? std::optional(setting.version) : std::nullopt;
    options.host.withheld = setting.withheld;
    options.host.reuseAddresses = setting.reusesAddresses;
    options.host.recordCalls = setting.recordsCalls;
    for (const char *name : {"CGImageQTX", "CFObjectQTX"})
        options.host.companions.push_back({.name = name});
    return options;
}

void Fill(sim::macos::ScriptedStore &store, sim::macos::ScriptedStore::File file, int number) {
    // So long that no buffer on the stack holds it.
    store.SetText(file, "kMDItemTitle", "caf\xC3\xA9 " + std::string(1000, 'x') + std::to_string(number));
    store.Set(file, "kMDItemAltitude", sim::macos::MakeNumber(12.5 * number).Get());
    const auto date = CFRef<CFDateRef>::Adopt(CFDateCreate(nullptr, 425833445 + number * 86400));
    store.Set(file, "kMDItemContentCreationDate", date.Get());
    const auto first = sim::macos::MakeString("Anna"), second = sim::macos::MakeString("Bea");
    const CFTypeRef authors[] = {first.Get(), second.Get()};
    store.Set(file, "kMDItemAuthors", sim::macos::MakeArray(authors).Get());
    const UInt8 bytes[] = {0, 1, 0xFE};
    store.Set(file, "kMDItemCoverage", sim::macos::MakeData(bytes).Get());
    const CFTypeRef mixed[] = {first.Get(), kCFBooleanTrue, date.Get()};
    const auto list = sim::macos::MakeArray(mixed);
    const std::pair<CFTypeRef, CFTypeRef> pairs[] = {{second.Get(), list.Get()}};
    store.Set(file, "kMDItemInformation", sim::macos::MakeDictionary(pairs).Get());
    const auto url = CFRef<CFURLRef>::Adopt(
        CFURLCreateWithString(nullptr, sim::macos::MakeString("http://example.org/x").Get(), nullptr));
    store.Set(file, "kMDItemWhereFroms", url.Get());
    store.Set(file, "kMDItemIsLikelyJunk", kCFBooleanTrue);
    store.Set(file, "kMDItemLabelIcon", CFRef<CFTypeRef>::Adopt(sim::macos::MakeInstance("CGImage")).Get());
}

/// Without these, what somebody holds for a while stays held, and what that holds in turn.
bool IsLeft(const std::string &line) {
    return line.find("that nobody gives up") != std::string::npos || line.starts_with("still alive") ||
           line.starts_with("retain count was");
}

bool LetsGo(const Setting &setting) {
    return !setting.withheld.contains("REALUnlockString") && !setting.withheld.contains("REALUnlockObject");
}

} // namespace

Stage::Stage(const Setting &setting) : session(Filled(setting)), letsGo_(LetsGo(setting)) {}

sim::SessionOptions Stage::Filled(const Setting &setting) {
    for (int number = 0; number < kFiles; number++)
        Fill(store, store.Add("/files/" + std::to_string(number)), number);
    return Options(setting);
}

bool Stage::Has(const std::string &className) {
    const sim::host::Arrivals &arrived = Host().Arrived();
    if (className.empty())
        return !arrived.modules.empty() || !arrived.globalMethods.empty();
    return std::ranges::find(arrived.classes, className, &sim::host::ClassRecord::name) != arrived.classes.end();
}

Object Stage::Strings(const std::vector<Value> &texts) { return Host().NewArray("string", texts); }

Object Stage::NewItem() {
    Object item = Host().Create("MDItemQTX");
    item.Set("Handle", static_cast<int32_t>(reinterpret_cast<intptr_t>(store.CopyItem(1))));
    return item;
}

Object Stage::NewQuery(bool gathers) {
    Object query = Host().Create("MDQueryQTX");
    const Object lists = Strings(std::vector<Value>(std::begin(kAttributes), std::end(kAttributes)));
    query.CallWith("Constructor", {"kMDItemFSName == '*'", lists, Strings({"kMDItemFSName"})});
    if (gathers)
        query.CallWith("Execute", {1});
    return query;
}

std::vector<std::string> Stage::NewlyOutOfBalance() {
    std::vector<std::string> found;
    for (const std::string &line : session.NewlyOutOfBalance())
        if (known_.insert(line).second && (letsGo_ || !IsLeft(line)))
            found.push_back(line);
    return found;
}

} // namespace tests::faults
