// What a plugin calls while it starts, and the services that hand out further functions: registration, methods loaded
// by declaration, and event handlers.
#include "simulator/host/ground/stop.h"
#include "simulator/host/runtime/runtime.h"
#include "simulator/host/services/table.h"
#include "simulator/host/services/truth.h"

namespace sim::host {

namespace {

double GetRBVersion() { return Runtime::Current().options.version.value_or(0); }

void RegisterPluginVersion(int32_t version) { Runtime::Current().arrivals.pluginVersions.push_back(version); }

Truth InRuntime() { return TruthOf(Runtime::Current().options.runsBuiltApplication); }

int32_t AnnouncedVersion() {
    const std::vector<int32_t> &versions = Runtime::Current().arrivals.pluginVersions;
    if (versions.empty())
        Stop("something was registered before \"RegisterPluginVersion\"");
    return versions.back();
}

void RequireAnnounced(int32_t version, const std::string &name) {
    if (version != AnnouncedVersion())
        Stop(name + " was registered with version " + std::to_string(version) + ", but the plugin announced " +
             std::to_string(AnnouncedVersion()));
}

/// What a plugin registers, tables and texts included, belongs to the process from then on: no plugin frees it, and it
/// outlives the Host that got it.
void KeepForGood(const RawRecord &record) {
    static auto &kept = *new std::vector<RawRecord>;
    kept.push_back(record);
}

void RegisterClass(Word *address) {
    Runtime &runtime = Runtime::Current();
    ClassRecord record = ReadClass(address);
    RequireAnnounced(record.version, record.name);
    KeepForGood(record);
    runtime.classes.Register(record);
    runtime.arrivals.classes.push_back(std::move(record));
}

void RegisterModule(Word *address) {
    Runtime &runtime = Runtime::Current();
    ModuleRecord record = ReadModule(address);
    RequireAnnounced(record.version, record.name);
    KeepForGood(record);
    for (const MethodRecord &method : record.methods)
        runtime.globalMethods.push_back(ParseMethod(method));
    runtime.arrivals.modules.push_back(std::move(record));
}

void RegisterMethod(Word *address) {
    Runtime &runtime = Runtime::Current();
    MethodRecord record = ReadMethod(address, AnnouncedVersion());
    runtime.globalMethods.push_back(ParseMethod(record));
    runtime.arrivals.globalMethods.push_back(std::move(record));
}

Function LoadGlobalMethod(const void *module, const char *declaration) {
    if (module)
        Stop("a method of a module was to be loaded, which is not modelled");
    return Runtime::Current().services.LoadGlobalMethod(declaration);
}

Function LoadObjectMethod(const void *object, const char *declaration) {
    Runtime &runtime = Runtime::Current();
    Entity &entity = runtime.heap.At(object, "the object of \"REALLoadObjectMethod\"");
    auto *instance = dynamic_cast<Instance *>(&entity);
    return instance ? runtime.services.LoadObjectMethod(*instance, declaration) : nullptr;
}

Function GetEventInstance(const void *object, uint32_t identifier) {
    Runtime &runtime = Runtime::Current();
    auto &instance = runtime.heap.Require<Instance>(object, "the object of \"GetEventInstance\"");
    return runtime.events.HandlerFor(instance, identifier);
}

} // namespace

std::span<const ServiceRow> RegistrationServices() {
    static const ServiceRow rows[] = {
        Service<"REALGetRBVersion", GetRBVersion>(),
        Service<"RegisterPluginVersion", RegisterPluginVersion>(),
        Service<"REALinRuntime", InRuntime>(),
        Service<"PluginRegisterClass", RegisterClass>(),
        Service<"PluginRegisterModule", RegisterModule>(2013.0),
        Service<"PluginRegisterMethod", RegisterMethod>(),
        Service<"REALLoadGlobalMethod", LoadGlobalMethod>(),
        Service<"REALLoadObjectMethod", LoadObjectMethod>(),
        Service<"GetEventInstance", GetEventInstance>(),
    };
    return rows;
}

} // namespace sim::host
