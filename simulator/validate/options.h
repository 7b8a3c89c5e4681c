// The command line.
#pragma once

#include "simulator/validate/check.h"
#include "simulator/validate/checks.h"

#include <span>
#include <stdexcept>

namespace sim::validate {

/// What was asked for makes no sense; says why.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Options {
    Subject subject;
    int level = kHighestLevel;
    bool wantsHelp = false;
};

/// Throws UsageError. The words are those after the program's name.
Options ReadOptions(std::span<const char *const> words);

std::string HelpText();

} // namespace sim::validate
