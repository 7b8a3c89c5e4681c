// The beginning of a GIF file: its size, and whether its first picture has a transparent colour. Behind the header and
// the palette stand blocks: pictures, and extensions in front of them, each a chain of pieces of at most 255 bytes.
#include "simulator/macos/CoreServices/metadata/items/image_header.h"

#include <algorithm>

namespace sim::macos {

namespace {

constexpr std::size_t kHeaderSize = 13;
/// More than any picture has in front of it; a damaged file must not be walked to its end.
constexpr int kMostPieces = 1000;

enum Mark : std::uint8_t { kExtension = 0x21, kGraphicControl = 0xF9 };

std::uint16_t LittleEndian16(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

std::uint64_t PaletteSize(std::uint8_t flags) {
    constexpr std::uint8_t kHasPalette = 0x80;
    return flags & kHasPalette ? std::uint64_t{3} << ((flags & 7) + 1) : 0;
}

/// Whether the extensions from `offset` on, up to the first picture, name a transparent colour.
bool HasTransparentColor(const FileBytes &file, std::uint64_t offset) {
    constexpr std::size_t kFlags = 3; // behind the two marks and the length of the piece
    for (int pieces = 0; pieces < kMostPieces;) {
        const auto bytes = file.Read(offset, kFlags + 1);
        if (bytes.size() <= kFlags || bytes[0] != kExtension)
            return false;
        if (bytes[1] == kGraphicControl && (bytes[kFlags] & 1))
            return true;
        offset += 2;
        for (std::uint8_t length = 1; length != 0 && pieces < kMostPieces; pieces++) {
            const auto piece = file.Read(offset, 1);
            length = piece.empty() ? 0 : piece[0];
            offset += 1 + std::uint64_t{length};
        }
    }
    return false;
}

} // namespace

std::optional<ImageHeader> ReadGIFHeader(const FileBytes &file) {
    constexpr std::string_view kSignatures[] = {"GIF87a", "GIF89a"};
    const auto bytes = file.Read(0, kHeaderSize);
    const std::string_view text(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    if (bytes.size() < kHeaderSize || std::ranges::find(kSignatures, text.substr(0, 6)) == std::end(kSignatures))
        return std::nullopt;
    ImageHeader header;
    header.pixelWidth = LittleEndian16(std::span(bytes).subspan(6));
    header.pixelHeight = LittleEndian16(std::span(bytes).subspan(8));
    if (header.pixelWidth == 0 || header.pixelHeight == 0)
        return std::nullopt;
    header.bitsPerSample = 8; // of the palette's colours
    header.colorSpace = "RGB";
    header.hasAlpha = HasTransparentColor(file, kHeaderSize + PaletteSize(bytes[10]));
    return header;
}

} // namespace sim::macos
