// What the program can be asked to do with a plugin that has been started.
#pragma once

#include "simulator/cli/options.h"
#include "simulator/cli/screen.h"
#include "simulator/session/session.h"

namespace sim::cli {

/// Runs the query, prints its events and results and, when it is to be live, every change until an interrupt. Returns
/// 0, or the number of the signal that ended it before everything was found.
int RunQuery(Session &session, const Options &options, const Output &output);

/// Prints every attribute of a file, with its type.
void ShowFile(Session &session, const Options &options, const Output &output);

/// Prints every attribute that the schema knows.
void ShowAttributes(Session &session, const Output &output);

} // namespace sim::cli
