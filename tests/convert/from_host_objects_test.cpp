// Host objects on their way to Core Foundation: memory blocks, folder items, geometry, and the wrappers of companions.
#include "tests/convert/value_session.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cstring>

using sim::host::HostOptions;
using sim::host::Object;
using tests::CoreInstance;
using tests::CoreValue;
using tests::ValueSession;

namespace {

constexpr const char *kTrueItem = "TrueItem(Index as integer) as Folderitem";

/// A class whose instances are plain numbers.
HostOptions WithNumbers(const char *name, uint32_t count) {
    HostOptions options;
    options.companions = {{.name = name, .wraps = false, .dataSize = count * 8}};
    return options;
}

std::string TextOfNumbers(const char *name, std::initializer_list<double> numbers) {
    ValueSession session(WithNumbers(name, static_cast<uint32_t>(numbers.size())));
    const Object object = session.Host().Create(name);
    std::memcpy(object.Data(), std::data(numbers), numbers.size() * sizeof(double));
    return session.TextInCore(object);
}

/// A wrapper that owns one retain of the value.
Object NewWrapper(ValueSession &session, const std::string &className, CFTypeRef value) {
    Object wrapper = session.Host().Create(className);
    if (value)
        CFRetain(value);
    std::memcpy(wrapper.Data(), &value, sizeof value);
    return wrapper;
}

const char *const kWrappers[] = {
    "CGImageQTX",        "CGColorSpaceQTX", "CGColorQTX",        "CGDataProviderQTX",
    "CGDataConsumerQTX", "CGFontQTX",       "CGContextQTX",      "CGEventQTX",
    "CGEventSourceQTX",  "CGLayerQTX",      "CGPathQTX",         "CGPSConverterQTX",
    "KeychainQTX",       "KeychainItemQTX", "CFObjectQTX",       "NSAttributedStringQTX",
    "NSTimerQTX",        "NSCalendarQTX",   "NSCharacterSetQTX", "NSErrorQTX",
    "NSLocaleQTX",       "NSTimeZoneQTX",
};

/// The type of what a wrapper of that class would hold.
std::string TypeFor(const std::string &className) {
    const auto &names = sim::macos::OpaqueTypeNames();
    const std::string name = className.substr(0, className.size() - 3);
    return std::find(names.begin(), names.end(), name) == names.end() ? "CFReadStream" : name;
}

} // namespace

TEST_CASE("A MemoryBlock becomes CFData with its bytes, and is locked while they are read") {
    ValueSession session;
    const Object block = session.Host().NewMemoryBlock(std::string_view("\0ab\xFF", 4));
    session.Host().ClearLog();
    CHECK(session.TextInCore(block) == "Data 006162ff");
    const auto names = session.Host().CallNames();
    const auto at = [&](const char *name) { return std::find(names.begin(), names.end(), name) - names.begin(); };
    CHECK(at("REALLockObject") < at("memoryBlockGetSize"));
    CHECK(at("memoryBlockGetSize") < at("memoryBlockGetPtr"));
    CHECK(at("memoryBlockGetPtr") < at("REALUnlockObject"));
    CHECK(block.References() == 1);
}

TEST_CASE("Each MemoryBlock becomes CFData of its own size and bytes") {
    ValueSession session;
    for (const auto &[bytes, text] : {std::pair{"ab", "Data 6162"}, std::pair{"xyz", "Data 78797a"}})
        CHECK(session.TextInCore(session.Host().NewMemoryBlock(bytes)) == text);
}

TEST_CASE("A MemoryBlock without bytes becomes empty CFData") {
    ValueSession session;
    CHECK(session.TextInCore(session.Host().NewMemoryBlock("")) == "Data ");
}

TEST_CASE("A MemoryBlock with a negative size becomes empty CFData") {
    ValueSession session;
    const Object block = session.Host().NewMemoryBlock("abc");
    block.ReportSize(-1);
    CHECK(session.TextInCore(block) == "Data ");
    block.ReportSize(INT32_MIN);
    CHECK(session.TextInCore(block) == "Data ");
}

