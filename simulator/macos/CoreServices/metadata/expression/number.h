// A number as the query language writes it. Whole numbers stay whole, so that sizes beyond 2^53 compare exactly.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace sim::macos::expression {

struct Number {
    bool isWhole = false;
    std::int64_t whole = 0;
    double real = 0;

    static Number Whole(std::int64_t value);
    static Number Real(double value);
};

std::partial_ordering Compare(const Number &left, const Number &right);

/// The length of the number that the text starts with: sign, digits, fraction, exponent. 0 when it starts with none.
std::size_t NumberLength(std::u16string_view text);

/// The number that the text is, from its first character to its last; nothing when it is none or too large.
std::optional<Number> ParseNumber(std::u16string_view text);

} // namespace sim::macos::expression
