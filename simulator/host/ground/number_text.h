// Numbers as people read them.
#pragma once

#include <charconv>
#include <string>

namespace sim::host {

/// The shortest text that reads back as the same number.
template <class Number> std::string NumberText(Number number) {
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

} // namespace sim::host
