// The flags and the label of a file. A name that begins with a dot is invisible as well.
#include "simulator/macos/CoreServices/metadata/items/attribute_reader.h"
#include "simulator/macos/CoreServices/metadata/items/finder_info.h"
#include "simulator/macos/CoreServices/metadata/items/values.h"

namespace sim::macos {

namespace {

template <bool FinderInfo::*flag> CFTypeRef Flag(FileFacts &file) {
    return file.Status() ? BooleanValue(ReadFinderInfo(file).*flag) : nullptr;
}

CFTypeRef Invisible(FileFacts &file) {
    if (!file.Status())
        return nullptr;
    return BooleanValue(file.Name().starts_with('.') || ReadFinderInfo(file).isInvisible);
}

CFTypeRef Label(FileFacts &file) {
    return file.Status() ? NumberValue(std::int64_t{ReadFinderInfo(file).label}) : nullptr;
}

constexpr AttributeReader kFinderReaders[] = {
    {"kMDItemFSHasCustomIcon", Flag<&FinderInfo::hasCustomIcon>},
    {"kMDItemFSIsExtensionHidden", Flag<&FinderInfo::isExtensionHidden>},
    {"kMDItemFSIsStationery", Flag<&FinderInfo::isStationery>},
    {"kMDItemFSInvisible", Invisible},
    {"kMDItemFSLabel", Label},
};

} // namespace

std::span<const AttributeReader> FinderAttributes() { return kFinderReaders; }

} // namespace sim::macos
