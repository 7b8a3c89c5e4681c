// The floor of start-up: one question to the host for each service, the search for the system's sort functions, and the
// records handed over, which an old host gets as copies of their first words.
#include "bench/floor_methods.h"
#include "bench/floor_values.h"
#include "bench/start_up.h"

#include <CoreServices/CoreServices.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pthread.h>

namespace bench::floors {

StartUpRecords startUpRecords;

namespace {

template <class Function> Function Ask(Resolver resolver, const char *name) {
    return reinterpret_cast<Function>(resolver(name));
}

void LookForSortFunctions() {
    constexpr FSVolumeRefNum kFolderDomain = -32767;
    FSRef folder;
    FSFindFolder(kFolderDomain, kFrameworksFolderType, true, &folder);
    CFURLRef folderURL = CFURLCreateFromFSRef(kCFAllocatorSystemDefault, &folder);
    CFURLRef url = CFURLCreateCopyAppendingPathComponent(kCFAllocatorSystemDefault, folderURL,
                                                         CFSTR("CoreServices.framework"), false);
    CFBundleRef bundle = CFBundleCreate(kCFAllocatorSystemDefault, url);
    CFBundleLoadExecutable(bundle);
    CFRelease(url);
    CFRelease(folderURL);
    CFBundleGetFunctionPointerForName(bundle, CFSTR("MDQueryGetSortOptionFlagsForAttribute"));
    CFBundleGetFunctionPointerForName(bundle, CFSTR("MDQuerySetSortOptionFlagsForAttribute"));
    CFBundleGetFunctionPointerForName(bundle, CFSTR("MDQuerySetSortOrder"));
}

/// Where copies go, so that they are made.
uint32_t *volatile kept;

/// What a table of a record becomes for an old host. The rows are those of the plugin's own record.
void CopyRows(const uint32_t *table, size_t words, size_t oldWords) {
    const auto *rows = reinterpret_cast<const uint32_t *>(table[0]);
    const uint32_t count = table[1];
    if (!rows || count == 0)
        return;
    auto *copy = static_cast<uint32_t *>(std::calloc(1, count * oldWords * 4));
    for (uint32_t i = 0; i < count; i++)
        std::memcpy(copy + i * oldWords, rows + i * words, oldWords * 4);
    kept = copy;
}

void Register(void (*registerClass)(uint32_t *), uint32_t *record) {
    constexpr size_t kVersion = 0, kDataSize = 3, kProperties = 7, kMethods = 9, kEvents = 11, kConstants = 18;
    constexpr size_t kSharedProperties = 21, kSharedMethods = 23;
    record[kDataSize] = (record[kDataSize] + 15) & ~15U;
    if (atHand.age == Age::kOld) {
        CopyRows(record + kProperties, 12, 10);
        CopyRows(record + kMethods, 6, 4);
        CopyRows(record + kEvents, 4, 2);
        CopyRows(record + kConstants, 5, 3);
        CopyRows(record + kSharedMethods, 6, 4);
        CopyRows(record + kSharedProperties, 12, 10);
    }
    record[kVersion] = atHand.age == Age::kOld ? 9 : 13;
    registerClass(record);
}

void RegisterGlobalMethod(Resolver resolver, const uint32_t *method) {
    if (atHand.age == Age::kOld) {
        Ask<void (*)(uint32_t *)>(resolver, "PluginRegisterMethod")(const_cast<uint32_t *>(method));
        return;
    }
    const auto registerModule = Ask<void (*)(uint32_t *)>(resolver, "PluginRegisterModule");
    char name[100] = {};
    std::snprintf(name, sizeof name, "%s%s", "Spotlight", "GlobalsQTX");
    auto *module = static_cast<uint32_t *>(std::calloc(1, 96));
    auto *row = static_cast<uint32_t *>(std::calloc(1, 24));
    std::memcpy(row, method, 24);
    module[1] = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(strdup(name)));
    module[2] = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(row));
    module[3] = 1;
    registerModule(module);
}

} // namespace

void StartUp(Resolver resolver) {
    Ask<double (*)()>(resolver, "REALGetRBVersion")();
    Ask<void (*)(int32_t)>(resolver, "RegisterPluginVersion")(atHand.age == Age::kOld ? 9 : 13);
    static_cast<void>(pthread_self());
    Ask<unsigned char (*)()>(resolver, "REALinRuntime")();
    LookForSortFunctions();
    const auto registerClass = Ask<void (*)(uint32_t *)>(resolver, "PluginRegisterClass");
    for (auto &record : startUpRecords.classes)
        Register(registerClass, record);
    RegisterGlobalMethod(resolver, startUpRecords.globalMethod);
}

} // namespace bench::floors
