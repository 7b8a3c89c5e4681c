#include "fuzz/strings/expected_text.h"

#include "fuzz/input.h"

#include <map>
#include <memory>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

namespace fuzz {

namespace {

struct CloseConverter {
    void operator()(UConverter *converter) const { ucnv_close(converter); }
};

UConverter *ConverterNamed(const char *name) {
    static std::map<std::string, std::unique_ptr<UConverter, CloseConverter>> converters;
    auto &converter = converters[name];
    if (!converter) {
        UErrorCode error = U_ZERO_ERROR;
        converter.reset(ucnv_open(name, &error));
        ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
        Require(U_SUCCESS(error));
    }
    return converter.get();
}

} // namespace

std::optional<std::u16string> Decoded(std::string_view bytes, const char *converter) {
    std::u16string text(bytes.size() + 1, u'\0');
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(ConverterNamed(converter), text.data(), static_cast<int32_t>(text.size()),
                                         bytes.data(), static_cast<int32_t>(bytes.size()), &error);
    if (U_FAILURE(error))
        return std::nullopt;
    text.resize(static_cast<size_t>(length));
    return text;
}

std::optional<std::string> InUTF8(std::u16string_view text) {
    std::string bytes(text.size() * 3 + 1, '\0');
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    u_strToUTF8(bytes.data(), static_cast<int32_t>(bytes.size()), &length, text.data(),
                static_cast<int32_t>(text.size()), &error);
    if (U_FAILURE(error))
        return std::nullopt;
    bytes.resize(static_cast<size_t>(length));
    return bytes;
}

} // namespace fuzz
