// Reading and comparing numbers, independent of any locale.
#include "simulator/macos/CoreServices/metadata/expression/number.h"

#include <charconv>
#include <string>

namespace sim::macos::expression {

namespace {

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

std::size_t CountDigits(std::u16string_view text, std::size_t from) {
    std::size_t end = from;
    while (end < text.size() && IsDigit(text[end]))
        ++end;
    return end - from;
}

std::size_t SignLength(std::u16string_view text, std::size_t at) {
    return at < text.size() && (text[at] == u'-' || text[at] == u'+') ? 1 : 0;
}

} // namespace

Number Number::Whole(std::int64_t value) {
    return {.isWhole = true, .whole = value, .real = static_cast<double>(value)};
}

Number Number::Real(double value) { return {.isWhole = false, .whole = 0, .real = value}; }

std::partial_ordering Compare(const Number &left, const Number &right) {
    if (left.isWhole && right.isWhole)
        return left.whole <=> right.whole;
    return left.real <=> right.real;
}

std::size_t NumberLength(std::u16string_view text) {
    std::size_t end = SignLength(text, 0);
    const std::size_t digits = CountDigits(text, end);
    if (digits == 0)
        return 0;
    end += digits;
    if (end < text.size() && text[end] == u'.') {
        if (const std::size_t fraction = CountDigits(text, end + 1))
            end += 1 + fraction;
    }
    if (end < text.size() && (text[end] == u'e' || text[end] == u'E')) {
        const std::size_t sign = SignLength(text, end + 1);
        if (const std::size_t exponent = CountDigits(text, end + 1 + sign))
            end += 1 + sign + exponent;
    }
    return end;
}

std::optional<Number> ParseNumber(std::u16string_view text) {
    if (text.empty() || NumberLength(text) != text.size())
        return std::nullopt;
    if (text.front() == u'+')
        text.remove_prefix(1);
    const std::string ascii(text.begin(), text.end());
    const char *const end = ascii.data() + ascii.size();

    std::int64_t whole = 0;
    const auto wholeEnd = std::from_chars(ascii.data(), end, whole);
    if (wholeEnd.ec == std::errc() && wholeEnd.ptr == end)
        return Number::Whole(whole);

    double real = 0;
    const auto realEnd = std::from_chars(ascii.data(), end, real);
    if (realEnd.ec != std::errc() || realEnd.ptr != end)
        return std::nullopt;
    return Number::Real(real);
}

} // namespace sim::macos::expression
