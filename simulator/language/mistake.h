// What is wrong with a program, told before any of it runs: where, and what was expected there.
#pragma once

#include "simulator/language/source.h"

#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace sim::language {

struct Mistake {
    Location where;
    std::string sentence;
};

/// The place and the sentence, then the line with the characters marked:
///   live.bas:2:7: expected a String, found an Integer
///     Print query.ResultCount
///           ^~~~~~~~~~~~~~~~~
std::string Describe(const Mistake &mistake);

/// Thrown by whoever finds mistakes; holds at least one.
class WrongProgram : public std::exception {
public:
    explicit WrongProgram(std::vector<Mistake> mistakes);
    WrongProgram(const Location &where, std::string sentence)
        : WrongProgram(std::vector<Mistake>{{where, std::move(sentence)}}) {}

    const std::vector<Mistake> &Mistakes() const { return mistakes_; }
    const char *what() const noexcept override { return text_.c_str(); }

private:
    std::vector<Mistake> mistakes_;
    std::string text_;
};

} // namespace sim::language