TEST_CASE("A MemoryBlock that reports fewer bytes than it has gives those") {
    ValueSession session;
    const Object block = session.Host().NewMemoryBlock("abc");
    block.ReportSize(2);
    CHECK(session.TextInCore(block) == "Data 6162");
}

TEST_CASE("A MemoryBlock that reports bytes but has no memory becomes empty CFData") {
    ValueSession session;
    const Object block = session.Host().NewMemoryBlock("");
    block.ReportSize(1000000);
    CHECK(session.TextInCore(block) == "Data ");
}

TEST_CASE("A MemoryBlock of a host that lacks a service becomes empty CFData") {
    for (const char *service : {"memoryBlockGetSize", "memoryBlockGetPtr"}) {
        ValueSession session(HostOptions{.withheld = {service}});
        CHECK(session.TextInCore(session.Host().NewMemoryBlock("abc")) == "Data ");
    }
}

TEST_CASE("A MemoryBlock is not given up where it could not be locked") {
    ValueSession session(HostOptions{.withheld = {"REALLockObject"}});
    const Object block = session.Host().NewMemoryBlock("abc");
    CHECK(session.TextInCore(block) == "Data 616263");
    CHECK(block.References() == 1);
}

TEST_CASE("A folder item is recognised by its method TrueItem, and becomes its file URL") {
    ValueSession session;
    const Object item = session.Host().NewFolderItem("/usr");
    CHECK(session.TextInCore(item) == "URL file:///usr/");
    const auto &requests = session.Host().Requests();
    CHECK(std::any_of(requests.begin(), requests.end(),
                      [](const auto &request) { return request.name == std::string("FolderItem.") + kTrueItem; }));
}

TEST_CASE("A folder item for something new in an existing folder becomes the URL of that name") {
    ValueSession session;
    CHECK(session.TextInCore(session.Host().NewFolderItem("/usr/nobody has this")) ==
          "URL file:///usr/nobody%20has%20this");
}

TEST_CASE("A folder item that names nothing, or something in a folder that is not there, becomes nothing") {
    ValueSession session;
    CHECK(session.TextInCore(session.Host().NewFolderItem("")) == "none");
    CHECK(session.TextInCore(session.Host().NewFolderItem("/no such folder/file")) == "none");
}

TEST_CASE("A folder item of a host that cannot load methods is no folder item and becomes nothing") {
    ValueSession session(HostOptions{.withheld = {"REALLoadObjectMethod"}});
    CHECK(session.TextInCore(session.Host().NewFolderItem("/usr")) == "none");
}

TEST_CASE("A CGRectQTX becomes CFData of four 32-bit floats: x, y, width, height") {
    CHECK(TextOfNumbers("CGRectQTX", {1, -2, 3.5, 0.1}) == "Data 0000803f000000c000006040cdcccc3d");
}

TEST_CASE("A CGSizeQTX becomes CFData of two 32-bit floats: width, height") {
    CHECK(TextOfNumbers("CGSizeQTX", {1, -2}) == "Data 0000803f000000c0");
}

TEST_CASE("A CGPointQTX becomes CFData of two 32-bit floats: x, y") {
    CHECK(TextOfNumbers("CGPointQTX", {3.5, 1e300}) == "Data 000060400000807f");
}

TEST_CASE("A wrapper of each known class gives what it holds, retained") {
    for (const char *className : kWrappers) {
        SUBCASE((std::string(className) + " gives what it holds").c_str()) {
            ValueSession session(tests::WithCompanions(tests::WrapperClasses()));
            const CoreValue value = CoreInstance(TypeFor(className));
            const Object wrapper = NewWrapper(session, className, value.Get());
            {
                const CoreValue converted = session.FromHost(wrapper);
                CHECK(converted.Get() == value.Get());
                CHECK(CFGetRetainCount(value.Get()) == 3); // this test's, the wrapper's and the result's
            }
            CHECK(CFGetRetainCount(value.Get()) == 2);
        }
        SUBCASE((std::string(className) + " that holds nothing gives nothing").c_str()) {
            ValueSession session(tests::WithCompanions(tests::WrapperClasses()));
            CHECK(session.TextInCore(NewWrapper(session, className, nullptr)) == "none");
        }
    }
}

