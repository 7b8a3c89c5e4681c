// Rows under a heading: in columns on a terminal, no wider than it is, and separated by tabs elsewhere.
#pragma once

#include "simulator/cli/screen.h"
#include "simulator/cli/text_width.h"

#include <string>
#include <vector>

namespace sim::cli {

struct Column {
    std::string heading;
    bool alignsRight = false;
    /// The least and the most that the column takes of a terminal's width.
    size_t narrowest = 4;
    size_t widest = 40;
    Cut cut = Cut::kEnd;
    Style style = Style::kPlain;
};

class Table {
public:
    /// The last column takes what the others leave.
    explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

    /// One text for each column. They need not be printable yet.
    void Add(std::vector<std::string> cells);
    size_t RowCount() const { return rows_.size(); }

    void Print(const Screen &screen) const;

private:
    std::vector<size_t> WidthsFor(size_t width) const;
    std::string Row(const std::vector<std::string> &cells, const std::vector<size_t> &widths, const Screen &screen,
                    bool isHeading) const;

    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

} // namespace sim::cli
