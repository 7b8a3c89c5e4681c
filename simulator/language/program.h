// A program from its files to its end: read, checked, run, and kept alive by the event loop for as long as something
// can still happen.
#pragma once

#include "simulator/language/checker.h"
#include "simulator/session/session.h"

#include <filesystem>
#include <memory>

namespace sim::language {

/// The texts that make up a program, its own first.
using Sources = std::vector<std::unique_ptr<Source>>;

/// Reads a program. A module or class that lies in a file of its own, NAME.bas in a folder "toolkit" beside the
/// program, belongs to it when the program uses that name. Throws std::runtime_error when a file cannot be read.
Sources ReadSources(const std::filesystem::path &program);

struct RunOptions {
    std::vector<std::string> arguments = {};
    std::function<void(const std::string &line)> print;
    Execution::Limits limits = {};
};

/// How a program ended. What it could not catch is told in a sentence.
struct Ending {
    enum class Kind { kWell, kException, kStopped } kind = Kind::kWell;
    std::string message = {};
};

/// Runs a program in a session whose plugin was started. Throws WrongProgram before anything has run.
Ending RunProgram(Session &session, const Sources &sources, const RunOptions &options);

} // namespace sim::language
