#include "simulator/cli/table.h"

#include <algorithm>
#include <numeric>

namespace sim::cli {
namespace {

constexpr size_t kGap = 2;

std::string WithTabs(const std::vector<std::string> &cells) {
    std::string line;
    for (const std::string &cell : cells)
        line += (&cell == &cells.front() ? "" : "\t") + cell;
    return line + "\n";
}

} // namespace

void Table::Add(std::vector<std::string> cells) {
    for (std::string &cell : cells)
        cell = Printable(cell);
    rows_.push_back(std::move(cells));
}

void Table::PrintTSV(const Screen &screen) const {
    std::vector<std::string> headings;
    for (const Column &column : columns_)
        headings.push_back(column.heading);
    std::string text = WithTabs(headings);
    for (const auto &cells : rows_)
        text += WithTabs(cells);
    screen.Write(text);
}

void Table::Print(const Screen &screen) const { FittingIn(screen.Width()).PrintWhole(screen); }

void Table::PrintWhole(const Screen &screen) const {
    std::vector<std::string> headings;
    for (const Column &column : columns_)
        headings.push_back(column.heading);
    const std::vector<size_t> widths = WidthsFor(screen.Width());
    std::string text = Row(headings, widths, screen, true);
    for (const auto &cells : rows_)
        text += Row(cells, widths, screen, false);
    screen.Write(text);
}

// The table with as many of its columns as the width has room for; one at least.
Table Table::FittingIn(size_t width) const {
    size_t least = kGap * (columns_.size() - 1);
    for (size_t i = 0; i < columns_.size(); ++i)
        least += LeastFor(i);
    if (least <= width || columns_.size() == 1)
        return *this;
    const auto lightest = std::ranges::min_element(columns_, {}, &Column::weight);
    return WithoutColumn(static_cast<size_t>(lightest - columns_.begin())).FittingIn(width);
}

Table Table::WithoutColumn(size_t column) const {
    Table table = *this;
    const auto at = static_cast<std::ptrdiff_t>(column);
    table.columns_.erase(table.columns_.begin() + at);
    for (auto &cells : table.rows_)
        cells.erase(cells.begin() + at);
    return table;
}

size_t Table::NeededBy(size_t column) const {
    size_t needed = WidthOf(columns_[column].heading);
    for (const auto &cells : rows_)
        needed = std::max(needed, WidthOf(cells[column]));
    return needed;
}

// Each column gets what its cells need, within its limits. What the terminal lacks is taken from the widest columns;
// what it has left goes to the last.
std::vector<size_t> Table::WidthsFor(size_t width) const {
    std::vector<size_t> widths;
    for (size_t i = 0; i < columns_.size(); ++i) {
        const bool isLast = i + 1 == columns_.size();
        widths.push_back(isLast ? NeededBy(i) : std::min(NeededBy(i), columns_[i].widest));
    }
    const size_t gaps = kGap * (columns_.size() - 1);
    const size_t available = std::max(width, gaps + columns_.size()) - gaps;
    size_t taken = std::accumulate(widths.begin(), widths.end(), size_t{0});
    while (taken > available) {
        size_t widest = widths.size();
        for (size_t i = 0; i < widths.size(); ++i)
            if (widths[i] > (columns_.size() == 1 ? 0 : LeastFor(i)) &&
                (widest == widths.size() || widths[i] >= widths[widest]))
                widest = i;
        if (widest == widths.size())
            break;
        --widths[widest];
        --taken;
    }
    return widths;
}

std::string Table::Row(const std::vector<std::string> &cells, const std::vector<size_t> &widths, const Screen &screen,
                       bool isHeading) const {
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) {
        const Column &column = columns_[i];
        const bool isLast = i + 1 == cells.size();
        std::string cell = Fitted(cells[i], widths[i], column.cut);
        if (column.alignsRight)
            cell = PaddedLeft(cell, widths[i]);
        else if (!isLast)
            cell = PaddedRight(cell, widths[i]);
        line += screen.Styled(cell, isHeading ? Style::kBold : column.style) + (isLast ? "" : std::string(kGap, ' '));
    }
    return line + "\n";
}

} // namespace sim::cli
