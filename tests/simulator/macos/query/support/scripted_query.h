// A scripted store with files, and a query for all of them.
#pragma once

#include "simulator/macos/CoreServices/metadata/store/scripted_store.h"
#include "tests/simulator/macos/query/support/test_query.h"
#include "tests/simulator/macos/query/support/values.h"
#include "tests/simulator/macos/support/balance.h"
#include "tests/support/printed_lists.h"

#include <limits>
#include <map>

namespace sim::macos {

inline constexpr std::size_t kNoLimit = std::numeric_limits<std::int32_t>::max();

/// Batches that only the end of gathering closes, and updates at once.
inline constexpr MDQueryBatchingParams kOneBatch{kNoLimit, kNoLimit, kNoLimit, kNoLimit, kNoLimit, 0};

struct ScriptedQuery {
    tests::Balanced balance;
    ScriptedStore store;
    std::map<std::string, ScriptedStore::File> files;
    TestQuery query;
    Listener listener{query.Get()};

    explicit ScriptedQuery(std::initializer_list<const char *> names,
                           std::string_view expression = "kMDItemFSName == '*'", NameList valueNames = {},
                           NameList sortNames = {})
        : query(expression, valueNames, sortNames) {
        for (const char *name : names)
            Add(name);
        query.SetBatches(kOneBatch);
    }

    ScriptedStore::File Add(const std::string &name) { return files[name] = store.Add("/files/" + name); }
    void Touch(const std::string &name) { store.Touch(files.at(name)); }
    void Remove(const std::string &name) { store.Remove(files.at(name)); }

    /// Runs until there is nothing to do but wait.
    void Settle() { store.Run(0.001); }

    /// Executes, gathers, and forgets what was heard.
    void GoLive() {
        REQUIRE(query.Execute(kMDQueryWantsUpdates));
        Settle();
        REQUIRE(query.IsComplete());
        listener.heard.clear();
    }
};

inline Notification Progress(CFIndex count) { return {Notification::Kind::kProgress, false, {}, {}, {}, count}; }
inline Notification Finish(CFIndex count) { return {Notification::Kind::kFinish, false, {}, {}, {}, count}; }
inline Notification Update(FileNames added, FileNames changed, FileNames removed, CFIndex count) {
    const bool hasUserInfo = !added.empty() || !changed.empty() || !removed.empty();
    return {Notification::Kind::kUpdate, hasUserInfo, std::move(added), std::move(changed), std::move(removed), count};
}

using Notifications = std::vector<Notification>;

} // namespace sim::macos

namespace doctest {

/// What a failed check prints of notifications.
template <> struct StringMaker<sim::macos::Notification> {
    static String convert(const sim::macos::Notification &each) {
        constexpr const char *kKinds[] = {"progress", "finish", "update"};
        std::string text = kKinds[static_cast<int>(each.kind)];
        const auto list = [&text](const char *mark, const sim::macos::FileNames &names) {
            for (const std::string &name : names)
                text += std::string(" ") + mark + name;
        };
        list("+", each.added);
        list("~", each.changed);
        list("-", each.removed);
        return (text + " =" + std::to_string(each.count)).c_str();
    }
};

} // namespace doctest
