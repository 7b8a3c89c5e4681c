// References without a natural host value, in the wrapper classes of companion plugins: which class each type gets,
// what happens when the application lacks it, and when an instance is no wrapper.
#include "tests/convert/value_session.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cstring>

using sim::host::HostOptions;
using sim::host::Object;
using sim::host::Value;
using tests::CoreInstance;
using tests::CoreValue;
using tests::ValueSession;

namespace {

struct Row {
    const char *typeName;
    const char *className;
};

/// Kept by a retain function of their own; there is no class to fall back on.
const Row kOwnRetain[] = {
    {"CGColorSpace", "CGColorSpaceQTX"},
    {"CGColor", "CGColorQTX"},
    {"CGImage", "CGImageQTX"},
    {"CGLayer", "CGLayerQTX"},
    {"CGPath", "CGPathQTX"},
    {"CGDataConsumer", "CGDataConsumerQTX"},
    {"CGDataProvider", "CGDataProviderQTX"},
    {"CGPSConverter", "CGPSConverterQTX"},
    {"CGContext", "CGContextQTX"},
    {"CGFont", "CGFontQTX"},
};

/// Kept by CFRetain, in "CFObjectQTX" where the class is missing.
const Row kPlainRetain[] = {
    {"CGEvent", "CGEventQTX"},
    {"CGEventSource", "CGEventSourceQTX"},
    {"CFCharacterSet", "CFCharacterSetQTX"},
    {"CFBundle", "CFBundleQTX"},
    {"CFSet", "CFSetQTX"},
    {"CFBag", "CFBagQTX"},
    {"CFUUID", "CFUUIDQTX"},
    {"CFTimeZone", "CFTimeZoneQTX"},
    {"CFAttributedString", "CFAttributedStringQTX"},
    {"CFError", "CFErrorQTX"},
    {"CTFont", "CTFontQTX"},
    {"CTFontCollection", "CTFontCollectionQTX"},
    {"CTFrame", "CTFrameQTX"},
    {"CTFramesetter", "CTFramesetterQTX"},
    {"CTGlyphInfo", "CTGlyphInfoQTX"},
    {"CTLine", "CTLineQTX"},
    {"CTParagraphStyle", "CTParagraphStyleQTX"},
    {"CTRun", "CTRunQTX"},
    {"CTTypesetter", "CTTypesetterQTX"},
    {"CTRunDelegate", "CTRunDelegateQTX"},
    {"CFReadStream", "CFObjectQTX"},
};

std::string Titled(const Row &row, const char *rest) { return std::string("a ") + row.typeName + " " + rest; }

void CheckWrapped(ValueSession &session, const char *typeName, const std::string &className) {
    const CoreValue value = CoreInstance(typeName);
    const CFIndex before = CFGetRetainCount(value.Get());
    const Object wrapper = session.ToHost(value).As<Object>();
    REQUIRE(wrapper.ClassName() == className);
    CHECK(tests::HeldBy(wrapper) == value.Get());
    CHECK(CFGetRetainCount(value.Get()) == before + 1);
    CHECK(wrapper.References() == 1);
}

HostOptions WithTag(const char *className, uint32_t tag) {
    HostOptions options;
    options.companions = {{.name = className, .tag = tag}};
    return options;
}

} // namespace

TEST_CASE("Each type of the map is wrapped by its class, which owns one retain of the value") {
    const auto check = [](const Row &row) {
        SUBCASE(Titled(row, (std::string("becomes a ") + row.className).c_str()).c_str()) {
            ValueSession session(tests::WithCompanions(tests::WrapperClasses()));
            CheckWrapped(session, row.typeName, row.className);
        }
    };
    for (const Row &row : kOwnRetain)
        check(row);
    for (const Row &row : kPlainRetain)
        check(row);
}

TEST_CASE("Values of several types get wrappers each of its own class, in whatever order they come") {
    ValueSession session(tests::WithCompanions(tests::WrapperClasses()));
    for (const char *type : {"CFSet", "CFUUID", "CFReadStream", "CFBag"})
        CheckWrapped(session, type, std::string(type) == "CFReadStream" ? "CFObjectQTX" : std::string(type) + "QTX");
}

TEST_CASE("A type with a retain function of its own gives nil without its class, even where CFObjectQTX is there") {
    for (const Row &row : kOwnRetain) {
        SUBCASE(Titled(row, "without its class").c_str()) {
            ValueSession session(tests::WithCompanions({"CFObjectQTX"}));
            CHECK(session.ToHost(CoreInstance(row.typeName)).IsNil());
            CHECK(session.Host().CallCount("PluginNewInstance") == 1);
        }
    }
}

TEST_CASE("Any other type falls back on CFObjectQTX, and gives nil without that too") {
    for (const Row &row : kPlainRetain) {
        SUBCASE(Titled(row, "falls back on CFObjectQTX").c_str()) {
            ValueSession session(tests::WithCompanions({"CFObjectQTX"}));
            CheckWrapped(session, row.typeName, "CFObjectQTX");
        }
        SUBCASE(Titled(row, "gives nil without any wrapper class").c_str()) {
            ValueSession session;
            session.Host().ClearLog();
            CHECK(session.ToHost(CoreInstance(row.typeName)).IsNil());
            const auto calls = session.Host().CallNames(true);
            const auto asked = [&](const std::string &name) {
                return std::count(calls.begin(), calls.end(), "PluginNewInstance(\"" + name + "\")");
            };
            // "CFObjectQTX" itself is tried twice.
            CHECK(asked(row.className) == (std::string("CFObjectQTX") == row.className ? 2 : 1));
            CHECK(asked("CFObjectQTX") == (std::string("CFObjectQTX") == row.className ? 2 : 1));
        }
    }
}

