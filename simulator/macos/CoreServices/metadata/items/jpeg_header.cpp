// The segments of a JPEG file up to the frame header and on to the first scan. A segment is a marker and, for all that
// matter here, a length that counts itself.
#include "simulator/macos/CoreServices/metadata/items/exif_directory.h"
#include "simulator/macos/CoreServices/metadata/items/image_header.h"

#include <algorithm>

namespace sim::macos {

namespace {

using Bytes = std::span<const std::uint8_t>;

enum Marker : std::uint8_t {
    kStartOfImage = 0xD8,
    kStartOfScan = 0xDA,
    kEndOfImage = 0xD9,
    kApplication0 = 0xE0,
    kApplication1 = 0xE1,
};

/// More than any picture has before its first scan, fill bytes included; a damaged file must not be walked to its end.
constexpr int kMostSegments = 1000;

/// The sixteen markers from C0 on are frame headers, one for each way of coding, but for three tables among them.
bool IsFrameHeader(std::uint8_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool BeginsWith(Bytes data, std::string_view mark) {
    return data.size() >= mark.size() && std::equal(mark.begin(), mark.end(), data.begin());
}

bool ReadFrame(Bytes data, ImageHeader &header) {
    if (data.size() < 6)
        return false;
    header.bitsPerSample = data[0];
    header.pixelHeight = BigEndian16(data.subspan(1));
    header.pixelWidth = BigEndian16(data.subspan(3));
    const int components = data[5];
    header.colorSpace = components == 1 ? "Gray" : components == 4 ? "CMYK" : "RGB";
    return header.pixelWidth > 0 && header.pixelHeight > 0;
}

void ReadDensity(Bytes data, ImageHeader &header) {
    constexpr std::string_view kMark("JFIF\0", 5);
    constexpr std::uint8_t kDotsPerInch = 1, kDotsPerCentimetre = 2;
    if (!BeginsWith(data, kMark) || data.size() < 12)
        return;
    const std::uint8_t unit = data[7];
    if (unit != kDotsPerInch && unit != kDotsPerCentimetre)
        return;
    const double unitsPerInch = unit == kDotsPerCentimetre ? 2.54 : 1;
    header.widthDPI = BigEndian16(data.subspan(8)) * unitsPerInch;
    header.heightDPI = BigEndian16(data.subspan(10)) * unitsPerInch;
}

void ReadExif(Bytes data, ImageHeader &header) {
    constexpr std::string_view kMark("Exif\0\0", 6);
    if (BeginsWith(data, kMark))
        ReadExifDirectory(data.subspan(kMark.size()), header);
}

} // namespace

std::optional<ImageHeader> ReadJPEGHeader(const FileBytes &file) {
    ImageHeader header;
    bool haveFrame = false;
    const auto start = file.Read(0, 2);
    if (start.size() < 2 || start[0] != 0xFF || start[1] != kStartOfImage)
        return std::nullopt;
    std::uint64_t offset = 2;
    for (int segment = 0; segment < kMostSegments; segment++) {
        const auto head = file.Read(offset, 4);
        if (head.size() < 4 || head[0] != 0xFF)
            break;
        const std::uint8_t marker = head[1];
        if (marker == 0xFF) { // a fill byte
            offset += 1;
            continue;
        }
        const std::size_t length = BigEndian16(Bytes(head).subspan(2));
        if (marker == kStartOfScan || marker == kEndOfImage || length < 2)
            break;
        if (IsFrameHeader(marker) || marker == kApplication0 || marker == kApplication1) {
            const auto data = file.Read(offset + 4, length - 2);
            if (marker == kApplication0)
                ReadDensity(data, header);
            else if (marker == kApplication1)
                ReadExif(data, header);
            else
                haveFrame = ReadFrame(data, header);
        }
        offset += 2 + length;
    }
    return haveFrame ? std::optional(header) : std::nullopt;
}

} // namespace sim::macos
