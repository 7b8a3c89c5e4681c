// The polymorphic calls and the allocator, null and boolean constants.
#include "simulator/macos/CoreFoundation/constant_string.h"
#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/string.h"
#include "simulator/macos/CoreFoundation/text.h"

#include <CoreFoundation/CoreFoundation.h>

using namespace sim::macos;

namespace {

class Allocator final : public Object {
public:
    constexpr explicit Allocator(Immortal immortal) : Object(immortal) {}
    CFTypeID TypeID() const override { return RegisterType("CFAllocator"); }
};

class Null final : public Object {
public:
    constexpr explicit Null(Immortal immortal) : Object(immortal) {}
    CFTypeID TypeID() const override { return CFNullGetTypeID(); }
};

class TruthValue final : public Object {
public:
    constexpr TruthValue(Immortal immortal, bool value) : Object(immortal), value_(value) {}
    CFTypeID TypeID() const override { return CFBooleanGetTypeID(); }
    CFHashCode Hash() const override { return value_ ? 1 : 0; }
    std::string Description() const override { return value_ ? "true" : "false"; }
    bool Value() const { return value_; }

private:
    bool value_;
};

[[clang::no_destroy]] constinit Allocator systemDefaultAllocator{Object::Immortal{}};
[[clang::no_destroy]] constinit Null theNull{Object::Immortal{}};
[[clang::no_destroy]] constinit TruthValue theTrue{Object::Immortal{}, true};
[[clang::no_destroy]] constinit TruthValue theFalse{Object::Immortal{}, false};

} // namespace

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFAllocatorRef kCFAllocatorSystemDefault = systemDefaultAllocator.As<CFAllocatorRef>();
const CFNullRef kCFNull = theNull.As<CFNullRef>();
const CFBooleanRef kCFBooleanTrue = theTrue.As<CFBooleanRef>();
const CFBooleanRef kCFBooleanFalse = theFalse.As<CFBooleanRef>();

CFTypeID CFNullGetTypeID() {
    static const CFTypeID type = RegisterType("CFNull");
    return type;
}

CFTypeID CFBooleanGetTypeID() {
    static const CFTypeID type = RegisterType("CFBoolean");
    return type;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) { return Expect<TruthValue>(boolean).Value(); }

CFTypeID CFGetTypeID(CFTypeRef cf) { return cf && IsConstantString(cf) ? CFStringGetTypeID() : ObjectOf(cf).TypeID(); }

CFTypeRef CFRetain(CFTypeRef cf) {
    if (!cf || !IsConstantString(cf))
        ObjectOf(cf).Retain();
    return cf;
}

void CFRelease(CFTypeRef cf) {
    if (!cf || !IsConstantString(cf))
        ObjectOf(cf).Release();
}

CFIndex CFGetRetainCount(CFTypeRef cf) {
    constexpr CFIndex kOfConstants = 0x7fffffff;
    return cf && IsConstantString(cf) ? kOfConstants : ObjectOf(cf).RetainCount();
}

Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2) {
    if (CFGetTypeID(cf1) != CFGetTypeID(cf2))
        return false;
    if (cf1 == cf2)
        return true;
    if (IsConstantString(cf1) || IsConstantString(cf2))
        return StringText(static_cast<CFStringRef>(cf1)).View() == StringText(static_cast<CFStringRef>(cf2)).View();
    return ObjectOf(cf1).EqualTo(ObjectOf(cf2));
}

CFHashCode CFHash(CFTypeRef cf) {
    return cf && IsConstantString(cf) ? HashOf(ConstantString::Of(cf).Characters()) : ObjectOf(cf).Hash();
}
