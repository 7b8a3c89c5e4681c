// Large scopes, large bursts, and many queries: every change is reported exactly once, or not at all by the rules of
// the framework, which speaks of changed and removed items only when the program has met them.
#include <doctest/doctest.h>

#include "tests/spotlight/support/fold.h"

#include <algorithm>

using namespace tests;

namespace {

constexpr int kManyFiles = 100000;
constexpr int kBurst = 10000;

/// A host that keeps no record of a million calls.
HostOptions Busy() {
    HostOptions options;
    options.recordCalls = false;
    options.reuseAddresses = true;
    return options;
}

/// What the Update events of a query name, each file as often as it was named.
struct Heard {
    std::vector<File> added, changed, removed;
    int updates = 0;

    explicit Heard(const Object &query) {
        query.OnEvent("Update", [this](const EventCall &call) {
            updates++;
            std::vector<File> *const lists[] = {&added, &changed, &removed};
            for (size_t list = 0; list < 3; list++)
                for (const Object &item : call.arguments[list].As<Object>().As<Object>())
                    lists[list]->push_back(FileOf(item));
        });
    }
    void Sort() {
        for (auto *list : {&added, &changed, &removed})
            std::sort(list->begin(), list->end());
    }
};

/// A live query that has gathered so many files, which a program has watched.
struct ManyFiles : QueryProgram {
    explicit ManyFiles(int count) : QueryProgram(Busy()) {
        for (int number = 0; number < count; number++)
            files.push_back(store.Add("/files/" + std::to_string(number)));
        query = NewQuery();
        SetBatches(query, {100, kNoLimit, 5000, kNoLimit, 1000, 100});
        query.OnEvent("Progress", [this](const EventCall &) { counts.push_back(query.Call<int32_t>("ResultCount")); });
        query.OnEvent("Finish", [this](const EventCall &) { finishes++; });
        REQUIRE(query.Call<bool>("Execute", 4));
        store.Run(1000);
    }
    std::vector<File> files;
    Object query;
    std::vector<int32_t> counts;
    int finishes = 0;
};

/// A burst over the first files: a quarter of it adds, a quarter removes and half of it changes, each file once.
struct Burst {
    explicit Burst(ManyFiles &program) {
        for (int number = 0; number < kBurst; number++) {
            const File file = program.files[static_cast<size_t>(number)];
            if (number % 4 == 0) {
                added.push_back(program.store.Add("/files/new " + std::to_string(number)));
            } else if (number % 4 == 1) {
                program.store.Remove(file);
                removed.push_back(file);
            } else {
                program.store.Touch(file);
                changed.push_back(file);
            }
        }
    }
    std::vector<File> added, changed, removed; // in the order of their numbers
};

} // namespace

TEST_CASE("A hundred thousand files gather in batches, and a burst of ten thousand changes adds up, each once") {
    ManyFiles program(kManyFiles);
    // A first batch of 100, then full ones, then the rest.
    std::vector<int32_t> expected = {100};
    while (expected.back() < kManyFiles)
        expected.push_back(std::min(expected.back() + 5000, kManyFiles));
    CHECK(program.counts == expected);
    CHECK(program.finishes == 1);
    {
        const auto results = program.query.Call<Object>("Results"); // the program meets every item
        REQUIRE(results.UpperBound() == kManyFiles - 1);
        for (int32_t index = 0; index < kManyFiles; index += 997)
            CHECK(program.query.Call<int32_t>("IndexOfResult", results.At(index)) == index);
    }
    CHECK(program.Host().Alive("MDItemQTX") == 0);

    Heard heard(program.query);
    const Burst burst(program);
    program.store.Run(1000);
    heard.Sort();
    CHECK(heard.added == burst.added);
    CHECK(heard.changed == burst.changed);
    CHECK(heard.removed == burst.removed);
    CHECK(heard.updates == kBurst / 1000);
    CHECK(program.query.Call<int32_t>("ResultCount") == kManyFiles);
}

TEST_CASE("Of a burst the changed and removed items are exactly those that the program has met") {
    ManyFiles program(2 * kBurst);
    constexpr int kMet = 3000;
    program.query.Call<Object>("Results", kMet);
    Heard heard(program.query);
    Burst burst(program);
    program.store.Run(1000);
    heard.Sort();
    CHECK(heard.added == burst.added);
    const File lastMet = program.files[kMet - 1];
    for (auto *list : {&burst.changed, &burst.removed})
        std::erase_if(*list, [&](File file) { return file > lastMet; });
    CHECK(heard.changed == burst.changed);
    CHECK(heard.removed == burst.removed);
    CHECK(program.query.Call<int32_t>("ResultCount") == 2 * kBurst);
}

TEST_CASE("Ten thousand changes of one file between two updates are one change") {
    QueryProgram program(Busy());
    program.Add({"a"});
    Object query = program.NewQuery();
    program.GoLive(query);
    query.Call<Object>("Results");
    Heard heard(query);
    for (int change = 0; change < kBurst; change++)
        program.Touch("a");
    program.store.Run(1000);
    CHECK(heard.updates == 1);
    CHECK(heard.changed == std::vector<File>{program.FileNamed("a")});
}

TEST_CASE("A burst while updates are disabled comes complete when they are enabled") {
    QueryProgram program(Busy());
    Object query = program.NewQuery();
    program.GoLive(query);
    program.SetBatches(query, {1, 0, 1, 0, 1000, 0});
    Heard heard(query);
    query.Call<void>("DisableUpdates");
    std::vector<File> added;
    for (int number = 0; number < kBurst; number++)
        added.push_back(program.store.Add("/files/" + std::to_string(number)));
    program.store.Run(1000);
    CHECK(heard.updates == 0);
    query.Call<void>("EnableUpdates");
    program.store.Run(1000);
    heard.Sort();
    CHECK(heard.added == added);
    CHECK(query.Call<int32_t>("ResultCount") == kBurst);
}

TEST_CASE("Three hundred queries made, run and dropped leave nothing behind") {
    QueryProgram program(Busy());
    program.Add({"a", "b"});
    int updates = 0;
    for (int round = 0; round < 300; round++) {
        Object query = program.NewQuery("kMDItemFSName == '*'", {"kMDItemFSName"}, {"kMDItemFSName"});
        query.OnEvent("Update", [&](const EventCall &) { updates++; });
        program.GoLive(query);
        program.Touch("a");
        if (round % 2 == 0)
            program.Settle();
        CHECK(query.Call<int32_t>("ResultCount") == 2);
    }
    CHECK(updates == 150);
    CHECK(program.Host().Alive("MDQueryQTX") == 0);
}

TEST_CASE("Two hundred live queries at once each hear of each change") {
    QueryProgram program(Busy());
    std::vector<Object> queries;
    std::vector<std::unique_ptr<Heard>> heard;
    for (int number = 0; number < 200; number++) {
        queries.push_back(program.NewQuery());
        heard.push_back(std::make_unique<Heard>(queries.back()));
        program.GoLive(queries.back());
    }
    const File file = program.Add("a");
    program.Settle();
    for (const auto &each : heard)
        CHECK(each->added == std::vector<File>{file});
}
