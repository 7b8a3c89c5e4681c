#include "simulator/macos/CoreServices/metadata/items/text_content.h"

#include "simulator/macos/CoreServices/metadata/items/content_type.h"

namespace sim::macos {

namespace {

constexpr std::size_t kMostBytes = 10'000'000;

bool IsPlain(const UniformType &type) {
    return ConformsTo(type, "public.text") && !ConformsTo(type, "public.html") && !ConformsTo(type, "public.rtf");
}

bool BeginsWithUTF16Mark(const std::vector<std::uint8_t> &bytes) {
    return bytes.size() >= 2 && ((bytes[0] == 0xFE && bytes[1] == 0xFF) || (bytes[0] == 0xFF && bytes[1] == 0xFE));
}

CFStringRef Decode(const std::vector<std::uint8_t> &bytes, CFStringEncoding encoding) {
    return CFStringCreateWithBytes(kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size()), encoding,
                                   true);
}

/// A cut in the middle of a character would make the whole no UTF-8.
void DropCutCharacter(std::vector<std::uint8_t> &bytes) {
    std::size_t start = bytes.size();
    while (start > 0 && bytes.size() - start < 4) {
        start--;
        if ((bytes[start] & 0xC0) != 0x80)
            break;
    }
    const std::uint8_t lead = bytes[start];
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    if (bytes.size() - start < length)
        bytes.resize(start);
}

} // namespace

CFTypeRef CopyTextContent(FileFacts &file) {
    const UniformType *type = file.IsRegularFile() ? file.Type() : nullptr;
    if (!type || !IsPlain(*type))
        return nullptr;
    std::vector<std::uint8_t> bytes = FileBytes(file.Path()).Read(0, kMostBytes);
    if (bytes.empty())
        return nullptr;
    if (BeginsWithUTF16Mark(bytes)) {
        bytes.resize(bytes.size() / 2 * 2);
        return Decode(bytes, kCFStringEncodingUTF16);
    }
    if (bytes.size() == kMostBytes)
        DropCutCharacter(bytes);
    const CFStringRef text = Decode(bytes, kCFStringEncodingUTF8);
    return text ? text : Decode(bytes, kCFStringEncodingISOLatin1);
}

} // namespace sim::macos
