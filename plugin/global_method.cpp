#include "plugin/global_method.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/declarations.h"
#include "host/services.h"
#include "plugin/identity.h"
#include "spotlight/search_window.h"

namespace {

REALmethodDefinition SpotlightSharedMethods[] = {
    // Deliberate: the name is spelt as host programs know it.
    SharedMethod("ShotlightQTX(searchString as string) as integer", rbHISearchWindowShow),
};

template <class Record> Record *NewRecordForGlobalMethod() {
    return static_cast<Record *>(std::calloc(1, sizeof(Record)));
}

/// A module for good: the host keeps the record, its name and its methods. Null when there is no memory.
REALmoduleDefinition *NewModuleOfGlobalMethod() {
    char name[100] = {};
    std::snprintf(name, sizeof name, "%s%s", gpartname, "GlobalsQTX");
    auto *module = NewRecordForGlobalMethod<REALmoduleDefinition>();
    if (!module)
        return nullptr;
    auto *method = NewRecordForGlobalMethod<REALmethodDefinition>();
    if (!method) {
        std::free(module);
        return nullptr;
    }
    *method = SpotlightSharedMethods[0];
    method->mFlags |= kModuleMethodFlag;
    module->name = strdup(name);
    module->methods.rows = method;
    module->methods.count = 1;
    module->version = CurrentREALControlVersion;
    return module;
}

} // namespace

void RegisterGlobalMethod() {
    if (!HostTakesModules()) {
        REALRegisterMethod(SpotlightSharedMethods);
        return;
    }
    REALmoduleDefinition *module = REALRegisterModule ? NewModuleOfGlobalMethod() : nullptr;
    if (module)
        REALRegisterModule(module);
}
