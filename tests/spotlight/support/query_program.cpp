#include "tests/spotlight/support/query_program.h"

#include "simulator/macos/CoreFoundation/array.h"
#include "simulator/macos/CoreFoundation/notifications.h"

#include <doctest/doctest.h>

namespace tests {

namespace {

template <class Reference> Reference Behind(const Object &object) {
    return reinterpret_cast<Reference>(static_cast<intptr_t>(object.Get<int32_t>("Handle")));
}

constexpr const char *kBatchingProperties[] = {"firstMaxNum",   "firstMaxMS",   "progressMaxNum",
                                               "progressMaxMS", "updateMaxNum", "updateMaxMS"};

/// A change waits a moment for others to come.
const std::vector<int32_t> kOneBatch = {kNoLimit, 1, kNoLimit, 1, kNoLimit, 1};

} // namespace

MDQueryRef QueryOf(const Object &query) { return Behind<MDQueryRef>(query); }
MDItemRef ItemOf(const Object &item) { return Behind<MDItemRef>(item); }

Names NamesIn(const Object &items) {
    Names names;
    for (const Object &item : items.As<Object>())
        names.push_back(item ? item.Get<std::string>("FSName") : "(nil)");
    return names;
}

Names TextsIn(CFArrayRef array) {
    Names texts;
    for (CFIndex i = 0; i < CFArrayGetCount(array); i++) {
        const CFTypeRef entry = CFArrayGetValueAtIndex(array, i);
        const bool isURL = CFGetTypeID(entry) == CFURLGetTypeID();
        texts.push_back(
            sim::macos::Utf8Of(isURL ? CFURLGetString(static_cast<CFURLRef>(entry)) : static_cast<CFStringRef>(entry)));
    }
    return texts;
}

CFRef<CFArrayRef> ArrayOfItems(const std::vector<MDItemRef> &items) {
    return sim::macos::MakeArray(std::vector<CFTypeRef>(items.begin(), items.end()));
}

QueryProgram::~QueryProgram() { CHECK(sim::macos::notifications::RegistrationCount() == 0); }

QueryProgram::File QueryProgram::Add(const std::string &name) { return files_[name] = store.Add("/files/" + name); }

void QueryProgram::Add(std::initializer_list<const char *> names) {
    for (const char *name : names)
        Add(std::string(name));
}

Object QueryProgram::Strings(const Names &texts) {
    return Host().NewArray("string", std::vector<Value>(texts.begin(), texts.end()));
}

Object QueryProgram::FolderItems(const Names &paths) {
    Object items = Host().NewArray("folderitem");
    for (const std::string &path : paths)
        items.Append(Host().NewFolderItem(path));
    return items;
}

Object QueryProgram::NewQuery(const std::string &text) {
    Object query = Host().Create("MDQueryQTX");
    query.Call<void>("Constructor", text);
    SetBatches(query, kOneBatch);
    return query;
}

Object QueryProgram::NewQuery(const std::string &text, const Names &valueList, const Names &sorting) {
    Object query = Host().Create("MDQueryQTX");
    query.Call<void>("Constructor", text, Strings(valueList), Strings(sorting));
    SetBatches(query, kOneBatch);
    return query;
}

Object QueryProgram::NewItem(File file) {
    Object item = Host().Create("MDItemQTX");
    item.Set("Handle", static_cast<int32_t>(reinterpret_cast<intptr_t>(store.CopyItem(file))));
    return item;
}

void QueryProgram::SetBatches(const Object &query, const std::vector<int32_t> &parameters) {
    const Object object = Host().Create("MDQueryBatchingParamsQTX");
    for (size_t i = 0; i < parameters.size(); i++)
        object.Set(kBatchingProperties[i], parameters[i]);
    query.Set("BatchingParameters", object);
}

void QueryProgram::GoLive(const Object &query) {
    Object running = query;
    REQUIRE(running.Call<bool>("Execute", int32_t{kMDQueryWantsUpdates}));
    Settle();
    REQUIRE(running.Get<bool>("IsGatheringComplete"));
}

void QueryProgram::Gather(const Object &query) {
    Object running = query;
    REQUIRE(running.Call<bool>("Execute", int32_t{kMDQuerySynchronous}));
}

} // namespace tests