TEST_CASE("Types with a natural host value never reach the wrapper class that the map has for them") {
    ValueSession session(tests::WithCompanions(tests::WrapperClasses()));
    const auto check = [&](const char *className, const CoreValue &value, const std::string &expected) {
        SUBCASE((std::string(className) + " is never made").c_str()) {
            CHECK(session.TextInHost(value) == expected);
            for (const auto &call : session.Host().Calls())
                CHECK(call.text != "PluginNewInstance(\"" + std::string(className) + "\")");
        }
    };
    check("CFURLQTX", tests::CoreURL("http://example.org/"), "\"http://example.org/\"");
    check("CFDictionaryQTX", tests::CoreDictionary({}), "{}");
    check("CFStringQTX", tests::CoreText("text"), "\"text\"");
    check("CFNumberQTX", tests::CoreInteger(7), "Integer 7");
    check("CFArrayQTX", tests::CoreArray({}), "[]");
    check("CFBooleanQTX", tests::CoreTruth(true), "true");
    check("CFBinaryDataQTX", tests::CoreData("ab"), "MemoryBlock 6162");
    check("CFDateQTX", tests::CoreDate(0), "Date 2001-01-01 00:00:00");
}

TEST_CASE("A wrapper of a type with its own retain function is tagged, whatever its tag was") {
    ValueSession session(WithTag("CGImageQTX", 7));
    const CoreValue image = CoreInstance("CGImage");
    const Object wrapper = session.ToHost(image).As<Object>();
    CHECK(tests::HeldBy(wrapper) == image.Get());
    uint32_t words[3];
    std::memcpy(words, wrapper.Data(), sizeof words);
    CHECK(words[2] == 0x52424346);
}

TEST_CASE("An instance without a wrapper's tag gives nil: it is left as it is, and not given up") {
    SUBCASE("of the type's own class") {
        ValueSession session(WithTag("CFUUIDQTX", 7));
        const CoreValue value = CoreInstance("CFUUID");
        CHECK(session.ToHost(value).IsNil());
        CHECK(session.Host().Alive("CFUUIDQTX") == 1);
        CHECK(CFGetRetainCount(value.Get()) == 1);
        session.Host().ExpectLeft("CFUUIDQTX", 1);
    }
    SUBCASE("of CFObjectQTX") {
        ValueSession session(WithTag("CFObjectQTX", 0));
        CHECK(session.ToHost(CoreInstance("CGEvent")).IsNil());
        session.Host().ExpectLeft("CFObjectQTX", 1);
    }
    SUBCASE("a wrong tag of the type's own class is not made good by CFObjectQTX") {
        HostOptions options = WithTag("CFUUIDQTX", 7);
        options.companions.push_back({.name = "CFObjectQTX"});
        ValueSession session(options);
        CHECK(session.ToHost(CoreInstance("CFUUID")).IsNil());
        CHECK(session.Host().Alive("CFObjectQTX") == 0);
        session.Host().ExpectLeft("CFUUIDQTX", 1);
    }
}

TEST_CASE("A wrapper's data is found where the host says that root classes begin") {
    HostOptions options = tests::WithCompanions({"CFUUIDQTX", "CGImageQTX"});
    options.rootDataOffset = 40;
    ValueSession session(options);
    CheckWrapped(session, "CFUUID", "CFUUIDQTX");
    CheckWrapped(session, "CGImage", "CGImageQTX");
}

TEST_CASE("Where a wrapper's data is found is asked at each conversion") {
    // Not declared as a wrapper, so that the host leaves what is written there to this test.
    HostOptions options;
    options.companions = {{.name = "CGImageQTX", .wraps = false, .dataSize = 64}};
    ValueSession session(options);
    const CoreValue image = CoreInstance("CGImage");
    int32_t begin = 0;
    for (const int32_t further : {0, 32, 0}) {
        CAPTURE(further);
        if (begin != 0)
            session.Host().SetForSystemUse("MDItemQTX", begin + further);
        Object item = session.ItemWith(image.Get());
        const auto wrapper = item.Call<Object>("GetAttribute", "value");
        const auto *const bytes = static_cast<const char *>(wrapper.Data());
        begin = static_cast<int32_t>(bytes - static_cast<const char *>(wrapper.Address()));
        CFTypeRef held = nullptr;
        std::memcpy(&held, bytes + further, sizeof held);
        REQUIRE(held == image.Get());
        CFRelease(held);
    }
}

TEST_CASE("A host that cannot make instances gives nil for every reference") {
    ValueSession session(tests::WithCompanions(tests::WrapperClasses()));
    Object keptByItsOwn = session.ItemWith(CoreInstance("CGImage").Get());
    Object keptPlainly = session.ItemWith(CoreInstance("CFUUID").Get());
    session.Host().Withhold("PluginNewInstance");
    CHECK(keptByItsOwn.Call("GetAttribute", "value").IsNil());
    CHECK(keptPlainly.Call("GetAttribute", "value").IsNil());
}
