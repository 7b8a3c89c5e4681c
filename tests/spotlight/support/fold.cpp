#include "tests/spotlight/support/fold.h"

namespace tests {

namespace {

/// As ItemOf, without the way through the host, for what is asked a hundred thousand times.
MDItemRef HandleIn(const Object &item) { return *static_cast<const MDItemRef *>(item.Data()); }

} // namespace

File FileOf(const Object &item) { return sim::macos::ScriptedStore::FileOf(HandleIn(item)); }

void Fold::StartFrom(Object &query) {
    known_.clear();
    for (const Object &item : query.Call<Object>("Results").As<Object>())
        known_.emplace(FileOf(item), item);
}

void Fold::Apply(const EventCall &call) {
    const auto items = [&](size_t list) { return call.arguments[list].As<Object>().As<Object>(); };
    for (const Object &item : items(0)) {
        const bool isNew = known_.emplace(FileOf(item), item).second;
        CHECK(isNew);
    }
    for (const Object &item : items(1))
        RequireKnown(item);
    for (const Object &item : items(2)) {
        RequireKnown(item);
        known_.erase(FileOf(item));
    }
}

void Fold::CheckAgainst(Object &query) const {
    const auto results = query.Call<Object>("Results").As<Object>();
    CHECK(query.Call<int32_t>("ResultCount") == static_cast<int32_t>(results.size()));
    std::set<File> files;
    for (const Object &item : results) {
        if (!item)
            FAIL("a result without an object");
        files.insert(FileOf(item));
    }
    if (!results.empty()) {
        const auto last = static_cast<int32_t>(results.size()) - 1;
        for (const int32_t index : {0, last / 2, last})
            CHECK(query.Call<int32_t>("IndexOfResult", results[static_cast<size_t>(index)]) == index);
    }
    CHECK(files.size() == results.size());
    CHECK(files == Files());
}

std::set<File> Fold::Files() const {
    std::set<File> files;
    for (const auto &entry : known_)
        files.insert(entry.first);
    return files;
}

void Fold::RequireKnown(const Object &item) const {
    const auto known = known_.find(FileOf(item));
    REQUIRE(known != known_.end());
    CHECK(CFEqual(HandleIn(known->second), HandleIn(item)));
}

} // namespace tests
