#include "convert/arrays.h"

#include <cstring>

#include "convert/dates.h"
#include "convert/values.h"
#include "host/arrays.h"
#include "host/strings.h"

namespace {

// What one element becomes; null leaves it out. One that is gone because the array shrinks meanwhile counts as nil or
// false.

OwnedCF<CFTypeRef> CopyDateElement(_REALarray *array, int32_t index) {
    const auto date = ReadArrayObject(array, index);
    return AdoptCF(RBDate2CFDate(static_cast<_REALdate *>(date.Get())));
}

OwnedCF<CFTypeRef> CopyStringElement(_REALarray *array, int32_t index) {
    auto string = ReadArrayString(array, index);
    auto text = TextOrEmpty(string.Get());
    Release(string);
    return text;
}

OwnedCF<CFTypeRef> CopyVariantElement(_REALarray *array, int32_t index) {
    auto variant = ReadArrayObject(array, index);
    auto value = AdoptCF(CopyVariantAsCFType(variant.Get()));
    Release(variant);
    return value;
}

OwnedCF<CFTypeRef> CopyBooleanElement(_REALarray *array, int32_t index) {
    return HoldCF<CFTypeRef>(ReadArrayBoolean(array, index) ? kCFBooleanTrue : kCFBooleanFalse);
}

/// The list of what `elementAt` gives for each index that the array has at the beginning.
template <class ElementAt> OwnedCF<CFMutableArrayRef> CopyArrayElements(_REALarray *array, ElementAt elementAt) {
    const int32_t upperBound = UpperBoundOf(array);
    auto list = AdoptCF(CFArrayCreateMutable(kCFAllocatorDefault, CFIndex{upperBound} + 1, &kCFTypeArrayCallBacks));
    if (!list)
        return {};
    for (int32_t i = 0; i <= upperBound; i++)
        if (const OwnedCF<CFTypeRef> element = elementAt(array, i))
            CFArrayAppendValue(list.Get(), element.Get());
    return list;
}

template <auto elementAt> OwnedCF<CFMutableArrayRef> CopyEachElement(_REALarray *array) {
    return CopyArrayElements(array, [](_REALarray *elements, int32_t index) { return elementAt(elements, index); });
}

// Deliberate: the numbers of the list are not those of the host array. The element getter, where the elements do not
// lie in a table, is called and its answer dropped; each number is made from a local variable that then takes the new
// number's reference in its low half. The variable has eight bytes, so that any number type stays inside it.
template <auto &getElement, CFNumberType type> OwnedCF<CFMutableArrayRef> CopyNumberElements(_REALarray *array) {
    alignas(int64_t) UInt8 local[8] = {};
    return CopyArrayElements(array, [&local](_REALarray *numbers, int32_t index) {
        if (RequireArrayIndex(numbers, index) && !HasDirectElements(numbers))
            getElement(numbers, index);
        CFNumberRef number = CFNumberCreate(kCFAllocatorDefault, type, local);
        std::memcpy(local, &number, sizeof number);
        return AdoptCF(number);
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
    {kVariantDate, CopyEachElement<CopyDateElement>},
    {kVariantString, CopyEachElement<CopyStringElement>},
    {kVariantObject, CopyEachElement<CopyVariantElement>},
    {kVariantBoolean, CopyEachElement<CopyBooleanElement>},
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
