// What the command line of the program runner asks for.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim::language {

class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct CommandLine {
    std::filesystem::path plugin;
    std::filesystem::path program;
    std::vector<std::string> arguments;
    /// The host's age; without a value it is a host that does not tell.
    std::optional<double> hostVersion = 2016.1;
    /// Print every call between the plugin and what is around it, on standard error.
    bool trace = false;
    /// Statements that may run; 0 for any number.
    uint64_t steps = 0;
};

/// Reads the words after the program's name: options, the program, its arguments. Throws UsageError.
CommandLine ReadCommandLine(std::span<const char *const> words);

} // namespace sim::language
