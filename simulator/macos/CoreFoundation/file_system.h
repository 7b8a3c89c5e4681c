// Files as the File Manager and file URLs know them: looking up paths, and the references (FSRef) that stand for items.
//
// Look-ups take names as equal when their decomposed forms are, as the real file system does: a program may hold the
// decomposed form of a name that this machine stores composed. Case counts. Symbolic links are followed everywhere but
// in the last place.
//
// A reference is the number of an entry in a table of this process: the item's path, device and inode. It survives a
// change of name within its folder; when the item moves to another folder, or a folder above it is renamed, the
// reference is lost, which on the real system it would not be.
#pragma once

#include <CoreServices/Files.h>

#include <optional>
#include <string>
#include <string_view>

namespace sim::macos {

/// What the File Manager answers when there is no memory.
constexpr OSErr kMemoryFullError = -108;

/// The path of an existing item as the file system spells it, without symbolic links, "." and ".." on the way to it and
/// without a slash at the end. The path must be absolute; names in UTF-8.
std::optional<std::string> ExistingPath(std::string_view path);

/// True for an existing directory, made-up ones included. The path is one that ExistingPath gave.
bool IsDirectory(const std::string &existingPath);

/// The folder that an item is in; "/" for "/".
std::string ParentOf(std::string_view path);
/// The part after the last slash; "/" for "/".
std::string LeafOf(std::string_view path);

/// A reference to an existing item. The path is one that ExistingPath gave.
FSRef ReferenceTo(const std::string &existingPath);
/// A reference to what a volume's root folder is in: folder 1, which has no path.
FSRef ReferenceToRootParent();

struct ReferencedItem {
    OSErr error = noErr;       ///< nsvErr for a reference of zeros, paramErr for no reference, fnfErr when it is gone.
    bool isRootParent = false; ///< Then there is no path.
    std::string path;
};
ReferencedItem ItemOf(const FSRef &reference);

/// The number of an existing item, stable while the process runs: 2 for the root of a volume, otherwise above 15.
UInt32 NodeIdOf(const std::string &existingPath);

} // namespace sim::macos
