#include "simulator/cli/closest.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

namespace sim::cli {
namespace {

char Lower(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; }

// How many letters must be left out, added, changed or swapped with their neighbour to make one text of the other. Case
// does not count.
size_t Distance(std::string_view from, std::string_view to) {
    std::vector<size_t> before, last(to.size() + 1), now(to.size() + 1);
    std::iota(last.begin(), last.end(), size_t{0});
    for (size_t i = 1; i <= from.size(); ++i) {
        now[0] = i;
        for (size_t j = 1; j <= to.size(); ++j) {
            const bool same = Lower(from[i - 1]) == Lower(to[j - 1]);
            now[j] = std::min({last[j] + 1, now[j - 1] + 1, last[j - 1] + !same});
            if (i > 1 && j > 1 && Lower(from[i - 1]) == Lower(to[j - 2]) && Lower(from[i - 2]) == Lower(to[j - 1]))
                now[j] = std::min(now[j], before[j - 2] + 1);
        }
        before = last;
        last = now;
    }
    return last.back();
}

} // namespace

std::optional<std::string> Closest(std::string_view name, std::span<const std::string> names) {
    // One letter in four; more would be guessing.
    size_t best = name.size() / 4 + 1;
    std::optional<std::string> closest;
    for (const std::string &other : names) {
        const size_t distance = Distance(name, other);
        if (distance < best) {
            best = distance;
            closest = other;
        }
    }
    return closest;
}

} // namespace sim::cli
