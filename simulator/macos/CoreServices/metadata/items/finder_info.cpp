#include "simulator/macos/CoreServices/metadata/items/finder_info.h"

namespace sim::macos {

namespace {

// The flags are the big-endian word at byte 8, for files and folders alike.
constexpr std::size_t kFlagsOffset = 8;
constexpr unsigned kColorMask = 0x000E;
constexpr unsigned kColorShift = 1;
constexpr unsigned kHiddenExtension = 0x0010;
constexpr unsigned kHasCustomIcon = 0x0400;
constexpr unsigned kIsStationery = 0x0800;
constexpr unsigned kIsInvisible = 0x4000;

} // namespace

FinderInfo ReadFinderInfo(FileFacts &file) {
    const auto text = file.ExtendedAttribute("user.com.apple.FinderInfo");
    if (!text || text->size() < kFlagsOffset + 2)
        return {};
    const std::vector<std::uint8_t> bytes(text->begin(), text->end());
    const unsigned flags = BigEndian16(std::span(bytes).subspan(kFlagsOffset));
    FinderInfo info;
    info.hasCustomIcon = flags & kHasCustomIcon;
    info.isExtensionHidden = flags & kHiddenExtension;
    info.isStationery = flags & kIsStationery;
    info.isInvisible = flags & kIsInvisible;
    info.label = static_cast<int>((flags & kColorMask) >> kColorShift);
    return info;
}

} // namespace sim::macos
