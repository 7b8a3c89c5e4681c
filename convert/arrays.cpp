#include "convert/arrays.h"

#include <cstring>

#include "convert/dates.h"
#include "convert/from_host.h"
#include "convert/to_host.h"
#include "convert/variant_scalars.h"
#include "host/arrays.h"
#include "host/strings.h"

namespace {

// An element kind tells how an element is read, in a form that gives up its reference by itself, and what it becomes:
// +1, or null to leave it out.

struct DateElement {
    static OwnedObject Read(_REALarray *array, int32_t index) {
        return OwnedObject::Adopt(ReadArrayObject(array, index));
    }
    static CFTypeRef Convert(const OwnedObject &element) {
        return RBDate2CFDate(static_cast<_REALdate *>(element.Get()));
    }
};

struct StringElement {
    static OwnedString Read(_REALarray *array, int32_t index) {
        return OwnedString::Adopt(ReadArrayString(array, index));
    }
    static CFTypeRef Convert(const OwnedString &element) {
        if (CFStringRef converted = RBString2CFString(element.Get()))
            return converted;
        return CFRetain(CFSTR(""));
    }
};

struct ObjectElement {
    static OwnedObject Read(_REALarray *array, int32_t index) {
        return OwnedObject::Adopt(ReadArrayObject(array, index));
    }
    static CFTypeRef Convert(const OwnedObject &element) { return CopyVariantAsCFType(element.Get()); }
};

struct BooleanElement {
    static bool Read(_REALarray *array, int32_t index) { return ReadArrayBoolean(array, index); }
    static CFTypeRef Convert(bool element) { return CFRetain(element ? kCFBooleanTrue : kCFBooleanFalse); }
};

/// Walks an array that may shrink meanwhile: an index that has fallen outside raises "OutOfBoundsException", and the
/// walk goes on. The visitor gets the index and whether the element may be read; what it returns is +1, and is
/// appended, or left out when null.
template <class Visitor> CFTypeRef WalkArray(_REALarray *array, Visitor convertElement) {
    const int32_t upperBound = UpperBoundOf(array);
    auto result = OwnedCF<CFMutableArrayRef>::Adopt(
        CFArrayCreateMutable(kCFAllocatorDefault, CFIndex{upperBound} + 1, &kCFTypeArrayCallBacks));
    if (!result)
        return nullptr;
    for (int32_t i = 0; i <= upperBound; i++) {
        const bool isReadable = CheckArrayIndex(array, i);
        const auto converted = OwnedCF<CFTypeRef>::Adopt(convertElement(i, isReadable));
        if (converted)
            CFArrayAppendValue(result.Get(), converted.Get());
    }
    return result.Give();
}

template <class Kind> CFTypeRef CopyArray(_REALarray *array) {
    return WalkArray(array, [array](int32_t index, bool isReadable) {
        using Element = decltype(Kind::Read(array, index));
        return Kind::Convert(isReadable ? Kind::Read(array, index) : Element());
    });
}

// Deliberate: the numbers of the result are not those of the host array. The element getter, where the elements do not
// lie in a table, is called and its answer dropped; each number is made from a local variable that then takes the new
// number's reference in its low half. The variable has eight bytes, so that any number type stays inside it.
template <auto &getElement, CFNumberType type> CFTypeRef CopyNumericArray(_REALarray *array) {
    alignas(int64_t) UInt8 local[8] = {};
    return WalkArray(array, [array, &local](int32_t index, bool isReadable) -> CFTypeRef {
        if (isReadable && !HasDirectElements(array))
            getElement(array, index);
        CFNumberRef number = CFNumberCreate(kCFAllocatorDefault, type, local);
        std::memcpy(local, &number, sizeof number);
        return number;
    });
}

struct ArrayKind {
    int32_t elementType;
    ArrayConversion convert;
};

constexpr ArrayKind kArrayKinds[] = {
    {kVariantInt32, CopyNumericArray<REALGetArrayValueInteger, kCFNumberSInt32Type>},
    {kVariantInt64, CopyNumericArray<REALGetArrayValueInt64, kCFNumberSInt64Type>},
    {kVariantSingle, CopyNumericArray<REALGetArrayValueSingle, kCFNumberFloat32Type>},
    {kVariantDouble, CopyNumericArray<REALGetArrayValueDouble, kCFNumberFloat64Type>},
    {kVariantDate, CopyArray<DateElement>},
    {kVariantString, CopyArray<StringElement>},
    {kVariantObject, CopyArray<ObjectElement>},
    {kVariantBoolean, CopyArray<BooleanElement>},
};

} // namespace

ArrayConversion ConversionOfArray(int32_t variantType) {
    for (const ArrayKind &kind : kArrayKinds)
        if (variantType == kVariantArray + kind.elementType)
            return kind.convert;
    return nullptr;
}

REALobjectStruct *HostArray(CFTypeRef value) {
    const auto values = static_cast<CFArrayRef>(value);
    const CFIndex count = CFArrayGetCount(values);
    // Storing asks for the upper bound; a host that cannot tell it has no place for any element.
    if (count > 0 && !REALGetArrayUBound)
        return nullptr;
    auto array = OwnedHost<_REALarrayObject>::Adopt(NewObjectArray(static_cast<int32_t>(count - 1)));
    if (!array)
        return nullptr;
    for (CFIndex i = 0; i < count; i++) {
        const auto element = OwnedObject::Adopt(GetCFTypeAsVariant(CFArrayGetValueAtIndex(values, i)));
        StoreArrayObject(array.Get(), static_cast<int32_t>(i), element.Get());
    }
    return array.Give();
}
