// There and back: what a value has become after both directions, and that nothing more changes after that.
#include "tests/convert/value_session.h"
#include "tests/support/temporary_folder.h"

#include "simulator/macos/ApplicationServices/colors.h"

#include <doctest/doctest.h>

using sim::host::Color;
using sim::host::Object;
using sim::host::Value;
using tests::CoreArray;
using tests::CoreDictionary;
using tests::CoreNumber;
using tests::CoreText;
using tests::CoreValue;
using tests::ValueSession;

namespace {

/// The host value after a way to Core Foundation and back.
std::string ThereAndBack(ValueSession &session, const Value &value) {
    return tests::TextOf(session.ToHost(session.FromHost(value)));
}

/// The Core Foundation value after a way to the host and back.
std::string BackAndThere(ValueSession &session, const CoreValue &value) {
    return tests::TextOf(session.FromHost(session.ToHost(value)));
}

} // namespace

TEST_CASE("A host value comes back from Core Foundation as it went") {
    ValueSession session;
    auto &host = session.Host();
    const tests::TemporaryFolder folder;
    const auto check = [&](const char *kind, const Value &value) {
        SUBCASE(kind) { CHECK(ThereAndBack(session, value) == tests::TextOf(value)); }
    };
    check("nil", nullptr);
    check("string", "Größe, 大小, 🎈");
    check("boolean true", true);
    check("boolean false", false);
    check("Int32", -700);
    check("Int64", int64_t{-3'000'000'000});
    check("double", 0.1);
    check("date", host.NewDate({1904, 2, 29, 23, 59, 59}));
    check("memory block", host.NewMemoryBlock(std::string_view("\0\xFFx", 3)));
    check("folder item that exists", host.NewFolderItem(folder.File("there")));
    check("folder item that does not exist yet", host.NewFolderItem(folder.PathOf("not there")));
    check("empty dictionary", host.NewDictionary());
    check("dictionary", host.NewDictionary({{"a", 1}, {2, host.NewDictionary({{"b", nullptr}})}, {false, 2.5}}));
    check("variant array", host.NewArray("variant", {1, "b", host.NewArray("variant", {true})}));
    check("empty array", host.NewArray("variant"));
    check("string array", host.NewArray("string", {"a", "b"}));
    check("boolean array", host.NewArray("boolean", {true, false}));
    check("date array", host.NewArray("date", {host.NewDate({2014, 6, 30})}));
}

TEST_CASE("What does not come back as it went comes back as the next best thing") {
    ValueSession session;
    auto &host = session.Host();
    CHECK(ThereAndBack(session, 1.5F) == "Double 1.5");
    CHECK(ThereAndBack(session, int64_t{7}) == "Integer 7"); // the system keeps small numbers in 32 bits
    CHECK(ThereAndBack(session, "") == "nil");
    CHECK(ThereAndBack(session, host.NewMemoryBlock("")) == "nil");
    CHECK(ThereAndBack(session, host.NewArray("variant", {1, nullptr, 2})) == "[Integer 1, Integer 2]");
    CHECK(ThereAndBack(session, host.NewArray("string", {"a", "", "b"})) == "[\"a\", nil, \"b\"]");
    CHECK(ThereAndBack(session, host.NewDate({2009, 2, 30, 12})) == "Date 2009-03-02 12:00:00");
}

TEST_CASE("A wrapper comes back as a wrapper of the same reference, if its type is wrapped by its class") {
    ValueSession session(tests::WithCompanions(tests::WrapperClasses()));
    for (const char *type : {"CGColorSpace", "CGImage", "CGLayer", "CGPath", "CGDataConsumer", "CGDataProvider",
                             "CGPSConverter", "CGContext", "CGFont", "CGEvent", "CGEventSource", "CFReadStream"}) {
        CAPTURE(std::string(type));
        const CoreValue value = tests::CoreInstance(type);
        const Value wrapper = session.ToHost(value);
        const CoreValue back = session.FromHost(wrapper);
        CHECK(back.Get() == value.Get());
        CHECK(tests::TextOf(session.ToHost(back)) == tests::TextOf(wrapper));
    }
}

TEST_CASE("A colour comes back as a CGColorQTX that holds it") {
    ValueSession session(tests::WithCompanions(tests::WrapperClasses()));
    const CoreValue color = session.FromHost(Color{0x336699});
    const Object wrapper = session.ToHost(color).As<Object>();
    CHECK(wrapper.ClassName() == "CGColorQTX");
    CHECK(session.FromHost(wrapper).Get() == color.Get());
}

TEST_CASE("A wrapper whose class is not read back becomes nothing") {
    ValueSession session(tests::WithCompanions(tests::WrapperClasses()));
    CHECK(BackAndThere(session, tests::CoreInstance("CFUUID")) == "none");
}

TEST_CASE("A Core Foundation value comes back from the host as it went") {
    ValueSession session;
    const tests::TemporaryFolder folder;
    const auto check = [&](const char *kind, const CoreValue &value) {
        SUBCASE(kind) { CHECK(BackAndThere(session, value) == tests::TextOf(value)); }
    };
    check("string", CoreText("Größe, 大小, 🎈"));
    check("true", tests::CoreTruth(true));
    check("false", tests::CoreTruth(false));
    check("32-bit number", tests::CoreInteger(INT32_MIN));
    check("64-bit number", CoreNumber<int64_t>(kCFNumberSInt64Type, INT64_MAX));
    check("64-bit float", tests::CoreDouble(-0.1));
    check("date of a whole second", tests::CoreDate(425863859));
    check("date before the epoch", tests::CoreDate(-63113904000.0));
    check("data", tests::CoreData(std::string_view("\0\xFF", 2)));
    check("URL of a file", tests::CoreFileURL(folder.File("file")));
    check("URL of a new file", tests::CoreFileURL(folder.PathOf("new")));
    check("empty array", CoreArray({}));
    check("array", CoreArray({CoreText("a"), CoreArray({tests::CoreTruth(false)})}));
    check("empty dictionary", CoreDictionary({}));
    check("dictionary", CoreDictionary({{CoreText("a"), CoreDictionary({{CoreText("b"), tests::CoreNull()}})},
                                        {tests::CoreInteger(700), CoreArray({CoreText("c")})}}));
}

TEST_CASE("What the host cannot express in Core Foundation's way comes back as the next best thing") {
    ValueSession session;
    CHECK(BackAndThere(session, CoreNumber<int8_t>(kCFNumberSInt8Type, 100)) == "SInt32 100");
    CHECK(BackAndThere(session, CoreNumber<int16_t>(kCFNumberSInt16Type, 300)) == "SInt32 300");
    CHECK(BackAndThere(session, CoreNumber<float>(kCFNumberFloat32Type, 1.5F)) == "Float64 1.5");
    CHECK(BackAndThere(session, tests::CoreDate(0.9)) == "Date 0");
    CHECK(BackAndThere(session, tests::CoreNull()) == "none");
    CHECK(BackAndThere(session, CoreText("")) == "none");
    CHECK(BackAndThere(session, tests::CoreData("")) == "none");
    CHECK(BackAndThere(session, tests::CoreURL("http://example.org/")) == "\"http://example.org/\"");
    CHECK(BackAndThere(session, CoreArray({tests::CoreNull(), CoreText("a")})) == "[\"a\"]");
    CHECK(BackAndThere(session, CoreDictionary({{CoreText("a"), CoreText("")}})) == "{\"a\": null}");
    // A nil key cannot be told from none.
    CHECK(BackAndThere(session, CoreDictionary({{tests::CoreNull(), CoreText("a")}})) == "{}");
}
