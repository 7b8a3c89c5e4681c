// What is wrong with a query, for whoever typed it.
#pragma once

#include "simulator/host/host.h"

#include <string>
#include <vector>

namespace sim::cli {

/// For a text that is no query: a sentence that says what was expected, and below it the text with a mark under the
/// place.
std::string ExplainMistake(const std::string &query);

/// A sentence for each attribute that the query asks for and the schema does not know. That is no mistake: files may
/// carry attributes of anybody's making.
std::vector<std::string> UnknownAttributes(host::Host &host, const std::string &query);

} // namespace sim::cli
