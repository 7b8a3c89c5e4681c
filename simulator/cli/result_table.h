// What a query found, for people or for programs.
#pragma once

#include "simulator/cli/screen.h"
#include "simulator/host/host.h"

namespace sim::cli {

/// Prints at most `limit` of the query's results, all for 0, and notes how many more there are. Columns show paths from
/// the folder on, the other formats whole ones.
void PrintResults(host::Host &host, const host::Object &query, const Options &options, const Output &output);

} // namespace sim::cli
