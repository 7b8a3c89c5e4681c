// The names in a folder of this machine.
#pragma once

#include <string>
#include <vector>

namespace sim::macos::store {

/// In the order of the file system, without the folder itself and its parent. Empty when it cannot be read.
std::vector<std::string> ListFolder(const std::string &path);

} // namespace sim::macos::store
