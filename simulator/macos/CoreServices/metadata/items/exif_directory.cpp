#include "simulator/macos/CoreServices/metadata/items/exif_directory.h"

#include <algorithm>
#include <utility>

namespace sim::macos {

namespace {

using Bytes = std::span<const std::uint8_t>;

enum Tag : std::uint16_t {
    kMake = 0x010F,
    kModel = 0x0110,
    kOrientation = 0x0112,
    kXResolution = 0x011A,
    kYResolution = 0x011B,
    kResolutionUnit = 0x0128,
};

/// Orientations from 5 on exchange width and height.
constexpr std::uint32_t kFirstOnItsSide = 5;

class TIFF {
public:
    explicit TIFF(Bytes bytes) : bytes_(bytes), isLittleEndian_(bytes.size() > 1 && bytes[0] == 'I') {}

    std::uint32_t Number16(std::size_t offset) const {
        const Bytes two = At(offset, 2);
        if (two.empty())
            return 0;
        const auto number = BigEndian16(two);
        return isLittleEndian_ ? __builtin_bswap16(number) : number;
    }

    std::uint32_t Number32(std::size_t offset) const {
        const Bytes four = At(offset, 4);
        if (four.empty())
            return 0;
        const auto number = BigEndian32(four);
        return isLittleEndian_ ? __builtin_bswap32(number) : number;
    }

    std::optional<double> Fraction(std::size_t offset) const {
        const std::uint32_t denominator = Number32(offset + 4);
        if (denominator == 0)
            return std::nullopt;
        return static_cast<double>(Number32(offset)) / denominator;
    }

    std::optional<std::string> Text(std::size_t offset, std::size_t length) const {
        const Bytes text = At(offset, length);
        const auto end = std::find(text.begin(), text.end(), 0);
        if (end == text.begin())
            return std::nullopt;
        return std::string(text.begin(), end);
    }

private:
    Bytes At(std::size_t offset, std::size_t count) const {
        if (offset > bytes_.size() || count > bytes_.size() - offset)
            return {};
        return bytes_.subspan(offset, count);
    }

    Bytes bytes_;
    bool isLittleEndian_;
};

} // namespace

void ReadExifDirectory(Bytes bytes, ImageHeader &header) {
    constexpr std::size_t kEntrySize = 12;
    constexpr std::uint32_t kUnitIsCentimetre = 3;
    const TIFF tiff(bytes);
    const std::size_t directory = tiff.Number32(4);
    std::optional<double> width, height;
    double unitsPerInch = 1;
    for (std::size_t i = 0, count = tiff.Number16(directory); i < count; i++) {
        const std::size_t entry = directory + 2 + i * kEntrySize;
        if (entry > bytes.size())
            break;
        const std::size_t length = tiff.Number32(entry + 4);
        const std::size_t inPlace = entry + 8;
        const std::size_t elsewhere = tiff.Number32(inPlace);
        const std::size_t text = length <= 4 ? inPlace : elsewhere;
        switch (tiff.Number16(entry)) {
        case kMake:
            header.make = tiff.Text(text, length);
            break;
        case kModel:
            header.model = tiff.Text(text, length);
            break;
        case kOrientation:
            header.isShownOnItsSide = tiff.Number16(inPlace) >= kFirstOnItsSide;
            break;
        case kXResolution:
            width = tiff.Fraction(elsewhere);
            break;
        case kYResolution:
            height = tiff.Fraction(elsewhere);
            break;
        case kResolutionUnit:
            unitsPerInch = tiff.Number16(inPlace) == kUnitIsCentimetre ? 2.54 : 1;
            break;
        }
    }
    if (width)
        header.widthDPI = *width * unitsPerInch;
    if (height)
        header.heightDPI = *height * unitsPerInch;
}

} // namespace sim::macos
