#include "simulator/host/ground/text.h"

#include "simulator/host/ground/stop.h"

#include <algorithm>
#include <memory>
#include <unicode/ucnv.h>

namespace sim::host {

namespace {

struct EncodingRow {
    uint32_t number;
    const char *converter;
};

constexpr EncodingRow kEncodings[] = {
    {kMacRoman, "macos-0_2-10.2"}, {kUTF16, "UTF-16LE"}, {kISOLatin1, "ISO-8859-1"}, {kWindowsLatin1, "windows-1252"},
    {kASCII, "US-ASCII"},          {kUTF8, "UTF-8"},     {kUTF32, "UTF-32LE"},
};

struct CloseConverter {
    void operator()(UConverter *converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter OpenConverter(uint32_t encoding) {
    const char *name = "macos-0_2-10.2";
    for (const EncodingRow &row : kEncodings)
        if (row.number == encoding)
            name = row.converter;
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &error));
    if (U_FAILURE(error))
        Stop(std::string("ICU has no converter ") + name);
    return converter;
}

std::u16string Decode(std::string_view bytes, uint32_t encoding) {
    Converter converter = OpenConverter(encoding);
    std::u16string units(bytes.size() * 2 + 2, u'\0');
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = ucnv_toUChars(converter.get(), units.data(), static_cast<int32_t>(units.size()), bytes.data(),
                                   static_cast<int32_t>(bytes.size()), &error);
    if (U_FAILURE(error))
        Stop(std::string("ICU could not decode a text: ") + u_errorName(error));
    units.resize(static_cast<size_t>(length));
    return units;
}

std::string Encode(std::u16string_view units, uint32_t encoding) {
    Converter converter = OpenConverter(encoding);
    std::string bytes(
        static_cast<size_t>(UCNV_GET_MAX_BYTES_FOR_STRING(static_cast<int32_t>(units.size()),
                                                          static_cast<int32_t>(ucnv_getMaxCharSize(converter.get())))),
        '\0');
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = ucnv_fromUChars(converter.get(), bytes.data(), static_cast<int32_t>(bytes.size()), units.data(),
                                     static_cast<int32_t>(units.size()), &error);
    if (U_FAILURE(error))
        Stop(std::string("ICU could not encode a text: ") + u_errorName(error));
    bytes.resize(static_cast<size_t>(length));
    return bytes;
}

char Lower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool HoldsASCIIInBytes(const Text &text) {
    return text.encoding != kUTF16 && text.encoding != kUTF32 &&
           std::all_of(text.bytes.begin(), text.bytes.end(), [](char byte) { return byte >= 0; });
}

} // namespace

Text Convert(const Text &text, uint32_t encoding) {
    if (HoldsASCIIInBytes(text) && encoding != kUTF16 && encoding != kUTF32)
        return {text.bytes, encoding};
    return {Encode(Decode(text.bytes, text.encoding), encoding), encoding};
}

std::u16string ToUTF16(std::string_view utf8) { return Decode(utf8, kUTF8); }

std::string ToUTF8(std::u16string_view utf16) { return Encode(utf16, kUTF8); }

std::string ToUTF8(const Text &text) { return Convert(text, kUTF8).bytes; }

bool SameCharacters(const Text &left, const Text &right) {
    return left.encoding == right.encoding ? left.bytes == right.bytes : ToUTF8(left) == ToUTF8(right);
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
    return lower;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(), [](char a, char b) { return Lower(a) == Lower(b); });
}

} // namespace sim::host
