// What a program reads of pictures.
#include "tests/simulator/macos/items/support/reading.h"
#include "tests/simulator/macos/items/support/sample_images.h"
#include "tests/simulator/macos/support/balance.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

namespace sim::macos {

namespace {

using namespace std::string_literals;

/// Behind the signature and the chunk of the header.
constexpr std::size_t kPNGHeaderEnd = 8 + 8 + 13 + 4;

struct Expected {
    const std::string &bytes;
    const char *name;
    int width, height, bits;
    const char *colorSpace;
    bool hasAlpha;
    int orientation;
};

/// A photo with a little-endian EXIF directory in an APP1 segment in front of all others.
std::string WithExif(const std::string &photo, char orientation, char resolutionUnit = 2) {
    const std::string tiff = "II*\0\x08\0\0\0"s                    // header; the directory is at 8
                             "\x05\0"s                             // five entries
                             "\x0F\x01\x02\0\x04\0\0\0Abc\0"s      // make, in place
                             "\x10\x01\x02\0\x06\0\0\0\x4A\0\0\0"s // model, at 74
                             "\x12\x01\x03\0\x01\0\0\0"s +
                             orientation + "\0\0\0"s +                                  // orientation
                             "\x1A\x01\x05\0\x01\0\0\0\x50\0\0\0"s +                    // width resolution, at 80
                             "\x28\x01\x03\0\x01\0\0\0"s + resolutionUnit + "\0\0\0"s + // its unit
                             "\0\0\0\0"s                                                // no further directory
                             "Mod-1\0"s                                                 // the model
                             "\x90\x01\0\0\x03\0\0\0"s;                                 // 400 / 3
    const std::string data = "Exif\0\0"s + tiff;
    const auto length = static_cast<char>(data.size() + 2);
    return photo.substr(0, 2) + "\xFF\xE1"s + '\0' + length + data + photo.substr(2);
}

/// A GIF of 300 by 5 pixels with a palette of two colours, up to its first picture.
std::string Gif(bool hasTransparentColor) {
    const std::string header = "GIF89a\x2C\1\5\0\x80\0\0"s, palette(6, '\x7F');
    const std::string comment = "\x21\xFE\5hello\2oh\0"s;
    const std::string control = "\x21\xF9\4"s + (hasTransparentColor ? '\1' : '\0') + "\0\0\0\0"s;
    return header + palette + comment + control + "\x2C\0\0\0\0\x2C\1\5\0\0\2"s;
}

} // namespace

TEST_CASE("a picture tells its size, colour space, depth, transparency and orientation") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string gif = Gif(true), opaqueGif = Gif(false);
    const Expected kPictures[] = {
        {gif, "a.gif", 300, 5, 8, "RGB", true, 0},
        {opaqueGif, "opaque.gif", 300, 5, 8, "RGB", false, 0},
        {kRGBAPicture, "rgba.png", 3, 2, 8, "RGB", true, 0},
        {kGrayPicture, "gray.png", 4, 7, 16, "Gray", false, 1},
        {kPalettePicture, "palette.png", 8, 8, 8, "RGB", true, 0},
        {kColorPhoto, "color.jpg", 16, 9, 8, "RGB", false, 0},
        {kGrayPhoto, "gray.jpg", 2, 5, 8, "Gray", false, 1},
        {kPrintPhoto, "print.jpg", 2, 3, 8, "CMYK", false, 1},
        {kProgressivePhoto, "progressive.jpg", 6, 4, 8, "Gray", false, 0},
    };
    for (const Expected &picture : kPictures) {
        CAPTURE(picture.name);
        const auto item = ItemAt(folder.File(picture.name, picture.bytes));
        CHECK(Whole(Attribute(item, "kMDItemPixelWidth")) == picture.width);
        CHECK(Whole(Attribute(item, "kMDItemPixelHeight")) == picture.height);
        CHECK(Whole(Attribute(item, "kMDItemPixelCount")) == picture.width * picture.height);
        CHECK(Whole(Attribute(item, "kMDItemBitsPerSample")) == picture.bits);
        CHECK(Text(Attribute(item, "kMDItemColorSpace")) == picture.colorSpace);
        CHECK(Truth(Attribute(item, "kMDItemHasAlphaChannel")) == picture.hasAlpha);
        CHECK(Whole(Attribute(item, "kMDItemOrientation")) == picture.orientation);
    }
}

