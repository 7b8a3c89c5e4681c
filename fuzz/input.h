// The bytes of one input, taken from the front as the values that a target needs. What is missing reads as zero, so
// every input means something.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string_view>
#include <type_traits>

namespace fuzz {

class Input {
public:
    Input(const uint8_t *bytes, size_t size) : rest_(reinterpret_cast<const char *>(bytes), size) {}

    template <class Number> Number Take() {
        static_assert(std::is_integral_v<Number>);
        Number number = 0;
        const size_t count = rest_.size() < sizeof number ? rest_.size() : sizeof number;
        std::memcpy(&number, rest_.data(), count);
        rest_.remove_prefix(count);
        return number;
    }

    /// One of the elements of a table.
    template <class Table> const auto &Choose(const Table &table) {
        return std::begin(table)[Take<uint8_t>() % std::size(table)];
    }

    std::string_view Rest() const { return rest_; }

private:
    std::string_view rest_;
};

/// Ends the run with a finding: what the product did is not what it should have done.
inline void Require(bool holds, const char *file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (holds)
        return;
    std::fprintf(stderr, "%s:%d: not as required\n", file, line);
    std::abort();
}

} // namespace fuzz
