// Host scalars, texts and colours on their way to Core Foundation, and how a variant's type and value are found on
// hosts that lack the services for it.
#include "tests/convert/value_session.h"
#include "tests/support/call_log.h"

#include "simulator/macos/ApplicationServices/colors.h"

#include <doctest/doctest.h>

#include <algorithm>

using sim::host::Color;
using sim::host::HostOptions;
using sim::host::Object;
using sim::host::Text;
using tests::CallLines;
using tests::CallLog;
using tests::CoreValue;
using tests::ValueSession;

TEST_CASE("Nil becomes nothing") {
    ValueSession session;
    CHECK(session.TextInCore(nullptr) == "none");
    CHECK(session.TextInCore(session.Host().NewVariant(0, "text")) == "none");
}

TEST_CASE("The host is not asked what nil is") {
    ValueSession session;
    CallLog log(session);
    session.FromHost(nullptr);
    CHECK(log.Take({"REALLoadGlobalMethod", "VarType(value As Variant) As Int32"}) == CallLines{});
}

TEST_CASE("An Int32 becomes a 32-bit number") {
    ValueSession session;
    CHECK(session.TextInCore(-7) == "SInt32 -7");
    CHECK(session.TextInCore(INT32_MIN) == "SInt32 -2147483648");
}

TEST_CASE("An Int64 becomes a 64-bit number") {
    ValueSession session;
    CHECK(session.TextInCore(int64_t{3'000'000'000}) == "SInt64 3000000000");
    CHECK(session.TextInCore(int64_t{700}) == "SInt64 700");
    CHECK(session.TextInCore(INT64_MIN) == "SInt64 -9223372036854775808");
}

TEST_CASE("A Single becomes a 32-bit float") {
    ValueSession session;
    CHECK(session.TextInCore(1.5F) == "Float32 1.5");
    CHECK(session.TextInCore(-0.25F) == "Float32 -0.25");
}

TEST_CASE("A Double becomes a 64-bit float, and so does code 6") {
    ValueSession session;
    CHECK(session.TextInCore(0.1) == "Float64 0.1");
    CHECK(session.TextInCore(session.Host().NewVariant(6, 1.25)) == "Float64 1.25");
}

TEST_CASE("A Date becomes a CFDate: the variant is the date itself") {
    ValueSession session;
    CHECK(session.TextInCore(session.Host().NewDate({2014, 6, 30, 23, 30, 59})) == "Date 425863859");
    Object unreadable = session.Host().NewDate({2014});
    unreadable.MakeDateUnreadable();
    CHECK(session.TextInCore(unreadable) == "none");
}

TEST_CASE("A boolean becomes the constant true or false, retained") {
    ValueSession session;
    CallLog log(session);
    CHECK(session.FromHost(true).Get() == kCFBooleanTrue);
    CHECK(session.FromHost(false).Get() == kCFBooleanFalse);
    CHECK(log.Take({"CFRetain"}) == CallLines{"CFRetain(CFBoolean)", "CFRetain(CFBoolean)"});
}

TEST_CASE("Only the low eight bits of a boolean variant's integer count: 256 is false") {
    ValueSession session;
    CHECK(session.TextInCore(session.Host().NewVariant(11, 256)) == "false");
    CHECK(session.TextInCore(session.Host().NewVariant(11, 257)) == "true");
    CHECK(session.TextInCore(session.Host().NewVariant(11, 0x80)) == "true");
    CHECK(session.TextInCore(session.Host().NewVariant(11, -256)) == "false");
}

TEST_CASE("A colour becomes an opaque CGColor of generic RGB, each component divided by 255") {
    ValueSession session;
    const CoreValue color = session.FromHost(Color{0xFF8000});
    const auto components = sim::macos::ComponentsOf(static_cast<CGColorRef>(const_cast<void *>(color.Get())));
    CHECK(components == std::array<CGFloat, 4>{1.0F, static_cast<CGFloat>(128 / 255.0), 0.0F, 1.0F});
    // What lies above the three bytes is no part of the colour.
    const CoreValue negative = session.FromHost(session.Host().NewVariant(16, -1));
    CHECK(sim::macos::ComponentsOf(static_cast<CGColorRef>(const_cast<void *>(negative.Get()))) ==
          std::array<CGFloat, 4>{1.0F, 1.0F, 1.0F, 1.0F});
    // Each colour has components of its own.
    const CoreValue blue = session.FromHost(Color{0x0000FF});
    CHECK(sim::macos::ComponentsOf(static_cast<CGColorRef>(const_cast<void *>(blue.Get()))) ==
          std::array<CGFloat, 4>{0.0F, 0.0F, 1.0F, 1.0F});
}

TEST_CASE("A String becomes a CFString with its characters, whatever its encoding, and is unlocked") {
    ValueSession session;
    CHECK(session.TextInCore("Größe, 大小, 🎈") == "\"Größe, 大小, 🎈\"");
    CHECK(session.TextInCore(Text{"Gr\xF6\xDF"
                                  "e",
                                  sim::host::kISOLatin1}) == "\"Größe\"");
    CHECK(session.TextInCore(Text{"\x8E", sim::host::kUnknownEncoding}) == "\"é\"");
    CHECK(session.Host().Alive("string") == 0);
}

TEST_CASE("A variant holding the empty string becomes the constant empty CFString, never nothing") {
    ValueSession session;
    const CoreValue empty = session.FromHost("");
    CHECK(tests::TextOf(empty) == "\"\"");
}

TEST_CASE("A string that cannot be converted becomes the constant empty CFString") {
    ValueSession session(HostOptions{.offersCFStrings = false});
    const CoreValue converted = session.FromHost(Text{"\xFF\xFF", sim::host::kUTF8});
    CHECK(tests::TextOf(converted) == "\"\"");
    // A constant of the plugin's own, which lives outside the counted world.
    CHECK(CFGetRetainCount(converted.Get()) > 1000000);
}

TEST_CASE("Every code without a branch of its own goes through the host's conversion to text") {
    ValueSession session;
    for (const int32_t code : {1,    8,    10,   12,   13,   14,   15,   17,        18, 100,   4095,
                               4096, 4097, 4102, 4106, 4108, 5000, 8192, INT32_MAX, -1, -4096, INT32_MIN}) {
        CAPTURE(code);
        CHECK(session.TextInCore(session.Host().NewVariant(code, "as text")) == "\"as text\"");
        CHECK(session.TextInCore(session.Host().NewVariant(code, 12)) == "\"12\"");
    }
}

TEST_CASE("An unlisted code whose variant has no text becomes the empty CFString") {
    ValueSession session;
    CHECK(session.TextInCore(session.Host().NewVariant(10, nullptr)) == "\"\"");
}

namespace {

constexpr const char *kVarType = "VarType(value As Variant) As Int32";

/// A host without the conversions, in which the properties of a variant must do.
HostOptions WithoutConversions() {
    return {.withheld = {"VariantToString", "VariantToInt32", "VariantToInt64", "VariantToSingle", "VariantToDouble"}};
}

} // namespace

TEST_CASE("The type code is loaded once as VarType and asked for each value") {
    ValueSession session;
    session.FromHost(1);
    session.FromHost("a");
    CHECK(session.Host().RequestCount(kVarType) == 1);
    CHECK(session.Host().CallCount(kVarType) == 2);
}

TEST_CASE("Without VarType the type code is the property Type, and VarType is looked for again each time") {
    HostOptions options;
    int32_t asked = 2;
    SUBCASE("the function is missing") { options.withheld = {kVarType}; }
    SUBCASE("functions cannot be loaded") {
        options.withheld = {"REALLoadGlobalMethod"};
        asked = 0;
    }
    SUBCASE("the property getter has its older name") { options.withheld = {kVarType, "REALGetPropValueInteger"}; }
    ValueSession session(options);
    CHECK(session.TextInCore(7) == "SInt32 7");
    CHECK(session.TextInCore(session.Host().NewArray("boolean", {true})) == "[true]");
    CHECK(session.Host().RequestCount(kVarType) == asked);
}

TEST_CASE("A value whose type cannot be told becomes nothing") {
    ValueSession session(HostOptions{.withheld = {kVarType, "REALGetPropValueInteger", "REALGetPropValueInt"}});
    CHECK(session.TextInCore(7) == "none");
    CHECK(session.TextInCore("text") == "none");
}

TEST_CASE("A type that cannot be read counts as nil") {
    ValueSession session(HostOptions{.withheld = {kVarType}});
    session.Host().ReturnNothing("REALGetPropValueInteger");
    CHECK(session.TextInCore(7) == "none");
}

TEST_CASE("Without the conversion services the scalars are read from the variant's properties") {
    ValueSession session(WithoutConversions());
    CHECK(session.TextInCore(-7) == "SInt32 -7");
    CHECK(session.TextInCore(int64_t{3'000'000'000}) == "SInt64 3000000000");
    CHECK(session.TextInCore(1.5F) == "Float32 1.5");
    CHECK(session.TextInCore(0.1) == "Float64 0.1");
    CHECK(session.TextInCore("text") == "\"text\"");
    CHECK(session.TextInCore(true) == "true");
    const auto names = session.Host().CallNames(true);
    const auto read = [&](const char *call) {
        return std::any_of(names.begin(), names.end(), [&](const auto &name) { return name.starts_with(call); });
    };
    CHECK(read("REALGetPropValueInt(\"Int32Value\""));
    CHECK(read("REALGetPropValueInt64(\"LongValue\""));
    CHECK(read("REALGetPropValueSingle(\"SingleValue\""));
    CHECK(read("REALGetPropValueDouble(\"DoubleValue\""));
    CHECK(read("REALGetPropValueString(\"StringValue\""));
}

TEST_CASE("Without conversions and properties a scalar counts as 0 and a string as empty") {
    HostOptions options = WithoutConversions();
    for (const char *name : {"REALGetPropValueInt", "REALGetPropValueInt64", "REALGetPropValueSingle",
                             "REALGetPropValueDouble", "REALGetPropValueString"})
        options.withheld.insert(name);
    ValueSession session(options);
    CHECK(session.TextInCore(-7) == "SInt32 0");
    CHECK(session.TextInCore(int64_t{3'000'000'000}) == "SInt32 0"); // the system's shared zero
    CHECK(session.TextInCore(1.5F) == "Float32 0");
    CHECK(session.TextInCore(0.1) == "Float64 0");
    CHECK(session.TextInCore("text") == "\"\"");
    CHECK(session.TextInCore(true) == "false");
}
