// The table of what a query found, each field read through the item's methods and properties as a program would.
#pragma once

#include "simulator/cli/screen.h"
#include "simulator/host/host.h"

namespace sim::cli {

/// Prints at most `limit` of the query's results, all for 0, and how many more there are.
void PrintResults(host::Host &host, const host::Object &query, size_t limit, const Screen &screen);

/// An item's name in its folder.
std::string NameOf(const host::Object &item);

} // namespace sim::cli
