// What can be said of the text of a query before it is one. The real system gives a query or none; whoever types one
// wants to know more.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sim::macos {

struct QueryMistake {
    /// Bytes from the beginning of the text.
    std::size_t at = 0;
    /// What would have fitted there: "a comma".
    std::string expected;
};

/// Where a text in UTF-8 stops being a query; nothing for one that is.
std::optional<QueryMistake> MistakeIn(std::string_view query);

/// The names of the attributes that a query asks for, in their order. None for what is no query. Implemented in
/// CoreServices, as is MistakeIn.
std::vector<std::string> AttributesIn(std::string_view query);

} // namespace sim::macos
