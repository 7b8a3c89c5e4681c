// Normalization, as the Unicode library does it.
#include "simulator/macos/CoreFoundation/normalization.h"

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/string.h"

#include <unicode/unorm2.h>

namespace sim::macos {

namespace {

const UNormalizer2 *NormalizerFor(CFStringNormalizationForm form, UErrorCode &error) {
    switch (form) {
    case kCFStringNormalizationFormD:
        return unorm2_getNFDInstance(&error);
    case kCFStringNormalizationFormKD:
        return unorm2_getNFKDInstance(&error);
    case kCFStringNormalizationFormC:
        return unorm2_getNFCInstance(&error);
    case kCFStringNormalizationFormKC:
        return unorm2_getNFKCInstance(&error);
    }
    Stop("there is no normalization form " + std::to_string(static_cast<int>(form)));
}

} // namespace

std::u16string Normalized(std::u16string_view text, CFStringNormalizationForm form) {
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2 *normalizer = NormalizerFor(form, error);
    const auto length = static_cast<std::int32_t>(text.size());
    const std::int32_t needed = unorm2_normalize(normalizer, text.data(), length, nullptr, 0, &error);
    std::u16string result(static_cast<std::size_t>(needed), u'\0');
    error = U_ZERO_ERROR;
    unorm2_normalize(normalizer, text.data(), length, result.data(), needed, &error);
    if (U_FAILURE(error))
        Stop(std::string("normalization failed: ") + u_errorName(error));
    return result;
}

} // namespace sim::macos

using namespace sim::macos;

void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form) {
    String &object = Expect<String>(string);
    object.SetText(Normalized(object.Text(), form));
}
