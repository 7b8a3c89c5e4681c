// The results of a query as a careful program keeps them: put together from nothing but what its handlers receive.
#pragma once

#include "tests/spotlight/support/query_program.h"

#include <map>
#include <set>

namespace tests {

using File = sim::macos::ScriptedStore::File;

/// Which file an item object, not nil, speaks of.
File FileOf(const Object &item);

class Fold {
public:
    /// Takes the query's results as they are, for events that do not say what was added.
    void StartFrom(Object &query);
    /// Applies the three lists of an event. Each added item must be new, each changed or removed one must be known, by
    /// the identity of its item.
    void Apply(const EventCall &call);
    /// That the query's results are these, each once, and found at their places: the first, the
    /// middle and the last are looked for.
    void CheckAgainst(Object &query) const;

    std::set<File> Files() const;

private:
    void RequireKnown(const Object &item) const;

    std::map<File, Object> known_;
};

} // namespace tests
