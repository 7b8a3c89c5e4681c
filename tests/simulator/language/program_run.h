// One program of the host language, run from its text with the library under test.
#pragma once

#include "simulator/language/program.h"

#include <string>

namespace tests {

struct ProgramRun {
    std::string output;
    /// How it ended when it was right; how it is wrong when it was not.
    std::string message;
    bool isWrong = false;
};

struct ProgramOptions {
    std::vector<std::string> arguments = {};
    uint64_t steps = 100000;
    std::string toolkit = {};
};

/// Time passes by itself: the program waits for nothing. The text is called "program" in messages.
ProgramRun RunProgram(const std::string &text, const ProgramOptions &options = {});

/// What a program prints that ends well; anything else fails the test.
std::string OutputOf(const std::string &text);
/// What is wrong with a program; "" when nothing is.
std::string MistakesOf(const std::string &text);

} // namespace tests
