// Pictures as libpng and libjpeg wrote them, a few bytes each.
#pragma once

#include <string>

namespace sim::macos {

/// A PNG of 3 by 2 pixels with transparency, 8 bits a sample, 5669 by 11338 pixels a metre, sRGB.
extern const std::string kRGBAPicture;
/// A PNG of 4 by 7 pixels, gray, 16 bits a sample, without a resolution.
extern const std::string kGrayPicture;
/// A PNG of 8 by 8 pixels, 1 bit an index, a palette with a transparent entry.
extern const std::string kPalettePicture;
/// A JPEG of 16 by 9 pixels in colour, 300 by 150 dots an inch.
extern const std::string kColorPhoto;
/// A JPEG of 2 by 5 pixels, gray, 100 dots a centimetre.
extern const std::string kGrayPhoto;
/// A JPEG of 2 by 3 pixels with four inks, without a JFIF mark.
extern const std::string kPrintPhoto;
/// A JPEG of 6 by 4 pixels, gray, progressive, with an aspect ratio for a density.
extern const std::string kProgressivePhoto;

} // namespace sim::macos
