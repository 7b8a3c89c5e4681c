// The chunks of a PNG file up to the first one of picture data. A chunk is its length, four letters, as many bytes as
// the length says, and a checksum, which is not checked here.
#include "simulator/macos/CoreServices/metadata/items/image_header.h"

#include <algorithm>
#include <array>

namespace sim::macos {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::array<std::uint8_t, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr double kMetresPerInch = 0.0254;
/// The chunks that are of interest are smaller; of a longer one the beginning is enough.
constexpr std::size_t kChunkBytesRead = 128;
/// More than any picture has before its data; a damaged file must not be walked to its end.
constexpr int kMostChunks = 1000;

enum ColorType : std::uint8_t { kGray = 0, kTrueColor = 2, kPalette = 3, kGrayAlpha = 4, kTrueColorAlpha = 6 };

bool ReadImageHeader(Bytes data, ImageHeader &header) {
    if (data.size() < 13)
        return false;
    header.pixelWidth = BigEndian32(data);
    header.pixelHeight = BigEndian32(data.subspan(4));
    const std::uint8_t colorType = data[9];
    // The depth of a palette picture counts the bits of an index; its colours have eight.
    header.bitsPerSample = colorType == kPalette ? 8 : data[8];
    header.colorSpace = colorType == kGray || colorType == kGrayAlpha ? "Gray" : "RGB";
    header.hasAlpha = colorType == kGrayAlpha || colorType == kTrueColorAlpha;
    return header.pixelWidth > 0 && header.pixelHeight > 0;
}

void ReadPhysicalSize(Bytes data, ImageHeader &header) {
    constexpr std::uint8_t kUnitIsMetre = 1;
    if (data.size() < 9 || data[8] != kUnitIsMetre)
        return;
    header.widthDPI = BigEndian32(data) * kMetresPerInch;
    header.heightDPI = BigEndian32(data.subspan(4)) * kMetresPerInch;
}

void ReadProfileName(Bytes data, ImageHeader &header) {
    const auto end = std::find(data.begin(), data.end(), 0);
    if (end != data.begin() && end != data.end())
        header.profileName = std::string(data.begin(), end);
}

} // namespace

std::optional<ImageHeader> ReadPNGHeader(const FileBytes &file) {
    const auto signature = file.Read(0, kSignature.size());
    if (!std::equal(signature.begin(), signature.end(), kSignature.begin(), kSignature.end()))
        return std::nullopt;
    ImageHeader header;
    bool haveHeader = false;
    std::uint64_t offset = kSignature.size();
    for (int chunk = 0; chunk < kMostChunks; chunk++) {
        const auto bytes = file.Read(offset, 8 + kChunkBytesRead);
        if (bytes.size() < 8)
            break;
        const std::uint32_t length = BigEndian32(bytes);
        const std::string_view name(reinterpret_cast<const char *>(bytes.data()) + 4, 4);
        const Bytes data = Bytes(bytes).subspan(8, std::min<std::size_t>(length, bytes.size() - 8));
        if (name == "IHDR")
            haveHeader = ReadImageHeader(data, header);
        else if (name == "pHYs")
            ReadPhysicalSize(data, header);
        else if (name == "tRNS")
            header.hasAlpha = true;
        else if (name == "iCCP")
            ReadProfileName(data, header);
        else if (name == "sRGB")
            header.profileName = "sRGB IEC61966-2.1";
        if (!haveHeader || name == "IDAT" || name == "IEND")
            break;
        offset += 8 + static_cast<std::uint64_t>(length) + 4;
    }
    return haveHeader ? std::optional(header) : std::nullopt;
}

} // namespace sim::macos
