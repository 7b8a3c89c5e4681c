#include "tests/support/plugin_watch.h"

#include <algorithm>
#include <array>
#include <string>

namespace tests {

namespace {

constexpr std::array<std::string_view, 3> kAllocators = {"calloc", "malloc", "strdup"};
/// How the names of the system's functions begin. Those of its variables begin with a k.
constexpr std::array<std::string_view, 5> kFrameworks = {"CF", "CG", "FS", "HI", "MD"};

bool Allocates(std::string_view name) { return std::ranges::find(kAllocators, name) != kAllocators.end(); }

} // namespace

PluginWatch &PluginWatch::Instance() {
    static PluginWatch watch;
    return watch;
}

bool PluginWatch::Wants(const std::string &name) const {
    return Allocates(name) ||
           std::ranges::any_of(kFrameworks, [&](std::string_view prefix) { return name.starts_with(prefix); });
}

bool PluginWatch::Hear(const char *name, const uint32_t *arguments) noexcept {
    // Of all that it wants to hear of, only the allocators' names begin with a small letter.
    if (name[0] >= 'a')
        return !allows || allows();
    if (listener)
        listener(name, arguments);
    return true;
}

FailedAllocation::FailedAllocation(int number) {
    PluginWatch::Instance().allows = [this, number] { return ++count_ != number; };
}

FailedAllocation::~FailedAllocation() { PluginWatch::Instance().allows = {}; }

} // namespace tests
