// The plugin under test as its imports show it: every call that it makes of the system and of the C library's
// allocation functions passes by here, on the way from the native build as from the library that ships.
#pragma once

#include "simulator/loader/import_watch.h"

#include <functional>
#include <string_view>

namespace tests {

class PluginWatch final : public sim::loader::ImportWatch {
public:
    /// The one that every session's plugin is loaded with.
    static PluginWatch &Instance();

    /// Told of each call of the system before it is made; empty while nobody listens.
    std::function<void(std::string_view function, const uint32_t *arguments)> listener;
    /// Asked before each allocation whether it may succeed; empty while all may.
    std::function<bool()> allows;

    bool Wants(const std::string &name) const override;
    bool Hear(const char *name, const uint32_t *arguments) noexcept override;
};

/// While it lives, the plugin's allocation of that number fails, once; the first from now on is 1, and 0 none.
class FailedAllocation {
public:
    explicit FailedAllocation(int number);
    FailedAllocation(const FailedAllocation &) = delete;
    FailedAllocation &operator=(const FailedAllocation &) = delete;
    ~FailedAllocation();

    /// How many there were so far.
    int Count() const { return count_; }
    /// Counts from 0 again.
    void Forget() { count_ = 0; }

private:
    int count_ = 0;
};

} // namespace tests
