// Whatever happens in whatever order: what a program puts together from the events is, at every step, exactly what the
// query gives as its results. Scripts are random and repeatable: the number of a failing one is printed.
#include <doctest/doctest.h>

#include "simulator/macos/CoreServices/metadata/query/scripted_progress.h"
#include "tests/spotlight/support/fold.h"

#include <memory>
#include <optional>
#include <random>

using namespace tests;

namespace {

constexpr int kSteps = 40;
constexpr double kVersions[] = {2011.4, 2012.0, 2013.0, 2013.04, 2016.1};

HostOptions HostOf(unsigned script) {
    HostOptions options;
    options.version = kVersions[script % std::size(kVersions)];
    options.directArrayStorage = script % 2 == 0;
    options.reuseAddresses = script % 3 == 0;
    options.recordCalls = false;
    return options;
}

/// One random run of a program with two live queries over the same files: one for those with three stars or more in
/// /in, the other for all of them anywhere.
class Script {
public:
    /// Every other script has a system that says what progress adds; with the usual one the program reads the results.
    explicit Script(unsigned number) : random_(number), program_(HostOf(number)) {
        if (number % 2 == 0)
            withAdded_.emplace();
        Watch("kMDItemStarRating >= 3", {"/in"},
              [this](File file) { return ratings_[file] >= 3 && paths_[file].starts_with("/in/"); });
        Watch("kMDItemFSName == '*'", {"/in", "/out"}, [](File) { return true; });
    }

    void Play() {
        for (int count = Pick(12); count > 0; count--)
            AddFile();
        for (auto &watch : watches_)
            REQUIRE(watch->query.Call<bool>("Execute", 4));
        for (int step = 0; step < kSteps; step++) {
            OneStep();
            for (auto &watch : watches_)
                watch->fold.CheckAgainst(watch->query);
        }
        End();
    }

private:
    struct WatchedQuery {
        Object query;
        Fold fold;
        std::function<bool(File)> fits;
        int disabled = 0;
        int finishes = 0;
        bool stopped = false;
    };

    int Pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
    WatchedQuery &PickWatch() { return *watches_[static_cast<size_t>(Pick(2))]; }
    File PickFile() { return std::next(paths_.begin(), Pick(static_cast<int>(paths_.size())))->first; }
    std::string RandomPath() { return (Pick(4) == 0 ? "/out/" : "/in/") + std::to_string(Pick(1000)); }

    void Watch(const char *text, const Names &scope, std::function<bool(File)> fits) {
        watches_.push_back(std::make_unique<WatchedQuery>());
        WatchedQuery &watch = *watches_.back();
        watch.fits = std::move(fits);
        watch.query = program_.NewQuery(text);
        watch.query.Call<void>("SetSearchScope", nullptr, program_.Strings(scope));
        RandomBatches(watch);
        for (const char *event : {"Progress", "Finish", "Update"})
            watch.query.OnEvent(event, [this, &watch](const EventCall &call) { Hear(watch, call); });
    }

    void Hear(WatchedQuery &watch, const EventCall &call) {
        CHECK(watch.disabled == 0);
        CHECK(watch.query.Get<bool>("IsGatheringComplete") == (call.name != "Progress"));
        if (call.name == "Finish")
            watch.finishes++;
        else if (call.name == "Progress" && !withAdded_)
            watch.fold.StartFrom(watch.query);
        else
            watch.fold.Apply(call);
        watch.fold.CheckAgainst(watch.query);
        if (Pick(30) == 0)
            Disable(PickWatch());
        if (Pick(10) == 0)
            AddFile();
        if (Pick(200) == 0)
            Stop(watch);
    }

    void AddFile() {
        std::string path = RandomPath();
        const File file = program_.store.Add(path);
        paths_[file] = std::move(path);
        if (Pick(2) == 0)
            Rate(file);
    }
    void Rate(File file) { program_.store.SetNumber(file, "kMDItemStarRating", ratings_[file] = Pick(6)); }
    void Move(File file) { program_.store.Move(file, paths_[file] = RandomPath()); }
    void Remove(File file) {
        program_.store.Remove(file);
        paths_.erase(file);
        ratings_.erase(file);
    }
    void RandomBatches(WatchedQuery &watch) {
        std::vector<int32_t> parameters;
        for (int i = 0; i < 3; i++) {
            parameters.push_back(Pick(4) == 0 ? 1000 : Pick(5));
            parameters.push_back(Pick(3) == 0 ? 0 : Pick(200));
        }
        program_.SetBatches(watch.query, parameters);
    }
    void Disable(WatchedQuery &watch) {
        watch.query.Call<void>("DisableUpdates");
        watch.disabled++;
    }
    void Enable(WatchedQuery &watch) {
        if (watch.disabled == 0)
            return;
        watch.disabled--;
        watch.query.Call<void>("EnableUpdates");
    }
    void Stop(WatchedQuery &watch) {
        watch.stopped = true;
        watch.query.Call<void>("Stop");
    }

    void OneStep() {
        if (paths_.empty())
            AddFile();
        const int choice = Pick(100);
        if (choice < 15)
            AddFile();
        else if (choice < 30)
            Rate(PickFile());
        else if (choice < 37)
            program_.store.Touch(PickFile());
        else if (choice < 45)
            Move(PickFile());
        else if (choice < 53)
            Remove(PickFile());
        else if (choice < 56)
            Disable(PickWatch());
        else if (choice < 60)
            Enable(PickWatch());
        else if (choice < 62)
            RandomBatches(PickWatch());
        else if (choice < 64)
            program_.store.SetPace(static_cast<size_t>(Pick(4)), Pick(30));
        else
            program_.store.Run(Pick(100));
    }

    void End() {
        for (int round = 0; round < 100; round++) { // a handler may disable updates again, or add a file
            for (auto &watch : watches_)
                while (watch->disabled > 0)
                    Enable(*watch);
            program_.store.Run(1000000);
        }
        for (auto &watch : watches_) {
            watch->fold.CheckAgainst(watch->query);
            if (watch->stopped)
                continue;
            CHECK(watch->finishes == 1);
            std::set<File> fitting;
            for (const auto &entry : paths_)
                if (watch->fits(entry.first))
                    fitting.insert(entry.first);
            CHECK(watch->fold.Files() == fitting);
        }
    }

    std::minstd_rand random_;
    std::optional<sim::macos::ProgressWithAddedItems> withAdded_;
    QueryProgram program_;
    std::vector<std::unique_ptr<WatchedQuery>> watches_;
    std::map<File, std::string> paths_;
    std::map<File, int> ratings_;
};

} // namespace

TEST_CASE("Random scripts: what the handlers receive adds up to the results at every step") {
    for (unsigned number = 1; number <= 200; number++) {
        CAPTURE(number);
        Script(number).Play();
    }
}
