// A text of the host language and places in it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace sim::language {

struct Source {
    /// As messages give it: a path, or what a snippet is called.
    std::string name;
    std::string text;
};

/// Some characters of one line. Lines and columns count from 1, columns in bytes.
struct Location {
    const Source *source = nullptr;
    uint32_t line = 1;
    uint32_t column = 1;
    uint32_t length = 1;

    /// "live.bas:12:5"; "" for nowhere.
    std::string Describe() const;
};

/// From the first character of one to the last of another place; where they are on different lines, the first.
Location Span(const Location &first, const Location &last);

/// The line of a text, without its end.
std::string_view LineOf(const Source &source, uint32_t line);

} // namespace sim::language
