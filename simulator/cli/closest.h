// "Did you mean ...?"
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace sim::cli {

/// The one of these names that somebody who typed `name` is likely to have meant: the same but for its case, or a few
/// letters left out, added, changed or swapped. Nothing when none is close.
std::optional<std::string> Closest(std::string_view name, std::span<const std::string> names);

} // namespace sim::cli
