// Run-time type identifiers for types that have no class of their own here: the identifier of a name, registered once.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"

#include <algorithm>

namespace sim::macos {

template <std::size_t N> struct TypeNameLiteral {
    char text[N];
    constexpr TypeNameLiteral(const char (&literal)[N]) { std::copy_n(literal, N, text); }
};

template <TypeNameLiteral name> CFTypeID TypeNamed() {
    static const CFTypeID type = RegisterType(name.text);
    return type;
}

} // namespace sim::macos
