// What is counted, and how: an operation by the plugin and by its floor, each between two marks that callgrind
// understands. What the counts mean is read from callgrind's files by bench/floor.py.
#pragma once

#include "bench/plugin.h"

#include <functional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>

namespace bench {

struct Settings {
    std::filesystem::path plugin;
    /// Only these groups of operations; all of them when there is none.
    std::set<std::string> groups;
    /// Nothing larger than this is counted.
    int largest = 1'000'000;
};

/// One operation of a group.
struct Operation {
    std::string name;
    /// How much work it is, or 0 where work has no size.
    int size = 0;
    /// No allocation by the plugin is part of it.
    bool onStack = false;
};

/// Counts operations of one group: a function of the plugin and its floor, which has the same shape and is called the
/// same way.
class Measure {
public:
    Measure(const Settings &settings, std::string group, Age age)
        : settings_(settings), group_(std::move(group)), age_(age) {}

    bool IsWanted() const { return settings_.groups.empty() || settings_.groups.contains(group_); }
    /// The largest sizes only on a new host: they take minutes, and an old one shows in the smaller ones.
    bool IsWanted(int size) const {
        constexpr int kLargestOnOldHost = 100'000;
        return IsWanted() && size <= settings_.largest && (age_ == Age::kNew || size <= kLargestOnOldHost);
    }

    /// Each is called before it counts, and then so often that what differs from call to call evens out. Objects and
    /// strings that they return are given up, uncounted.
    template <class Result, class... Arguments>
    void operator()(const Operation &operation, Result (*plugin)(Arguments...), Result (*floor)(Arguments...),
                    std::type_identity_t<Arguments>... arguments) const {
        if (!IsWanted(operation.size))
            return;
        // Twice where that is cheap: what the C library does with memory now and then is counted on either side.
        for (int turn = 0; turn < (operation.size <= kSmall ? 2 : 1); turn++)
            for (const auto &[side, function] : {std::pair{"plugin", plugin}, std::pair{"floor", floor}})
                Count(operation, side, [function = function, arguments...] { Discard(function, arguments...); });
    }

    /// The same for what can be done only once in a plugin's life.
    void Once(const Operation &operation, void (*plugin)(Resolver), void (*floor)(Resolver)) const;

private:
    /// Work of this size and more is done once where smaller work is repeated.
    static constexpr int kSmall = 1000;

    template <class Result, class... Arguments>
    static void Discard(Result (*function)(Arguments...), Arguments... arguments) {
        if constexpr (std::is_same_v<Result, Object *>)
            GiveUp(function(arguments...));
        else if constexpr (std::is_same_v<Result, String *>)
            UnlockString(function(arguments...));
        else
            function(arguments...);
    }
    static void GiveUp(Object *object) {
        if (object)
            UnlockObject(object);
    }

    void Count(const Operation &operation, const char *side, const std::function<void()> &call) const;
    void Count(const Operation &operation, const char *side, const std::function<void()> &call, int times) const;

    const Settings &settings_;
    std::string group_;
    Age age_;
};

// The groups.
void MeasureStartUp(const Settings &settings, Age age);
void MeasureCalls(const Settings &settings, const Plugin &plugin);
void MeasureStrings(const Settings &settings, const Plugin &plugin);
void MeasureResults(const Settings &settings, const Plugin &plugin);
void MeasureLists(const Settings &settings, const Plugin &plugin);
void MeasureVariants(const Settings &settings, const Plugin &plugin);

} // namespace bench
