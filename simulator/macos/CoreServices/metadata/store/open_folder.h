// A folder held open while it is looked at. Paths are out of date as soon as somebody renames something; a folder that
// is held open, and was checked to be the right one, is not.
#pragma once

#include "simulator/macos/CoreServices/metadata/store/file_state.h"

#include <string>
#include <vector>

namespace sim::macos::store {

class OpenFolder {
public:
    /// Opens what is at the path if it is a folder of that identity.
    OpenFolder(const std::string &path, const FileIdentity &identity);
    ~OpenFolder();
    OpenFolder(const OpenFolder &) = delete;
    OpenFolder &operator=(const OpenFolder &) = delete;

    /// False when there is no folder at the path or another one.
    explicit operator bool() const { return descriptor_ >= 0; }

    std::optional<FileState> StateOf(const std::string &name) const { return ReadFileState(name, descriptor_); }

    /// In the order of the file system, without the folder itself and its parent. Nothing when it may not be read.
    std::optional<std::vector<std::string>> Names() const;

    /// A path that leads to the folder for as long as it is open.
    std::string HeldPath() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

} // namespace sim::macos::store
