// Comparison of strings: literal by default, by UTF-16 unit; equivalent sequences, case, numbers and the order of a
// language by option. The language is none in particular (the root of the Unicode collation), whatever the machine is
// set to. Options of searches, which mean nothing to a comparison, are refused.
#include "simulator/macos/CoreFoundation/string_compare.h"

#include "simulator/macos/CoreFoundation/normalization.h"
#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/text.h"

#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <algorithm>

using namespace sim::macos;

namespace {

constexpr CFStringCompareFlags kKnown =
    kCFCompareCaseInsensitive | kCFCompareNonliteral | kCFCompareLocalized | kCFCompareNumerically;

CFComparisonResult ResultOf(int order) {
    return order < 0 ? kCFCompareLessThan : order > 0 ? kCFCompareGreaterThan : kCFCompareEqualTo;
}

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// Takes a run of digits off the front, leading zeros left out.
std::u16string_view TakeNumber(std::u16string_view &text) {
    const auto end = static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsDigit) - text.begin());
    std::u16string_view digits = text.substr(0, end);
    text.remove_prefix(end);
    digits.remove_prefix(std::min(digits.find_first_not_of(u'0'), digits.size()));
    return digits;
}

int CompareNumbers(std::u16string_view one, std::u16string_view other) {
    if (one.size() != other.size())
        return one.size() < other.size() ? -1 : 1;
    return one.compare(other);
}

int CompareByUnit(std::u16string_view one, std::u16string_view other, bool numerically) {
    while (numerically && !one.empty() && !other.empty()) {
        if (IsDigit(one.front()) && IsDigit(other.front())) {
            if (const int order = CompareNumbers(TakeNumber(one), TakeNumber(other)))
                return order;
            continue;
        }
        if (one.front() != other.front())
            break;
        one.remove_prefix(1);
        other.remove_prefix(1);
    }
    return one.compare(other);
}

std::u16string WithoutCase(const std::u16string &text) {
    UErrorCode error = U_ZERO_ERROR;
    const auto length = static_cast<std::int32_t>(text.size());
    const std::int32_t needed = u_strFoldCase(nullptr, 0, text.data(), length, U_FOLD_CASE_DEFAULT, &error);
    std::u16string folded(static_cast<std::size_t>(needed), u'\0');
    error = U_ZERO_ERROR;
    u_strFoldCase(folded.data(), needed, text.data(), length, U_FOLD_CASE_DEFAULT, &error);
    return folded;
}

// The order of the text when the language decides, with the options that change it.
class Collation {
public:
    explicit Collation(CFStringCompareFlags options) {
        UErrorCode error = U_ZERO_ERROR;
        collator_ = ucol_open("", &error);
        if (U_FAILURE(error))
            Stop(std::string("there is no collation: ") + u_errorName(error));
        ucol_setAttribute(collator_, UCOL_NORMALIZATION_MODE, UCOL_ON, &error);
        if (options & kCFCompareNumerically)
            ucol_setAttribute(collator_, UCOL_NUMERIC_COLLATION, UCOL_ON, &error);
        if (options & kCFCompareCaseInsensitive)
            ucol_setStrength(collator_, UCOL_SECONDARY);
    }
    ~Collation() { ucol_close(collator_); }
    Collation(const Collation &) = delete;
    Collation &operator=(const Collation &) = delete;

    int Compare(std::u16string_view one, std::u16string_view other) const {
        return ucol_strcoll(collator_, one.data(), static_cast<std::int32_t>(one.size()), other.data(),
                            static_cast<std::int32_t>(other.size()));
    }

    std::string KeyOf(std::u16string_view text) const {
        const auto length = static_cast<std::int32_t>(text.size());
        std::string key(2 * text.size() + 16, '\0');
        const auto write = [&] {
            return ucol_getSortKey(collator_, text.data(), length, reinterpret_cast<std::uint8_t *>(key.data()),
                                   static_cast<std::int32_t>(key.size()));
        };
        auto needed = static_cast<std::size_t>(write());
        if (needed > key.size()) {
            key.resize(needed);
            write();
        }
        key.resize(needed - 1); // a 0 ends it
        return key;
    }

    static const Collation &For(CFStringCompareFlags options) {
        static const Collation plain(0);
        static const Collation numeric(kCFCompareNumerically);
        static const Collation caseless(kCFCompareCaseInsensitive);
        static const Collation both(kCFCompareNumerically | kCFCompareCaseInsensitive);
        const bool isNumeric = options & kCFCompareNumerically;
        return options & kCFCompareCaseInsensitive ? (isNumeric ? both : caseless) : (isNumeric ? numeric : plain);
    }

private:
    UCollator *collator_ = nullptr;
};

std::u16string Prepared(std::u16string_view text, CFStringCompareFlags options) {
    std::u16string prepared(text);
    if (options & kCFCompareNonliteral)
        prepared = Normalized(prepared, kCFStringNormalizationFormD);
    if (options & kCFCompareCaseInsensitive)
        prepared = WithoutCase(prepared);
    return prepared;
}

} // namespace

std::string sim::macos::CollationKeyOf(CFStringRef text, CFStringCompareFlags options) {
    return Collation::For(options).KeyOf(StringText(text).View());
}

CFComparisonResult CFStringCompare(CFStringRef string1, CFStringRef string2, CFStringCompareFlags options) {
    StringText one(string1);
    StringText other(string2);
    if (options & ~kKnown)
        Stop("CFStringCompare was given options that are not modelled: " + std::to_string(options));
    if (options & kCFCompareLocalized)
        return ResultOf(Collation::For(options).Compare(one.View(), other.View()));
    const bool numerically = options & kCFCompareNumerically;
    if (!(options & (kCFCompareNonliteral | kCFCompareCaseInsensitive)))
        return ResultOf(CompareByUnit(one.View(), other.View(), numerically));
    return ResultOf(CompareByUnit(Prepared(one.View(), options), Prepared(other.View(), options), numerically));
}
