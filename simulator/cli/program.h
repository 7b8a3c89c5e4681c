// The program as a whole: from the words of the command line to the exit code.
#pragma once

#include <span>

namespace sim::cli {

enum ExitCode { kDone = 0, kFailed = 1, kWrongUsage = 2 };

/// Does what the words after the program's name ask for.
ExitCode Run(std::span<const char *const> words);

} // namespace sim::cli
