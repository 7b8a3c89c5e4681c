// Work in a process of its own, so that a library that crashes, hangs or writes where it should not harms nothing else.
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace sim::validate {

struct Ended {
    /// What the work gave; empty when it did not come to its end.
    std::string output;
    /// Why it did not, in words: "killed by signal 11 (Segmentation fault)"; empty when it did.
    std::string fault;
};

/// Does the work in a child process. It is killed when it takes more processor time than that, or twenty times as long
/// by the clock, which does not depend on how busy the machine is. What it writes to its standard streams is only kept
/// for the reason.
Ended RunInChild(const std::function<std::string()> &work, std::chrono::seconds patience);

} // namespace sim::validate