TEST_CASE("The classes are tested in a fixed order, each looked up by name at every object") {
    ValueSession session(tests::WithCompanions({"NSTimeZoneQTX"}));
    const Object wrapper = NewWrapper(session, "NSTimeZoneQTX", nullptr);
    session.FromHost(wrapper);
    session.Host().ClearLog();
    session.FromHost(wrapper);
    std::vector<std::string> asked;
    for (const std::string &call : session.Host().CallNames(true))
        if (call.starts_with("pluginObjectType("))
            asked.push_back(call);
    std::vector<std::string> expected;
    const auto expect = [&](const std::string &name) { expected.push_back("pluginObjectType(\"" + name + "\")"); };
    for (const char *name : {"MemoryBlock", "Dictionary", "CGRectQTX", "CGSizeQTX", "CGPointQTX"})
        expect(name);
    for (const char *name : kWrappers)
        expect(name);
    CHECK(asked == expected);
}

TEST_CASE("A subclass of a known wrapper is read as its superclass is, and the earlier class decides") {
    HostOptions options = tests::WithCompanions({"CFObjectQTX"});
    options.companions.push_back({.name = "CFStringQTX", .superName = "CFObjectQTX"});
    ValueSession session(options);
    const CoreValue held = tests::CoreText("held");
    CHECK(session.TextInCore(NewWrapper(session, "CFStringQTX", held.Get())) == "\"held\"");
}

TEST_CASE("An object of a class that the plugin does not know becomes nothing") {
    HostOptions options;
    options.companions = {{.name = "SomethingElseQTX"}};
    ValueSession session(options);
    CHECK(session.TextInCore(session.Host().Create("SomethingElseQTX")) == "none");
    CHECK(session.TextInCore(session.Host().Create("MDItemQTX")) == "none");
    CHECK(session.TakeException() == "");
}

TEST_CASE("A host that cannot tell an object's class finds folder items only") {
    for (const char *service : {"pluginObjectType", "RuntimeObjectIsa"}) {
        ValueSession session(HostOptions{.withheld = {service}});
        CHECK(session.TextInCore(session.Host().NewMemoryBlock("abc")) == "none");
        CHECK(session.TextInCore(session.Host().NewDictionary({{"a", 1}})) == "none");
        CHECK(session.TextInCore(session.Host().NewFolderItem("/usr")) == "URL file:///usr/");
    }
}

TEST_CASE("Companions' data is read where the host says that root classes begin, on every access") {
    HostOptions options = tests::WithCompanions({"CFObjectQTX"});
    options.rootDataOffset = 48;
    ValueSession session(options);
    const CoreValue held = tests::CoreText("held");
    CHECK(session.TextInCore(NewWrapper(session, "CFObjectQTX", held.Get())) == "\"held\"");
}

TEST_CASE("The place of companions' data is read anew at each conversion") {
    HostOptions options;
    options.companions = {{.name = "CGPointQTX", .wraps = false, .dataSize = 64}};
    ValueSession session(options);
    const Object point = session.Host().Create("CGPointQTX");
    auto *const bytes = static_cast<char *>(point.Data());
    const double early[] = {1, 2}, late[] = {3, 4};
    std::memcpy(bytes, early, sizeof early);
    std::memcpy(bytes + 32, late, sizeof late);
    const auto begin = static_cast<int32_t>(bytes - static_cast<char *>(point.Address()));
    const std::string earlyText = "Data 0000803f00000040", lateText = "Data 0000404000008040";
    CHECK(session.TextInCore(point) == earlyText);
    session.Host().SetForSystemUse("MDItemQTX", begin + 32);
    CHECK(session.TextInCore(point) == lateText);
    session.Host().SetForSystemUse("MDItemQTX", begin);
    CHECK(session.TextInCore(point) == earlyText);
}
