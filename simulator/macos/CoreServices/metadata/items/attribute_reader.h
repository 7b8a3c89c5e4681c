// How one attribute is read off a file: its name and a function. Each group of attributes is a table of such rows in a
// file of its own; file_source.cpp puts the tables together. Two groups may know one attribute: the first that has a
// value for the file tells it.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/file_facts.h"

#include <CoreFoundation/CoreFoundation.h>

#include <span>
#include <string_view>

namespace sim::macos {

struct AttributeReader {
    std::string_view key;
    /// +1, or null when the file has no such attribute.
    CFTypeRef (*copy)(FileFacts &file);
};

/// Name, display name and path. They come from the path alone, so that an item whose file has gone still tells which
/// one it was.
std::span<const AttributeReader> NameAttributes();
/// Size, owner, access, number of entries of a folder.
std::span<const AttributeReader> FileSystemAttributes();
std::span<const AttributeReader> DateAttributes();
/// The flags and the label that a file carries as Finder information.
std::span<const AttributeReader> FinderAttributes();
/// Type, the types it conforms to, and kind.
std::span<const AttributeReader> ContentTypeAttributes();
std::span<const AttributeReader> ImageAttributes();
std::span<const AttributeReader> AudioAttributes();
/// What desktop programs write down with a file in extended attributes.
std::span<const AttributeReader> DesktopAttributes();

} // namespace sim::macos
