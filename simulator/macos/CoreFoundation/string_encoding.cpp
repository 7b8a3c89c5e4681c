// Encodings, by the Unicode library's converters. By hand is only what the real system does otherwise.
#include "simulator/macos/CoreFoundation/string_encoding.h"

#include "simulator/macos/control/stop.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <map>
#include <memory>

namespace sim::macos {

namespace {

// The low byte of these two families is the number in the converter's name.
constexpr CFStringEncoding kFamily = 0xFFFFFF00;
constexpr CFStringEncoding kISO8859 = 0x0200;
constexpr CFStringEncoding kWindows = 0x0500;

struct Row {
    CFStringEncoding encoding;
    const char *converter;
};
constexpr Row kRows[] = {
    {kCFStringEncodingMacRoman, "macos-0_2-10.2"},
    {0x0006, "x-mac-greek"},
    {0x0007, "x-mac-cyrillic"},
    {0x001D, "x-mac-centraleurroman"},
    {0x0023, "x-mac-turkish"},
    {0x0400, "cp437"},
    {0x0410, "cp850"},
    {0x0412, "cp852"},
    {0x0413, "cp855"},
    {0x041B, "cp866"},
    {kCFStringEncodingWindowsLatin1, "windows-1252"},
    {0x0501, "windows-1250"},
    {0x0502, "windows-1251"},
    {0x0503, "windows-1253"},
    {0x0504, "windows-1254"},
    {0x0505, "windows-1255"},
    {0x0506, "windows-1256"},
    {0x0507, "windows-1257"},
    {0x0508, "windows-1258"},
    {kCFStringEncodingASCII, "US-ASCII"},
    {0x0631, "GBK"},
    {0x0632, "GB18030"},
    {0x0820, "ISO-2022-JP"},
    {0x0840, "ISO-2022-KR"},
    {0x0920, "EUC-JP"},
    {0x0930, "EUC-CN"},
    {0x0931, "EUC-TW"},
    {0x0940, "EUC-KR"},
    {0x0A01, "Shift_JIS"},
    {0x0A02, "KOI8-R"},
    {0x0A03, "Big5"},
    {0x0A05, "HZ-GB-2312"},
    {0x0A06, "Big5-HKSCS"},
    {0x0A08, "KOI8-U"},
    {0x04000100, "UTF-7"},
    {kCFStringEncodingUTF8, "UTF-8"},
    {kCFStringEncodingUTF32, "UTF-32"},
    {kCFStringEncodingUTF32BE, "UTF-32BE"},
    {kCFStringEncodingUTF32LE, "UTF-32LE"},
};

std::string ConverterName(CFStringEncoding encoding) {
    if ((encoding & kFamily) == kISO8859)
        return "ISO-8859-" + std::to_string(encoding - kISO8859);
    const Row *row = std::find_if(std::begin(kRows), std::end(kRows),
                                  [&](const Row &candidate) { return candidate.encoding == encoding; });
    return row == std::end(kRows) ? "" : row->converter;
}

// Everything malformed ends the conversion, but for one byte of UTF-8: A9 where a sequence begins becomes U+FFFD.
void StopUnlessLoneA9(const void *, UConverterToUnicodeArgs *args, const char *bytes, std::int32_t length,
                      UConverterCallbackReason reason, UErrorCode *error) {
    constexpr char16_t kReplacement = 0xFFFD;
    if (reason != UCNV_ILLEGAL || length != 1 || bytes[0] != '\xA9')
        return;
    *error = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &kReplacement, 1, 0, error);
}

// The library's own callback leaves out characters that nobody sees.
void StopAlways(const void *, UConverterFromUnicodeArgs *, const char16_t *, std::int32_t, UChar32,
                UConverterCallbackReason, UErrorCode *) {}

struct CloseConverter {
    void operator()(UConverter *converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

// A converter that repairs nothing; null for a number that is no encoding.
UConverter *ConverterFor(CFStringEncoding encoding) {
    static auto *converters = new std::map<CFStringEncoding, Converter>;
    if (const auto known = converters->find(encoding); known != converters->end())
        return known->second.get();
    const std::string name = ConverterName(encoding);
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(name.empty() ? nullptr : ucnv_open(name.c_str(), &error));
    if (!converter)
        return nullptr;
    const bool isUtf8 = encoding == kCFStringEncodingUTF8;
    ucnv_setToUCallBack(converter.get(), isUtf8 ? StopUnlessLoneA9 : UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &error);
    ucnv_setFromUCallBack(converter.get(), StopAlways, nullptr, nullptr, nullptr, &error);
    return converters->emplace(encoding, std::move(converter)).first->second.get();
}

// The Unicode library gives the holes of Windows encodings to the control characters of the same numbers.
bool HasHole(std::u16string_view text, CFStringEncoding encoding) {
    return (encoding & kFamily) == kWindows &&
           std::any_of(text.begin(), text.end(), [](char16_t unit) { return unit >= 0x80 && unit <= 0x9F; });
}

std::u16string DecodeUtf16(std::string_view bytes, CFStringEncoding encoding, bool isExternal) {
    bool isLittle = encoding == kCFStringEncodingUTF16LE || (encoding == kCFStringEncodingUTF16 && !isExternal);
    if (encoding == kCFStringEncodingUTF16 && isExternal &&
        (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))) {
        isLittle = bytes.front() == '\xFF';
        bytes.remove_prefix(2);
    }
    std::u16string text;
    for (std::size_t place = 0; place + 2 <= bytes.size(); place += 2) {
        const unsigned first = static_cast<unsigned char>(bytes[place]);
        const unsigned second = static_cast<unsigned char>(bytes[place + 1]);
        text += static_cast<char16_t>(isLittle ? second << 8 | first : first << 8 | second);
    }
    return text;
}

} // namespace

std::optional<std::u16string> Decode(std::string_view bytes, CFStringEncoding encoding, bool isExternal) {
    using namespace std::string_view_literals;
    switch (encoding) {
    case kCFStringEncodingUTF16:
    case kCFStringEncodingUTF16BE:
    case kCFStringEncodingUTF16LE:
        return DecodeUtf16(bytes, encoding, isExternal);
    case kCFStringEncodingUTF32:
        if (bytes.size() < 4 && bytes.size() > 1 &&
            ("\xFF\xFE\0\0"sv.starts_with(bytes) || "\0\0\xFE\xFF"sv.starts_with(bytes)))
            return std::nullopt;
        [[fallthrough]];
    case kCFStringEncodingUTF32BE:
    case kCFStringEncodingUTF32LE:
        bytes.remove_suffix(bytes.size() % 4);
        break;
    case kCFStringEncodingUTF8:
        if (bytes.starts_with("\xEF\xBB\xBF"))
            bytes.remove_prefix(3);
        break;
    case kCFStringEncodingASCII:
        encoding = kCFStringEncodingISOLatin1; // a byte above 127 is the character of the same number
        break;
    default:
        break;
    }
    UConverter *converter = ConverterFor(encoding);
    if (!converter)
        return std::nullopt;
    UErrorCode error = U_ZERO_ERROR;
    std::u16string text(2 * bytes.size(), u'\0');
    const std::int32_t length = ucnv_toUChars(converter, text.data(), static_cast<std::int32_t>(text.size()),
                                              bytes.data(), static_cast<std::int32_t>(bytes.size()), &error);
    if (U_FAILURE(error))
        return std::nullopt;
    text.resize(static_cast<std::size_t>(length));
    return HasHole(text, encoding) ? std::nullopt : std::optional(std::move(text));
}

std::optional<std::string> Encode(std::u16string_view text, CFStringEncoding encoding) {
    constexpr CFStringEncoding kWide[] = {kCFStringEncodingUTF16, kCFStringEncodingUTF16BE, kCFStringEncodingUTF16LE,
                                          kCFStringEncodingUTF32, kCFStringEncodingUTF32BE, kCFStringEncodingUTF32LE};
    if (std::find(std::begin(kWide), std::end(kWide), encoding) != std::end(kWide))
        Stop("text in UTF-16 or UTF-32 is no C string");
    UConverter *converter = ConverterFor(encoding);
    if (!converter || HasHole(text, encoding))
        return std::nullopt;
    UErrorCode error = U_ZERO_ERROR;
    const auto units = static_cast<std::int32_t>(text.size());
    const std::int32_t capacity = UCNV_GET_MAX_BYTES_FOR_STRING(units, ucnv_getMaxCharSize(converter));
    std::string bytes(static_cast<std::size_t>(capacity), '\0');
    const std::int32_t length = ucnv_fromUChars(converter, bytes.data(), capacity, text.data(), units, &error);
    if (U_FAILURE(error))
        return std::nullopt;
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

std::string EncodeLossy(std::u16string_view text, CFStringEncoding encoding) {
    std::string bytes;
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t start = index;
        U16_FWD_1(text.data(), index, text.size());
        bytes += Encode(text.substr(start, index - start), encoding).value_or("?");
    }
    return bytes;
}

} // namespace sim::macos
