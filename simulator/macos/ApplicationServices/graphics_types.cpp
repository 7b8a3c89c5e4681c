// Core Graphics: the identifiers of its types, and the retain functions that some of them have.
#include "simulator/macos/CoreFoundation/type_named.h"

#include <ApplicationServices/CoreGraphics.h>

using namespace sim::macos;

namespace {

// What every retain function does: null passes, any other reference must be of the function's own type.
template <class Ref> Ref RetainOfType(Ref ref, CFTypeID type, const char *caller = __builtin_FUNCTION()) {
    if (!ref)
        return ref;
    if (IsConstantString(ref) || ObjectOf(ref, caller).TypeID() != type)
        StopForWrongType(ref, caller);
    CFRetain(ref);
    return ref;
}

} // namespace

CFTypeID CGColorGetTypeID() { return TypeNamed<"CGColor">(); }
CFTypeID CGColorSpaceGetTypeID() { return TypeNamed<"CGColorSpace">(); }
CFTypeID CGContextGetTypeID() { return TypeNamed<"CGContext">(); }
CFTypeID CGDataConsumerGetTypeID() { return TypeNamed<"CGDataConsumer">(); }
CFTypeID CGDataProviderGetTypeID() { return TypeNamed<"CGDataProvider">(); }
CFTypeID CGEventGetTypeID() { return TypeNamed<"CGEvent">(); }
CFTypeID CGEventSourceGetTypeID() { return TypeNamed<"CGEventSource">(); }
CFTypeID CGFontGetTypeID() { return TypeNamed<"CGFont">(); }
CFTypeID CGImageGetTypeID() { return TypeNamed<"CGImage">(); }
CFTypeID CGLayerGetTypeID() { return TypeNamed<"CGLayer">(); }
CFTypeID CGPathGetTypeID() { return TypeNamed<"CGPath">(); }
CFTypeID CGPSConverterGetTypeID() { return TypeNamed<"CGPSConverter">(); }

CGColorRef CGColorRetain(CGColorRef color) { return RetainOfType(color, CGColorGetTypeID()); }
CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space) { return RetainOfType(space, CGColorSpaceGetTypeID()); }
CGContextRef CGContextRetain(CGContextRef context) { return RetainOfType(context, CGContextGetTypeID()); }
CGDataConsumerRef CGDataConsumerRetain(CGDataConsumerRef consumer) {
    return RetainOfType(consumer, CGDataConsumerGetTypeID());
}
CGDataProviderRef CGDataProviderRetain(CGDataProviderRef provider) {
    return RetainOfType(provider, CGDataProviderGetTypeID());
}
CGFontRef CGFontRetain(CGFontRef font) { return RetainOfType(font, CGFontGetTypeID()); }
CGImageRef CGImageRetain(CGImageRef image) { return RetainOfType(image, CGImageGetTypeID()); }
CGLayerRef CGLayerRetain(CGLayerRef layer) { return RetainOfType(layer, CGLayerGetTypeID()); }
CGPathRef CGPathRetain(CGPathRef path) { return RetainOfType(path, CGPathGetTypeID()); }
