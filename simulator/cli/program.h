// The program as a whole: from the words of the command line to the exit code.
#pragma once

#include <span>

namespace sim::cli {

enum ExitCode { kDone = 0, kFailed = 1, kWrongUsage = 2, kSignalled = 128 };

/// Does what the words after the program's name ask for. Returns one of these codes, or 128 and the number of the
/// signal that ended a search before it was complete.
int Run(std::span<const char *const> words);

} // namespace sim::cli
