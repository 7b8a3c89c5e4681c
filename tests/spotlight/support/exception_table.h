// The table of exceptions that host programmers read, docs/reference/exceptions.tsv.
#pragma once

#include <string>
#include <vector>

namespace tests {

struct ExceptionRow {
    /// "Class.Member", or "*" for what any member can raise.
    std::string member;
    std::string exception;
    /// A slanted word, *index* for one, stands for what differs from one raise to the next.
    std::string message;
    std::string cause;

    bool HasMessage(const std::string &raised) const;
};

std::vector<ExceptionRow> ReadExceptionTable();

} // namespace tests
