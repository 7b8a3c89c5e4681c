#include "simulator/macos/ApplicationServices/colors.h"
#include "simulator/macos/Carbon/search_window.h"
#include "simulator/macos/CoreFoundation/instances.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <map>
#include <set>

using namespace sim::macos;
using namespace tests;

namespace {

using TypeId = CFTypeID (*)();

const std::map<std::string, TypeId> kTypeIds{
    {"CGColorSpace", CGColorSpaceGetTypeID},
    {"CGColor", CGColorGetTypeID},
    {"CGImage", CGImageGetTypeID},
    {"CGLayer", CGLayerGetTypeID},
    {"CGPath", CGPathGetTypeID},
    {"CGDataConsumer", CGDataConsumerGetTypeID},
    {"CGDataProvider", CGDataProviderGetTypeID},
    {"CGPSConverter", CGPSConverterGetTypeID},
    {"CGContext", CGContextGetTypeID},
    {"CGEvent", CGEventGetTypeID},
    {"CGEventSource", CGEventSourceGetTypeID},
    {"CGFont", CGFontGetTypeID},
    {"CFCharacterSet", CFCharacterSetGetTypeID},
    {"CFBundle", CFBundleGetTypeID},
    {"CFSet", CFSetGetTypeID},
    {"CFBag", CFBagGetTypeID},
    {"CFUUID", CFUUIDGetTypeID},
    {"CFTimeZone", CFTimeZoneGetTypeID},
    {"CFAttributedString", CFAttributedStringGetTypeID},
    {"CFError", CFErrorGetTypeID},
    {"CTFont", CTFontGetTypeID},
    {"CTFontCollection", CTFontCollectionGetTypeID},
    {"CTFrame", CTFrameGetTypeID},
    {"CTFramesetter", CTFramesetterGetTypeID},
    {"CTGlyphInfo", CTGlyphInfoGetTypeID},
    {"CTLine", CTLineGetTypeID},
    {"CTParagraphStyle", CTParagraphStyleGetTypeID},
    {"CTRun", CTRunGetTypeID},
    {"CTTypesetter", CTTypesetterGetTypeID},
    {"CTRunDelegate", CTRunDelegateGetTypeID},
};

template <class Ref> void CheckRetain(const char *type, Ref (*retain)(Ref)) {
    CAPTURE(type);
    CHECK_EQ(retain(nullptr), nullptr);
    const auto instance = CFRef<CFTypeRef>::Adopt(MakeInstance(type));
    const Ref ref = static_cast<Ref>(const_cast<void *>(instance.Get()));
    CHECK_EQ(retain(ref), ref);
    CHECK_EQ(CFGetRetainCount(instance.Get()), 2);
    CFRelease(instance.Get());
    const auto other = CFRef<CFTypeRef>::Adopt(MakeInstance("CTLine"));
    const Ref wrong = static_cast<Ref>(const_cast<void *>(other.Get()));
    CHECK(Contains(RefusalOf([&] { retain(wrong); }), "wrong type: CTLine"));
}

} // namespace

TEST_CASE_FIXTURE(Balanced, "Every type of the frameworks has an identifier of its own, and an instance to show it") {
    std::set<CFTypeID> seen{CFStringGetTypeID(),     CFArrayGetTypeID(),
                            CFDictionaryGetTypeID(), CFNumberGetTypeID(),
                            CFBooleanGetTypeID(),    CFNullGetTypeID(),
                            CFDataGetTypeID(),       CFDateGetTypeID(),
                            CFURLGetTypeID(),        CFNotificationCenterGetTypeID()};
    CHECK_EQ(seen.size(), 10);
    for (const auto &entry : kTypeIds) {
        const std::string &name = entry.first;
        const TypeId typeId = entry.second;
        CAPTURE(name);
        CHECK(seen.insert(typeId()).second);
        CHECK_EQ(typeId(), typeId());
        const auto instance = CFRef<CFTypeRef>::Adopt(MakeInstance(name));
        CHECK_EQ(CFGetTypeID(instance.Get()), typeId());
        CHECK_EQ(CFGetRetainCount(instance.Get()), 1);
        const auto another = CFRef<CFTypeRef>::Adopt(MakeInstance(name));
        CHECK(CFEqual(instance.Get(), instance.Get()));
        CHECK_FALSE(CFEqual(instance.Get(), another.Get()));
    }
}

