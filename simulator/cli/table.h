// Rows under a heading: in columns, no wider than the terminal is, or separated by tabs.
#pragma once

#include "simulator/cli/screen.h"
#include "simulator/cli/text_width.h"

#include <algorithm>
#include <string>
#include <vector>

namespace sim::cli {

struct Column {
    std::string heading;
    bool alignsRight = false;
    /// The least, unless all its cells are shorter, and the most that the column takes of a terminal's width.
    size_t narrowest = 4;
    size_t widest = 40;
    Cut cut = Cut::kEnd;
    Style style = Style::kPlain;
    /// On a terminal too narrow for all, columns of the least weight are left out first.
    int weight = 0;
};

class Table {
public:
    /// The last column takes what the others leave.
    explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

    /// One text for each column. They need not be printable yet.
    void Add(std::vector<std::string> cells);
    size_t RowCount() const { return rows_.size(); }

    /// In columns.
    void Print(const Screen &screen) const;
    /// With tabs between the cells, whole.
    void PrintTSV(const Screen &screen) const;

private:
    Table FittingIn(size_t width) const;
    Table WithoutColumn(size_t column) const;
    void PrintWhole(const Screen &screen) const;
    size_t NeededBy(size_t column) const;
    size_t LeastFor(size_t column) const { return std::min(NeededBy(column), columns_[column].narrowest); }
    std::vector<size_t> WidthsFor(size_t width) const;
    std::string Row(const std::vector<std::string> &cells, const std::vector<size_t> &widths, const Screen &screen,
                    bool isHeading) const;

    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

} // namespace sim::cli
