// Names. They keep the characters that the file system has, composed or decomposed: comparing is where the two forms
// count as one.
#include "simulator/macos/CoreServices/metadata/items/attribute_reader.h"
#include "simulator/macos/CoreServices/metadata/items/finder_info.h"
#include "simulator/macos/CoreServices/metadata/items/values.h"

namespace sim::macos {

namespace {

CFTypeRef FSName(FileFacts &file) { return FileNameValue(file.Name()); }

CFTypeRef DisplayName(FileFacts &file) {
    std::string_view name = file.Name();
    if (!file.Extension().empty() && ReadFinderInfo(file).isExtensionHidden)
        name.remove_suffix(file.Extension().size() + 1);
    return FileNameValue(name);
}

CFTypeRef Path(FileFacts &file) { return FileNameValue(file.Path()); }

constexpr AttributeReader kNameReaders[] = {
    {"kMDItemFSName", FSName},
    {"kMDItemDisplayName", DisplayName},
    {"kMDItemPath", Path},
};

} // namespace

std::span<const AttributeReader> NameAttributes() { return kNameReaders; }

} // namespace sim::macos
