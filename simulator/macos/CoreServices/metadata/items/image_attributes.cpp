// What the header of a picture says.
#include "simulator/macos/CoreServices/metadata/items/attribute_reader.h"
#include "simulator/macos/CoreServices/metadata/items/values.h"

namespace sim::macos {

namespace {

CFTypeRef ValueOf(std::int64_t number) { return NumberValue(number); }
CFTypeRef ValueOf(int number) { return NumberValue(std::int64_t{number}); }
CFTypeRef ValueOf(double number) { return NumberValue(number); }
CFTypeRef ValueOf(bool value) { return BooleanValue(value); }
CFTypeRef ValueOf(std::string_view text) { return TextValue(text); }

template <class Value> CFTypeRef ValueOf(const std::optional<Value> &value) {
    return value ? ValueOf(*value) : nullptr;
}

template <auto ImageHeader::*field> CFTypeRef Field(FileFacts &file) {
    const ImageHeader *image = file.Image();
    return image ? ValueOf(image->*field) : nullptr;
}

CFTypeRef PixelCount(FileFacts &file) {
    const ImageHeader *image = file.Image();
    return image ? NumberValue(image->pixelWidth * image->pixelHeight) : nullptr;
}

/// 0 for a picture that is shown wide or square, 1 for a tall one.
CFTypeRef Orientation(FileFacts &file) {
    const ImageHeader *image = file.Image();
    if (!image)
        return nullptr;
    const bool isStoredTall = image->pixelHeight > image->pixelWidth;
    const bool isStoredWide = image->pixelWidth > image->pixelHeight;
    return NumberValue(std::int64_t{image->isShownOnItsSide ? isStoredWide : isStoredTall});
}

constexpr AttributeReader kImageReaders[] = {
    {"kMDItemPixelWidth", Field<&ImageHeader::pixelWidth>},
    {"kMDItemPixelHeight", Field<&ImageHeader::pixelHeight>},
    {"kMDItemPixelCount", PixelCount},
    {"kMDItemColorSpace", Field<&ImageHeader::colorSpace>},
    {"kMDItemBitsPerSample", Field<&ImageHeader::bitsPerSample>},
    {"kMDItemHasAlphaChannel", Field<&ImageHeader::hasAlpha>},
    {"kMDItemResolutionWidthDPI", Field<&ImageHeader::widthDPI>},
    {"kMDItemResolutionHeightDPI", Field<&ImageHeader::heightDPI>},
    {"kMDItemOrientation", Orientation},
    {"kMDItemProfileName", Field<&ImageHeader::profileName>},
    {"kMDItemAcquisitionMake", Field<&ImageHeader::make>},
    {"kMDItemAcquisitionModel", Field<&ImageHeader::model>},
};

} // namespace

std::span<const AttributeReader> ImageAttributes() { return kImageReaders; }

} // namespace sim::macos
