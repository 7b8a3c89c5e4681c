// Every deed under every fault: what is taken away, fails or throws on one side, what a program does on the other. A
// case is one of them under one of the others. It is in order when everything that it gives is what it gives without
// the fault, or neutral, when it raises nothing but what the table of exceptions has for it, and when no reference is
// left over or given up too often. A crash ends the run.
#pragma once

#include "tests/faults/deeds.h"

#include <cstdint>
#include <unordered_set>

namespace tests::faults {

struct Report {
    uint64_t cases = 0;
    /// A line for each case that is not in order.
    std::vector<std::string> complaints;

    void operator+=(const Report &other);
};

/// Told now and then how much is done, from 0 to 1. False ends it there.
using Progress = std::function<bool(double done)>;

class FaultMatrix {
public:
    /// All deeds on a host of that age; does each of them once without a fault.
    FaultMatrix(std::filesystem::path plugin, double version);

    /// The names of services that deeds make the library ask for, found or not.
    const std::vector<std::string> &Services() const { return services_; }

    /// Without these services, from the start of the library on.
    Report Without(const std::set<std::string, std::less<>> &services) const;
    Report WithoutEachService() const;
    Report WithoutEachPair(const Progress &progress) const;
    /// Every call of the system that can fail, one after the other.
    Report WithEachCallFailing() const;
    /// Every allocation of the library's own that a deed makes. Those of the start take tables away that a host counts
    /// on, so tests/plugin/memory_test.cpp has them, with a host that only looks.
    Report WithEachAllocationFailing() const;
    /// Each service that a deed calls throws at its first, second and last call; at the first each of the seven kinds.
    Report WithEachServiceThrowing() const;

private:
    struct Outcome {
        Leaves leaves;
        std::vector<sim::host::RaisedException> raised;
        bool threw = false;
        std::vector<std::string> outOfBalance;
    };
    struct Known {
        Deed deed;
        /// What it gives without a fault.
        std::unordered_set<std::string> right = {};
        size_t fallibleCalls = 0;
        int allocations = 0;
        std::map<std::string, int32_t> services = {};
    };
    struct Fault {
        std::string name;
        std::function<void(Stage &stage)> begin = [](Stage &) {};
        std::function<void(Stage &stage)> end = [](Stage &) {};
        bool throws = false;
    };

    Setting At(std::set<std::string, std::less<>> withheld = {}) const {
        return {plugin_, version_, std::move(withheld)};
    }
    static Outcome Do(Stage &stage, const Deed &deed, const Fault &fault);
    void Try(Stage &stage, const Known &known, const Fault &fault, Report &report) const;
    std::string WhatIsWrong(const Known &known, const Outcome &outcome) const;

    std::filesystem::path plugin_;
    double version_;
    std::vector<Known> known_;
    std::vector<std::string> services_;
};

} // namespace tests::faults
