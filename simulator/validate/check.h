// One question about a library, and what came of it.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace sim::validate {

/// What is validated, and by what.
struct Subject {
    std::filesystem::path library;
    /// The native build of the same sources, which behaves as the library should.
    std::filesystem::path native;
    /// The folder of the lists that say where each import is at home.
    std::filesystem::path imports;
    uint32_t seed = 1;
    /// Of processor time, for one check. What takes longer does not come to its end.
    std::chrono::seconds patience{60};
};

/// What a check looked at and what was wrong with it.
struct Findings {
    size_t looked = 0;
    /// Calls of the host and of the system that were held against those of the native build.
    size_t calls = 0;
    std::vector<std::string> faults;
    /// Why the check did not come to its end; empty when it did.
    std::string broken;

    /// Looks at one more thing; it is a fault when it does not hold.
    void Expect(bool holds, const std::string &fault) {
        looked++;
        if (!holds)
            faults.push_back(fault);
    }
    /// Whether everything was looked at, something was, and nothing was wrong.
    bool AreGood() const { return broken.empty() && looked > 0 && faults.empty(); }
};

struct Check {
    std::string title;
    /// From 1, the file itself, upwards.
    int level = 1;
    std::function<Findings(const Subject &)> run;
};

/// A check that is nothing but a look at the library, taken in a process of its own.
Check Look(std::string title, int level, void (*look)(const Subject &, Findings &));

} // namespace sim::validate
