// Hosts of the ages at which the plugin does something else. A check that fails says at which of them it did.
#pragma once

#include <doctest/doctest.h>

#include <initializer_list>
#include <optional>

namespace tests {

struct HostAge {
    /// Nothing for a host that reports none.
    std::optional<double> version;
    const char *name;
};

/// One on each side of every version that the plugin asks about.
inline constexpr HostAge kHostAges[] = {
    {std::nullopt, "which reports none"},
    {2011.4, "which reads old records"},
    {2012.0, "which builds strings of any encoding and makes CFStrings"},
    {2012.5, "as 2012.0"},
    {2013.0, "which converts UTF-32 and takes modules"},
    {2013.03, "as 2013.0, with records of its own"},
    {2013.04, "which reads the newest records"},
    {2015.99, "the last whose layouts are known"},
    {2016.0, "which hides its layouts"},
    {2016.1, "as 2016.0"},
    {2999.9, "the last that takes modules"},
    {3000.0, "which takes no modules"},
};

inline const char *NameOfAge(std::optional<double> version) {
    for (const HostAge &age : kHostAges)
        if (age.version == version)
            return age.name;
    return "one between the others";
}

/// Runs a test with each of these versions.
template <class Versions, class Test> void AtAges(const Versions &versions, Test test) {
    for (const auto &version : versions) {
        INFO("host version ", std::optional<double>(version).value_or(0), ": ", NameOfAge(version));
        test(version);
    }
}
template <class Version, class Test> void AtAges(std::initializer_list<Version> versions, Test test) {
    AtAges<std::initializer_list<Version>>(versions, test);
}

/// Runs a test with every version, nothing for the host that reports none.
template <class Test> void AtEveryAge(Test test) {
    for (const HostAge &age : kHostAges)
        AtAges({age.version}, test);
}

/// Runs a test to which only the great differences matter: old records, today's, and hidden layouts.
template <class Test> void AtUsualAges(Test test) { AtAges({2011.4, 2013.04, 2016.1}, test); }

} // namespace tests
