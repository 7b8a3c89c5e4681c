// Values of the host as JSON: text, numbers, truth values, arrays and dictionaries as what they are, nil as null, dates
// in GMT as "2009-02-15T12:30:00Z", everything else as its text. Bytes that are no UTF-8 become U+FFFD, since JSON has
// none.
#pragma once

#include "simulator/host/program/object.h"

#include <string>
#include <utility>
#include <vector>

namespace sim::cli {

/// An object's members in their order.
using Members = std::vector<std::pair<std::string, host::Value>>;

/// A whole document, ending in a line end: one object, or an array of objects.
std::string JSONText(const Members &object);
std::string JSONText(const std::vector<Members> &objects);

} // namespace sim::cli
