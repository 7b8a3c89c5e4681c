#include "tests/spotlight/support/exception_table.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tests {

namespace {

void Need(bool holds) {
    if (!holds)
        throw std::runtime_error("the table of exceptions cannot be read");
}

/// Fits when both begin alike up to the slanted word, and what follows it fits somewhere behind at least one character.
bool Fits(std::string_view message, std::string_view raised) {
    const size_t open = message.find('*');
    if (open == std::string_view::npos)
        return message == raised;
    const size_t close = message.find('*', open + 1);
    Need(close != std::string_view::npos);
    if (raised.substr(0, open) != message.substr(0, open))
        return false;
    const std::string_view rest = message.substr(close + 1);
    for (size_t at = open + 1; at <= raised.size(); at++)
        if (Fits(rest, raised.substr(at)))
            return true;
    return false;
}

} // namespace

bool ExceptionRow::HasMessage(const std::string &raised) const { return Fits(message, raised); }

std::vector<ExceptionRow> ReadExceptionTable() {
    std::ifstream file(EXCEPTION_TABLE);
    std::string line;
    Need(std::getline(file, line) && line == "member\texception\tmessage\tcause");
    std::vector<ExceptionRow> rows;
    while (std::getline(file, line)) {
        std::istringstream cells(line);
        ExceptionRow row;
        for (std::string *cell : {&row.member, &row.exception, &row.message, &row.cause})
            Need(static_cast<bool>(std::getline(cells, *cell, '\t')));
        rows.push_back(row);
    }
    Need(!rows.empty());
    return rows;
}

} // namespace tests
