// Which library the tests of this run are about.
#pragma once

#include <filesystem>

namespace tests {

/// The library under test, as the command line names it. Ends the program where it names none.
const std::filesystem::path &PluginPath();

} // namespace tests
