#include "convert/arrays.h"

#include <cstring>

#include "convert/dates.h"
#include "convert/values.h"
#include "host/arrays.h"
#include "host/strings.h"

namespace {

// Appends what an element becomes; null leaves it out. The element is given up once that is in the list. One that is
// gone because the array shrinks meanwhile counts as nil or false.

void AppendDate(CFMutableArrayRef list, _REALarray *array, int32_t index) {
    auto object = ReadArrayObject(array, index);
    auto date = AdoptCF(RBDate2CFDate(static_cast<_REALdate *>(object.Get())));
    if (date)
        CFArrayAppendValue(list, date.Get());
    Release(date, object);
}

void AppendString(CFMutableArrayRef list, _REALarray *array, int32_t index) {
    auto string = ReadArrayString(array, index);
    auto text = TextOrEmpty(string.Get());
    CFArrayAppendValue(list, text.Get());
    Release(text, string);
}

void AppendVariant(CFMutableArrayRef list, _REALarray *array, int32_t index) {
    auto variant = ReadArrayObject(array, index);
    auto value = AdoptCF(CopyVariantAsCFType(variant.Get()));
    if (value)
        CFArrayAppendValue(list, value.Get());
    Release(value, variant);
}

void AppendBoolean(CFMutableArrayRef list, _REALarray *array, int32_t index) {
    const auto value = HoldCF(ReadArrayBoolean(array, index) ? kCFBooleanTrue : kCFBooleanFalse);
    CFArrayAppendValue(list, value.Get());
}

/// The list that `append` makes, called with each index that the array has at the beginning.
template <class Append> OwnedCF<CFMutableArrayRef> CopyArrayElements(_REALarray *array, Append append) {
    const int32_t upperBound = UpperBoundOf(array);
    auto list = AdoptCF(CFArrayCreateMutable(kCFAllocatorDefault, CFIndex{upperBound} + 1, &kCFTypeArrayCallBacks));
    if (!list)
        return {};
    for (int32_t i = 0; i <= upperBound; i++)
        append(list.Get(), array, i);
    return list;
}

template <auto append> OwnedCF<CFMutableArrayRef> CopyEachElement(_REALarray *array) {
    return CopyArrayElements(
        array, [](CFMutableArrayRef list, _REALarray *elements, int32_t index) { append(list, elements, index); });
}

// Deliberate: the numbers of the list are not those of the host array. The element getter, where the elements do not
// lie in a table, is called and its answer dropped; each number is made from a local variable that then takes the new
// number's reference in its low half. The variable has eight bytes, so that any number type stays inside it.
template <auto &getElement, CFNumberType type> OwnedCF<CFMutableArrayRef> CopyNumberElements(_REALarray *array) {
    alignas(int64_t) UInt8 local[8] = {};
    return CopyArrayElements(array, [&local](CFMutableArrayRef list, _REALarray *numbers, int32_t index) {
        if (RequireArrayIndex(numbers, index) && !HasDirectElements(numbers))
            getElement(numbers, index);
        const auto number = AdoptCF(CFNumberCreate(kCFAllocatorDefault, type, local));
        const CFNumberRef reference = number.Get();
        std::memcpy(local, &reference, sizeof reference);
        if (number)
            CFArrayAppendValue(list, reference);
    });
}

struct ArrayKind {
    int32_t elementType;
    ArrayConversion convert;
};

constexpr ArrayKind kArrayKinds[] = {
    {kVariantInt32, CopyNumberElements<REALGetArrayValueInteger, kCFNumberSInt32Type>},
    {kVariantInt64, CopyNumberElements<REALGetArrayValueInt64, kCFNumberSInt64Type>},
    {kVariantSingle, CopyNumberElements<REALGetArrayValueSingle, kCFNumberFloat32Type>},
    {kVariantDouble, CopyNumberElements<REALGetArrayValueDouble, kCFNumberFloat64Type>},
    {kVariantDate, CopyEachElement<AppendDate>},
    {kVariantString, CopyEachElement<AppendString>},
    {kVariantObject, CopyEachElement<AppendVariant>},
    {kVariantBoolean, CopyEachElement<AppendBoolean>},
};

} // namespace

ArrayConversion ConversionOfArray(int32_t variantType) {
    for (const ArrayKind &kind : kArrayKinds)
        if (variantType == kVariantArray + kind.elementType)
            return kind.convert;
    return nullptr;
}

OwnedHost<_REALarrayObject> ConvertToHostArray(CFArrayRef values) {
    const CFIndex count = CFArrayGetCount(values);
    // Storing asks for the upper bound; a host that cannot tell it has no place for any element.
    if (count > 0 && !REALGetArrayUBound)
        return {};
    auto array = NewObjectArray(static_cast<int32_t>(count - 1));
    if (!array)
        return {};
    for (CFIndex i = 0; i < count; i++) {
        auto element = AdoptHost(GetCFTypeAsVariant(CFArrayGetValueAtIndex(values, i)));
        StoreArrayObject(array.Get(), static_cast<int32_t>(i), element.Get());
        Release(element);
    }
    return array;
}

CFMutableArrayRef NewCFStringArray(_REALarrayString *array) {
    if (!array)
        return nullptr;
    const int32_t upperBound = UpperBoundOf(array);
    // The capacity is a hint; it has always been one more than the elements.
    auto strings = AdoptCF(CFArrayCreateMutable(kCFAllocatorDefault, CFIndex{upperBound} + 2, &kCFTypeArrayCallBacks));
    if (!strings)
        return nullptr;
    for (int32_t i = 0; i <= upperBound; i++) {
        auto string = AdoptHost(REALGetArrayString(array, i));
        auto text = TextOrEmpty(string.Get());
        CFArrayAppendValue(strings.Get(), text.Get());
        Release(text, string);
    }
    return strings.Give();
}

void AddStringArray(_REALarrayString *array, CFArrayRef strings) {
    const CFIndex count = CFArrayGetCount(strings);
    int32_t position = 0;
    for (CFIndex i = 0; i < count; i++) {
        const auto element = static_cast<CFStringRef>(CFArrayGetValueAtIndex(strings, i));
        if (!element)
            continue;
        const auto string = AdoptHost(CFString2RBString(element));
        REALInsertArrayValueString(array, position++, string.Get());
    }
}

_REALarrayString *WithStrings(OwnedHost<_REALarrayString> array, const OwnedCF<CFArrayRef> &strings) {
    if (strings)
        AddStringArray(array.Get(), strings.Get());
    return array.Give();
}
