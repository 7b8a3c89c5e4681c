// Making objects without content.
#include "simulator/macos/CoreFoundation/instances.h"

#include "simulator/macos/CoreFoundation/object.h"

#include <algorithm>

namespace sim::macos {

namespace {

class Opaque final : public Object {
public:
    explicit Opaque(CFTypeID type) : type_(type) {}
    CFTypeID TypeID() const override { return type_; }

private:
    CFTypeID type_;
};

} // namespace

const std::vector<std::string> &OpaqueTypeNames() {
    static const std::vector<std::string> names{"CGColorSpace",
                                                "CGColor",
                                                "CGImage",
                                                "CGLayer",
                                                "CGPath",
                                                "CGDataConsumer",
                                                "CGDataProvider",
                                                "CGPSConverter",
                                                "CGContext",
                                                "CGEvent",
                                                "CGEventSource",
                                                "CGFont",
                                                "CFCharacterSet",
                                                "CFBundle",
                                                "CFSet",
                                                "CFBag",
                                                "CFUUID",
                                                "CFTimeZone",
                                                "CFAttributedString",
                                                "CFError",
                                                "CTFont",
                                                "CTFontCollection",
                                                "CTFrame",
                                                "CTFramesetter",
                                                "CTGlyphInfo",
                                                "CTLine",
                                                "CTParagraphStyle",
                                                "CTRun",
                                                "CTTypesetter",
                                                "CTRunDelegate",
                                                "CFReadStream"};
    return names;
}

CFTypeRef MakeInstance(std::string_view typeName) {
    const std::vector<std::string> &names = OpaqueTypeNames();
    if (std::find(names.begin(), names.end(), typeName) == names.end())
        Stop("no instance can be made of type " + std::string(typeName));
    return (new Opaque(RegisterType(typeName)))->As<CFTypeRef>();
}

} // namespace sim::macos
