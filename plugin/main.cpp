// The door: the one function that the host calls without having been told about it.
#include <pthread.h>

#include "host/services.h"
#include "plugin/global_method.h"
#include "plugin/identity.h"
#include "plugin/registration.h"
#include "spotlight/classes.h"
#include "spotlight/query_sorting.h"

/// Starts the plugin: learns about the host, and registers the classes and the global method. Once in a process's life;
/// further calls do nothing.
extern "C" __attribute__((visibility("default"))) void REALPluginMain(HostResolver resolver);

void REALPluginMain(HostResolver resolver) {
    if (gplugin)
        return;
    gResolver = resolver;
    ReadHostVersion();
    // Deliberate: every host has this one, so it is called without a test.
    reinterpret_cast<void (*)(int32_t)>(gResolver("RegisterPluginVersion"))(CurrentREALControlVersion);

    gpartname = "Spotlight";
    gplugin = 1;
    gpluginname = "MacOSX";
    // Nobody uses the answer; the steps of start-up are kept as they have always been.
    static_cast<void>(pthread_self());

    LoadSortFunctions();
    MyREALRegisterClass(MDItemClass);
    MyREALRegisterClass(MDQueryClass);
    MyREALRegisterClass(MDQueryBatchingParamsClass);
    RegisterGlobalMethod();
}