TEST_CASE_FIXTURE(Balanced, "There is an instance for each type of the list, and one of a type nobody knows") {
    for (const std::string &name : OpaqueTypeNames()) {
        CAPTURE(name);
        CHECK(CFRef<CFTypeRef>::Adopt(MakeInstance(name)));
        CHECK_EQ(kTypeIds.contains(name), name != "CFReadStream");
    }
    CHECK_EQ(OpaqueTypeNames().size(), kTypeIds.size() + 1);
    CHECK(Contains(RefusalOf([] { MakeInstance("CFNothing"); }), "CFNothing"));
}

TEST_CASE_FIXTURE(Balanced, "A retain function gives its argument back, passes null and takes no other type") {
    CheckRetain("CGColor", CGColorRetain);
    CheckRetain("CGColorSpace", CGColorSpaceRetain);
    CheckRetain("CGContext", CGContextRetain);
    CheckRetain("CGDataConsumer", CGDataConsumerRetain);
    CheckRetain("CGDataProvider", CGDataProviderRetain);
    CheckRetain("CGFont", CGFontRetain);
    CheckRetain("CGImage", CGImageRetain);
    CheckRetain("CGLayer", CGLayerRetain);
    CHECK_EQ(CGPathRetain(nullptr), nullptr);
    const auto path = CFRef<CFTypeRef>::Adopt(MakeInstance("CGPath"));
    const auto ref = static_cast<CGPathRef>(path.Get());
    CHECK_EQ(CGPathRetain(ref), ref);
    CFRelease(ref);
}

TEST_CASE_FIXTURE(Balanced, "A colour keeps its components") {
    const auto color = CFRef<CGColorRef>::Adopt(CGColorCreateGenericRGB(1, 128 / 255.0f, 0, 0.5f));
    CHECK_EQ(CFGetTypeID(color.Get()), CGColorGetTypeID());
    const std::array<CGFloat, 4> components{1, 128 / 255.0f, 0, 0.5f};
    CHECK(ComponentsOf(color.Get()) == components);
    const auto same = CFRef<CGColorRef>::Adopt(CGColorCreateGenericRGB(1, 128 / 255.0f, 0, 0.5f));
    CHECK(CFEqual(color.Get(), same.Get()));
    CHECK_EQ(CFHash(color.Get()), CFHash(same.Get()));
    const auto plain = CFRef<CFTypeRef>::Adopt(MakeInstance("CGColor"));
    CHECK_FALSE(CFEqual(color.Get(), plain.Get()));
    CHECK_FALSE(CFEqual(plain.Get(), color.Get()));
}

TEST_CASE_FIXTURE(Balanced, "The search window keeps its calls and answers what it was told to") {
    CHECK_EQ(HISearchWindowShow(CFSTR("text \u00E9"), 0), noErr);
    searchwindow::SetStatus(-50);
    CHECK_EQ(HISearchWindowShow(nullptr, 7), -50);
    REQUIRE_EQ(searchwindow::Calls().size(), 2);
    CHECK(searchwindow::Calls()[0].text == u"text \u00E9");
    CHECK_EQ(searchwindow::Calls()[0].options, 0);
    CHECK_FALSE(searchwindow::Calls()[1].text);
    CHECK_EQ(searchwindow::Calls()[1].options, 7);
    searchwindow::Reset();
    CHECK(searchwindow::Calls().empty());
    CHECK_EQ(HISearchWindowShow(nullptr, 0), noErr);
}
