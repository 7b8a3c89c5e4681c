// Live queries under file changes without end: queries come and go, handlers are attached and dropped at random, and
// what handlers are given they read, keep for a while, or use to drop the query under them.
#pragma once

#include "tests/faults/stage.h"

#include <cstdint>
#include <random>

namespace tests::faults {

/// What is alive while nothing is going on.
struct Standing {
    size_t systemObjects = 0;
    size_t hostObjects = 0;
    /// Bytes that are allocated.
    size_t memory = 0;
};

class LiveQueries {
public:
    /// The same seed does the same things.
    LiveQueries(const Setting &setting, uint32_t seed);
    LiveQueries(const LiveQueries &) = delete;
    LiveQueries &operator=(const LiveQueries &) = delete;

    /// Changes so many files, with everything else that goes on beside it.
    void Live(uint32_t changes);
    /// Lets go of every query and removes every file.
    Standing Rest();

    uint64_t Events() const { return events_; }
    /// What is out of balance; call Rest before.
    std::vector<std::string> OutOfBalance() { return stage_.NewlyOutOfBalance(); }

private:
    using File = sim::macos::ScriptedStore::File;

    uint32_t Random(uint32_t below) { return static_cast<uint32_t>(random_()) % below; }
    std::string NewName();
    void AddFile();
    void ChangeFile();
    void DoBeside();
    void AddQuery();
    void DropQuery();
    void Attach(const sim::host::Object &query);
    void Handle(const sim::host::EventCall &call);

    std::mt19937 random_;
    Stage stage_;
    std::vector<File> files_;
    std::vector<sim::host::Object> queries_;
    std::vector<sim::host::Value> kept_;
    uint64_t added_ = 0;
    uint64_t events_ = 0;
};

} // namespace tests::faults
