#include "simulator/language/source.h"

#include <algorithm>

namespace sim::language {

std::string Location::Describe() const {
    if (!source)
        return "";
    return source->name + ":" + std::to_string(line) + ":" + std::to_string(column);
}

Location Span(const Location &first, const Location &last) {
    Location span = first;
    if (first.line == last.line && last.column + last.length > first.column)
        span.length = last.column + last.length - first.column;
    return span;
}

std::string_view LineOf(const Source &source, uint32_t line) {
    std::string_view rest = source.text;
    for (; line > 1 && !rest.empty(); --line)
        rest.remove_prefix(std::min(rest.find('\n'), rest.size() - 1) + 1);
    rest = rest.substr(0, rest.find('\n'));
    return rest.ends_with('\r') ? rest.substr(0, rest.size() - 1) : rest;
}

} // namespace sim::language