TEST_CASE("the pixel sizes are those that file(1) reads") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const struct {
        const std::string &bytes;
        const char *separator;
    } kPictures[] = {
        {kRGBAPicture, " x "}, {kGrayPicture, " x "}, {kColorPhoto, "x"}, {kGrayPhoto, "x"}, {kProgressivePhoto, "x"},
    };
    for (const auto &picture : kPictures) {
        const std::string path = folder.File("picture", picture.bytes);
        const std::string size = std::to_string(Whole(Attribute(path, "kMDItemPixelWidth"))) + picture.separator +
                                 std::to_string(Whole(Attribute(path, "kMDItemPixelHeight"))) + ",";
        const std::string others = OutputOf("file --brief " + path) + ",";
        CAPTURE(others);
        CHECK(others.find(" " + size) != std::string::npos);
    }
}

TEST_CASE("a resolution is told in dots per inch, and only where the file gives it a unit") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto resolution = [&](const std::string &bytes, const char *key) {
        return Fraction(Attribute(folder.File("picture", bytes), key));
    };
    CHECK(resolution(kRGBAPicture, "kMDItemResolutionWidthDPI") == doctest::Approx(5669 * 0.0254));
    CHECK(resolution(kRGBAPicture, "kMDItemResolutionHeightDPI") == doctest::Approx(11338 * 0.0254));
    CHECK(resolution(kColorPhoto, "kMDItemResolutionWidthDPI") == 300);
    CHECK(resolution(kColorPhoto, "kMDItemResolutionHeightDPI") == 150);
    CHECK(resolution(kGrayPhoto, "kMDItemResolutionHeightDPI") == doctest::Approx(254));
    for (const std::string &bytes : {kGrayPicture, kPrintPhoto, kProgressivePhoto}) {
        const std::string path = folder.File("picture", bytes);
        CHECK_FALSE(Attribute(path, "kMDItemResolutionWidthDPI"));
        CHECK_FALSE(Attribute(path, "kMDItemResolutionHeightDPI"));
    }
}

TEST_CASE("a picture in the standard colour space names its profile") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(Text(Attribute(folder.File("a.png", kRGBAPicture), "kMDItemProfileName")) == "sRGB IEC61966-2.1");
    CHECK_FALSE(Attribute(folder.File("b.png", kGrayPicture), "kMDItemProfileName"));
    const std::string profile = "\0\0\0\x0C"s + "iCCP" + "Own colours\0"s + "crc."; // of the profile only its name
    const std::string withProfile =
        kGrayPicture.substr(0, kPNGHeaderEnd) + profile + kGrayPicture.substr(kPNGHeaderEnd);
    CHECK(Text(Attribute(folder.File("c.png", withProfile), "kMDItemProfileName")) == "Own colours");
}

TEST_CASE("EXIF data tells the camera, the resolution and that a photo is shown on its side") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto upright = ItemAt(folder.File("upright.jpg", WithExif(kColorPhoto, 1)));
    CHECK(Text(Attribute(upright, "kMDItemAcquisitionMake")) == "Abc");
    CHECK(Text(Attribute(upright, "kMDItemAcquisitionModel")) == "Mod-1");
    CHECK(Whole(Attribute(upright, "kMDItemOrientation")) == 0);
    CHECK(Whole(Attribute(upright, "kMDItemPixelWidth")) == 16);
    const auto turned = ItemAt(folder.File("turned.jpg", WithExif(kColorPhoto, 6)));
    CHECK(Whole(Attribute(turned, "kMDItemOrientation")) == 1);
    CHECK(Whole(Attribute(turned, "kMDItemPixelWidth")) == 16);
    const auto inches = ItemAt(folder.File("print.jpg", WithExif(kPrintPhoto, 1)));
    CHECK(Fraction(Attribute(inches, "kMDItemResolutionWidthDPI")) == doctest::Approx(400.0 / 3));
    CHECK_FALSE(Attribute(inches, "kMDItemResolutionHeightDPI"));
    const auto metric = ItemAt(folder.File("metric.jpg", WithExif(kPrintPhoto, 1, 3)));
    CHECK(Fraction(Attribute(metric, "kMDItemResolutionWidthDPI")) == doctest::Approx(400.0 / 3 * 2.54));
}

