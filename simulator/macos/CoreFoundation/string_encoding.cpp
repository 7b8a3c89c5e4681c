// Encodings: the wide ones by hand, one-byte tables in one_byte_encodings.h.
#include "simulator/macos/CoreFoundation/string_encoding.h"

#include "simulator/macos/CoreFoundation/one_byte_encodings.h"
#include "simulator/macos/CoreFoundation/utf8.h"
#include "simulator/macos/control/stop.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <cstdint>

namespace sim::macos {

namespace {

enum class ByteOrder { kBig, kLittle };

constexpr std::uint32_t kByteOrderMark = 0xFEFF;

std::uint32_t UnitAt(std::string_view bytes, std::size_t place, std::size_t size, ByteOrder order) {
    std::uint32_t unit = 0;
    for (std::size_t index = 0; index < size; ++index) {
        const std::size_t significance = order == ByteOrder::kBig ? index : size - 1 - index;
        unit = unit << 8 | static_cast<unsigned char>(bytes[place + significance]);
    }
    return unit;
}

// The order of UTF-16 or UTF-32 whose name leaves it open; a byte-order mark is taken away.
ByteOrder OrderOf(std::string_view &bytes, std::size_t size, bool isExternal) {
    if (!isExternal)
        return ByteOrder::kLittle;
    for (ByteOrder order : {ByteOrder::kBig, ByteOrder::kLittle})
        if (bytes.size() >= size && UnitAt(bytes, 0, size, order) == kByteOrderMark) {
            bytes.remove_prefix(size);
            return order;
        }
    return ByteOrder::kBig;
}

std::u16string DecodeUtf16(std::string_view bytes, ByteOrder order) {
    std::u16string text;
    for (std::size_t place = 0; place + 2 <= bytes.size(); place += 2)
        text += static_cast<char16_t>(UnitAt(bytes, place, 2, order));
    return text;
}

std::optional<std::u16string> DecodeUtf32(std::string_view bytes, ByteOrder order) {
    constexpr std::uint32_t kLast = 0x10FFFF;
    std::u16string text;
    for (std::size_t place = 0; place + 4 <= bytes.size(); place += 4) {
        const std::uint32_t unit = UnitAt(bytes, place, 4, order);
        if (unit > kLast || U_IS_SURROGATE(unit))
            return std::nullopt;
        if (U_IS_BMP(unit)) {
            text += static_cast<char16_t>(unit);
        } else {
            text += static_cast<char16_t>(U16_LEAD(unit));
            text += static_cast<char16_t>(U16_TRAIL(unit));
        }
    }
    return text;
}

std::optional<std::u16string> DecodeExternalUtf8(std::string_view bytes, bool isExternal) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (isExternal && bytes.starts_with(kMark))
        bytes.remove_prefix(kMark.size());
    return DecodeUtf8(bytes);
}

std::optional<std::u16string> DecodeOneByte(std::string_view bytes, const OneByteEncoding &encoding) {
    std::u16string text;
    for (char byte : bytes) {
        const std::optional<char16_t> character = encoding.ToUnicode(static_cast<unsigned char>(byte));
        if (!character)
            return std::nullopt;
        text += *character;
    }
    return text;
}

} // namespace

std::optional<std::u16string> Decode(std::string_view bytes, CFStringEncoding encoding, bool isExternal) {
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return DecodeExternalUtf8(bytes, isExternal);
    case kCFStringEncodingUTF16: {
        const ByteOrder order = OrderOf(bytes, 2, isExternal);
        return DecodeUtf16(bytes, order);
    }
    case kCFStringEncodingUTF16BE:
        return DecodeUtf16(bytes, ByteOrder::kBig);
    case kCFStringEncodingUTF16LE:
        return DecodeUtf16(bytes, ByteOrder::kLittle);
    case kCFStringEncodingUTF32: {
        const ByteOrder order = OrderOf(bytes, 4, isExternal);
        return DecodeUtf32(bytes, order);
    }
    case kCFStringEncodingUTF32BE:
        return DecodeUtf32(bytes, ByteOrder::kBig);
    case kCFStringEncodingUTF32LE:
        return DecodeUtf32(bytes, ByteOrder::kLittle);
    case kCFStringEncodingNonLossyASCII:
        return DecodeNonLossyAscii(bytes);
    default:
        const OneByteEncoding *oneByte = OneByteEncoding::Find(encoding);
        return oneByte ? DecodeOneByte(bytes, *oneByte) : std::nullopt;
    }
}

std::optional<std::string> Encode(std::u16string_view text, CFStringEncoding encoding) {
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return EncodeUtf8(text);
    case kCFStringEncodingNonLossyASCII:
        return EncodeNonLossyAscii(text);
    case kCFStringEncodingASCII:
        if (std::any_of(text.begin(), text.end(), [](char16_t unit) { return unit > 0x7F; }))
            return std::nullopt;
        break;
    case kCFStringEncodingUTF16:
    case kCFStringEncodingUTF16BE:
    case kCFStringEncodingUTF16LE:
    case kCFStringEncodingUTF32:
    case kCFStringEncodingUTF32BE:
    case kCFStringEncodingUTF32LE:
        Stop("text in UTF-16 or UTF-32 is no C string");
    default:
        break;
    }
    const OneByteEncoding *oneByte = OneByteEncoding::Find(encoding);
    if (!oneByte)
        return std::nullopt;
    std::string bytes;
    for (char16_t character : text) {
        const std::optional<unsigned char> byte = oneByte->FromUnicode(character);
        if (!byte)
            return std::nullopt;
        bytes += static_cast<char>(*byte);
    }
    return bytes;
}

std::string EncodeLossy(std::u16string_view text, CFStringEncoding encoding) {
    std::string bytes;
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t count =
            U16_IS_LEAD(text[index]) && index + 1 < text.size() && U16_IS_TRAIL(text[index + 1]) ? 2 : 1;
        bytes += Encode(text.substr(index, count), encoding).value_or("?");
        index += count;
    }
    return bytes;
}

} // namespace sim::macos
