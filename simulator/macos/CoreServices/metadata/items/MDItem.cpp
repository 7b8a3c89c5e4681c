// The C interface of items.
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreServices/metadata/items/item.h"
#include "simulator/macos/control/faults.h"

#include <CoreServices/MDItem.h>

namespace {

using namespace sim::macos;

const FallibleCall createWithURLCall("MDItemCreateWithURL");
const FallibleCall copyAttributeCall("MDItemCopyAttribute");
const FallibleCall copyAttributesCall("MDItemCopyAttributes");
const FallibleCall copyAttributeNamesCall("MDItemCopyAttributeNames");

/// Empty for a URL that names no file.
std::string PathOf(CFURLRef url) {
    const auto absolute = CFRef<CFURLRef>::Adopt(CFURLCopyAbsoluteURL(url));
    if (!absolute || !Utf8Of(CFURLGetString(absolute.Get())).starts_with("file:"))
        return {};
    const auto path = CFRef<CFStringRef>::Adopt(CFURLCopyFileSystemPath(absolute.Get(), kCFURLPOSIXPathStyle));
    return path ? Utf8Of(path.Get()) : std::string();
}

} // namespace

CFTypeID MDItemGetTypeID(void) { return Item::Type(); }

MDItemRef MDItemCreateWithURL(CFAllocatorRef, CFURLRef url) {
    if (createWithURLCall.Fails())
        return nullptr;
    const OwnCalls own;
    return Item::CreateForPath(PathOf(url));
}

CFTypeRef MDItemCopyAttribute(MDItemRef item, CFStringRef name) {
    if (copyAttributeCall.Fails())
        return nullptr;
    const OwnCalls own;
    return Item::From(item)->Source().Copy(Utf8Of(name));
}

CFDictionaryRef MDItemCopyAttributes(MDItemRef item, CFArrayRef names) {
    if (copyAttributesCall.Fails())
        return nullptr;
    const OwnCalls own;
    const AttributeSource &source = Item::From(item)->Source();
    const auto attributes = CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                                      &kCFTypeDictionaryValueCallBacks);
    for (CFIndex i = 0; i < CFArrayGetCount(names); i++) {
        const auto name = static_cast<CFStringRef>(CFArrayGetValueAtIndex(names, i));
        if (const auto value = CFRef<CFTypeRef>::Adopt(source.Copy(Utf8Of(name))))
            CFDictionarySetValue(attributes, name, value.Get());
    }
    return attributes;
}

CFArrayRef MDItemCopyAttributeNames(MDItemRef item) {
    if (copyAttributeNamesCall.Fails())
        return nullptr;
    const OwnCalls own;
    const auto names = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (const std::string &name : Item::From(item)->Source().Names())
        CFArrayAppendValue(names, MakeString(name).Get());
    return names;
}