TEST_CASE("a picture cut off anywhere before the end of its header has no picture attributes") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto headerEnds = [](const std::string &bytes, const std::string &mark) { return bytes.find(mark); };
    for (std::size_t length = 0; length < 8 + 8 + 13; length++) {
        CAPTURE(length);
        CHECK_FALSE(Attribute(folder.File("cut.png", kRGBAPicture.substr(0, length)), "kMDItemPixelWidth"));
    }
    const std::size_t frame = headerEnds(kColorPhoto, "\xFF\xC0");
    REQUIRE(frame != std::string::npos);
    for (std::size_t length = 0; length < frame + 10; length++) {
        CAPTURE(length);
        CHECK_FALSE(Attribute(folder.File("cut.jpg", kColorPhoto.substr(0, length)), "kMDItemPixelWidth"));
    }
    for (std::size_t length = 0; length < 110; length++) { // must not read beyond the data, whatever it finds
        const std::string exif = WithExif(kColorPhoto, 6);
        CHECK(Attribute(folder.File("cut-exif.jpg", exif.substr(0, length)), "kMDItemFSSize"));
        CHECK_FALSE(Attribute(folder.PathOf("cut-exif.jpg"), "kMDItemPixelWidth"));
    }
}

TEST_CASE("what is no picture has no picture attributes, also under a picture's name") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto item = ItemAt(folder.File("words.png", "These are words.\n"));
    CHECK(Text(Attribute(item, "kMDItemContentType")) == "public.png");
    for (const char *key : {"kMDItemPixelWidth", "kMDItemPixelCount", "kMDItemColorSpace", "kMDItemHasAlphaChannel",
                            "kMDItemOrientation", "kMDItemAcquisitionMake"}) {
        CAPTURE(key);
        CHECK_FALSE(Attribute(item, key));
    }
}

TEST_CASE("a damaged picture is given up after a thousand pieces that say nothing") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto paddedPNG = [&](std::size_t chunks) { // chunks of no bytes and no name between header and resolution
        return kRGBAPicture.substr(0, kPNGHeaderEnd) + std::string(chunks * 12, '\0') +
               kRGBAPicture.substr(kPNGHeaderEnd);
    };
    CHECK(Attribute(folder.File("a.png", paddedPNG(990)), "kMDItemResolutionWidthDPI"));
    CHECK_FALSE(Attribute(folder.File("b.png", paddedPNG(1000)), "kMDItemResolutionWidthDPI"));
    CHECK(Attribute(folder.PathOf("b.png"), "kMDItemPixelWidth"));
    const auto paddedJPEG = [](std::size_t fill) {
        return kColorPhoto.substr(0, 2) + std::string(fill, '\xFF') + kColorPhoto.substr(2);
    };
    CHECK(Attribute(folder.File("a.jpg", paddedJPEG(900)), "kMDItemPixelWidth"));
    CHECK_FALSE(Attribute(folder.File("b.jpg", paddedJPEG(1000)), "kMDItemPixelWidth"));
    const auto paddedGIF = [](std::size_t pieces) { // extensions of no bytes between the palette and the others
        const std::string gif = Gif(true);
        std::string padding;
        for (std::size_t i = 0; i < pieces; i++)
            padding += "\x21\xFE\0"s;
        return gif.substr(0, 19) + padding + gif.substr(19);
    };
    CHECK(Truth(Attribute(folder.File("a.gif", paddedGIF(900)), "kMDItemHasAlphaChannel")));
    CHECK_FALSE(Truth(Attribute(folder.File("b.gif", paddedGIF(1000)), "kMDItemHasAlphaChannel")));
    CHECK_FALSE(Attribute(folder.File("cut.gif", Gif(true).substr(0, 12)), "kMDItemPixelWidth"));
}

} // namespace sim::macos
