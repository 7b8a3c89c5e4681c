// Arrays.
#include "simulator/macos/CoreFoundation/array.h"

#include "simulator/macos/control/faults.h"

namespace sim::macos {

Array::Array(const CFArrayCallBacks *callBacks, bool isMutable) : isMutable_(isMutable) {
    if (callBacks)
        callBacks_ = *callBacks;
    if (callBacks_.version != 0)
        Stop("an array was given callbacks of an unknown version");
}

Array::~Array() {
    if (callBacks_.release)
        for (const void *value : values_)
            callBacks_.release(kCFAllocatorSystemDefault, value);
}

bool Array::EqualTo(const Object &other) const {
    const auto &array = static_cast<const Array &>(other);
    if (values_.size() != array.values_.size() || callBacks_.equal != array.callBacks_.equal)
        return false;
    for (std::size_t index = 0; index < values_.size(); ++index)
        if (values_[index] != array.values_[index] &&
            !(callBacks_.equal && callBacks_.equal(values_[index], array.values_[index])))
            return false;
    return true;
}

std::string Array::Description() const { return "of " + std::to_string(values_.size()); }

void Array::Append(const void *value) {
    values_.push_back(callBacks_.retain ? callBacks_.retain(kCFAllocatorSystemDefault, value) : value);
}

std::span<const void *const> ValuesOf(CFArrayRef array, const char *caller) {
    return Expect<Array>(array, caller).Values();
}

CFRef<CFArrayRef> MakeArray(std::span<const CFTypeRef> objects) {
    auto *array = new Array(&kCFTypeArrayCallBacks, false);
    for (CFTypeRef object : objects)
        array->Append(object);
    return CFRef<CFArrayRef>::Adopt(array->As<CFArrayRef>());
}

namespace {

FallibleCall createArray("CFArrayCreate");
FallibleCall createMutableArray("CFArrayCreateMutable");

} // namespace

} // namespace sim::macos

using namespace sim::macos;

CFTypeID CFArrayGetTypeID() {
    static const CFTypeID type = RegisterType("CFArray");
    return type;
}

CFArrayRef CFArrayCreate(CFAllocatorRef, const void **values, CFIndex count, const CFArrayCallBacks *callBacks) {
    if (count < 0 || (count > 0 && !values))
        Stop("CFArrayCreate was given no values, or less than none");
    if (createArray.Fails())
        return nullptr;
    auto *array = new Array(callBacks, false);
    auto held = CFRef<CFArrayRef>::Adopt(array->As<CFArrayRef>());
    for (CFIndex index = 0; index < count; ++index)
        array->Append(values[index]);
    return held.Give();
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex capacity, const CFArrayCallBacks *callBacks) {
    if (capacity < 0)
        Stop("CFArrayCreateMutable was given a negative capacity");
    if (createMutableArray.Fails())
        return nullptr;
    return (new Array(callBacks, true))->As<CFMutableArrayRef>();
}

CFIndex CFArrayGetCount(CFArrayRef array) { return static_cast<CFIndex>(ValuesOf(array).size()); }

const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    std::span<const void *const> values = ValuesOf(array);
    if (index < 0 || index >= static_cast<CFIndex>(values.size()))
        Stop("CFArrayGetValueAtIndex was asked for index " + std::to_string(index) + " of " + Describe(array));
    return values[static_cast<std::size_t>(index)];
}

void CFArrayAppendValue(CFMutableArrayRef array, const void *value) {
    Array &object = Expect<Array>(array);
    if (!object.IsMutable())
        Stop("CFArrayAppendValue was given an immutable array");
    object.Append(value);
}
