#include "host/arrays.h"

#include <algorithm>

#include "host/exceptions.h"

namespace {

// The host's codes for what an array holds.
constexpr int32_t kStringElements = 3;
constexpr int32_t kObjectElements = 4;
constexpr int32_t kEmpty = -1;

/// The part of an old host's array that the plugin knows: instance data begins at byte 24, and its second word is the
/// table of elements.
struct OldArray {
    uint32_t unknown[7];
    void *elements;
};

/// The elements of an array whose memory may be used directly; null where the host must be asked.
template <class Element> Element *DirectArrayElements(_REALarray *array) {
    if (HostHidesLayouts())
        return nullptr;
    return static_cast<Element *>(reinterpret_cast<const OldArray *>(array)->elements);
}

// Handles are used in place only on a host that adds references: what was taken without one must never be given up.
REALobjectStruct **DirectObjectElements(_REALarray *array) {
    auto *elements = DirectArrayElements<REALobjectStruct *>(array);
    return elements && REALLockObject ? elements : nullptr;
}
REALstringStruct **DirectStringElements(_REALarray *array) {
    auto *elements = DirectArrayElements<REALstringStruct *>(array);
    return elements && REALLockString ? elements : nullptr;
}

} // namespace

OwnedHost<_REALarrayString> NewStringArray() {
    return AdoptHost(static_cast<_REALarrayString *>(REALCreateArray(kStringElements, kEmpty)));
}

OwnedHost<_REALarrayObject> NewObjectArray(int32_t upperBound) {
    return AdoptHost(static_cast<_REALarrayObject *>(REALCreateArray(kObjectElements, upperBound)));
}

int32_t UpperBoundOf(_REALarray *array) {
    constexpr int32_t kHighest = INT32_MAX - 2;
    return std::clamp(REALGetArrayUBound(array), kEmpty, kHighest);
}

bool HasDirectElements(_REALarray *array) { return DirectArrayElements<void>(array) != nullptr; }

bool RequireArrayIndex(_REALarray *array, int32_t index) {
    const int32_t upperBound = REALGetArrayUBound(array);
    if (index >= 0 && index <= upperBound)
        return true;
    RaiseOutOfBoundsException(index, int64_t{upperBound} + 1);
    return false;
}

REALstringStruct *REALGetArrayString(_REALarrayString *array, int32_t index) {
    if (!array || !RequireArrayIndex(array, index))
        return nullptr;
    if (auto *elements = DirectStringElements(array))
        return Hold(elements[index]).Give();
    return REALReadStringArray(array, index);
}

OwnedObject ReadArrayObject(_REALarray *array, int32_t index) {
    if (!RequireArrayIndex(array, index))
        return {};
    if (auto *elements = DirectObjectElements(array))
        return Hold(elements[index]);
    return AdoptHost(REALGetArrayValueObject(array, index));
}

OwnedString ReadArrayString(_REALarray *array, int32_t index) {
    if (!RequireArrayIndex(array, index))
        return {};
    if (auto *elements = DirectStringElements(array))
        return Hold(elements[index]);
    return AdoptHost(REALGetArrayValueString(array, index));
}

bool ReadArrayBoolean(_REALarray *array, int32_t index) {
    if (!RequireArrayIndex(array, index))
        return false;
    if (auto *elements = DirectArrayElements<HostBoolean>(array))
        return elements[index] != 0;
    return REALGetArrayValueBoolean(array, index) != 0;
}

void StoreArrayObject(_REALarray *array, int32_t index, REALobjectStruct *object) {
    if (!RequireArrayIndex(array, index))
        return;
    if (auto *elements = DirectObjectElements(array)) {
        auto kept = Hold(object);
        if (REALobjectStruct *previous = std::exchange(elements[index], nullptr))
            REALUnlockObject(previous);
        elements[index] = kept.Give();
    } else {
        REALSetArrayValueObject(array, object, index);
    }
}
