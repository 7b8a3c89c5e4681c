// What the store remembers of a file on disk in order to notice that it is another one, or the same one changed.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"

#include <cstdint>
#include <optional>
#include <string>

namespace sim::macos::store {

/// Nanoseconds of the clock that file systems stamp files with. That clock stands still for some milliseconds at a
/// time.
using FileTime = std::int64_t;
FileTime FileTimeNow();
inline constexpr FileTime kMillisecond = 1'000'000;

struct FileState {
    FileIdentity identity;
    std::uint64_t size = 0;
    FileTime contentChanged = 0;
    FileTime attributesChanged = 0;
    std::uint32_t owner = 0;
    std::uint32_t group = 0;
    std::uint16_t mode = 0;
    bool isFolder = false;

    friend bool operator==(const FileState &, const FileState &) = default;
};

/// The state of a regular file, a folder or a symbolic link (of the link itself); nothing for what is not there and for
/// devices, pipes and sockets, which the store does not list. Times and size of a folder are left at 0: they change
/// with every file in it, and that is no change of the folder's own. A path that is not absolute starts at the open
/// folder; an empty one is that folder.
std::optional<FileState> ReadFileState(const std::string &path, int folder = -1);

/// Whether a change after the state was read would show in the times. False for a few milliseconds after each change.
bool IsSettled(const FileState &state, FileTime readAt);

/// Whether the path is on a file system that has no files of its own: processes, kernel settings, devices.
bool IsOnPseudoFileSystem(const std::string &path);

} // namespace sim::macos::store
