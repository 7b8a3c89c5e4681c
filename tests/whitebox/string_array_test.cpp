// Elements of host string arrays: the checks of the index, and the two ways in which hosts give an element.
#include <doctest/doctest.h>

#include "convert/arrays.h"
#include "host/arrays.h"
#include "tests/support/host_ages.h"
#include "tests/whitebox/small_host.h"

#include <utility>

using tests::AtAges;
using whitebox::HostException;
using whitebox::HostText;
using whitebox::SmallHost;

namespace {

constexpr double kArrayVersions[] = {0.0, 2011.4, 2012.5, 2015.99, 2016.0, 3000.0};

_REALarrayString *ThreeStrings(SmallHost &host, bool isDirect = false) {
    return host.NewArray({host.NewString("one", 0x0600), nullptr, host.NewString("three", 0x0600)}, isDirect);
}

std::string MessageOfOne(SmallHost &host) {
    REQUIRE(host.raised.size() == 1);
    const HostException raised = std::exchange(host.raised, {}).front();
    CHECK(raised.className == "OutOfBoundsException");
    CHECK(raised.errorNumber == 0);
    return raised.message.value_or(HostText{}).bytes;
}

} // namespace

TEST_CASE("A null array has no elements, and the host is not asked") {
    SmallHost host(2013.04);
    CHECK(REALGetArrayString(nullptr, 0) == nullptr);
    CHECK(REALGetArrayString(nullptr, -1) == nullptr);
    CHECK(host.Calls().empty());
}

TEST_CASE("Index -1 on a three-element array raises \"OutOfBoundsException\" and gives null") {
    AtAges(kArrayVersions, [&](double version) {
        for (const bool isDirect : {false, true}) {
            SmallHost host(version);
            CHECK(REALGetArrayString(ThreeStrings(host, isDirect), -1) == nullptr);
            CHECK(MessageOfOne(host) == "Parameter index  is too small. Range is 0 to 2, but value is -1.");
        }
    });
}

TEST_CASE("Index 3 on a three-element array raises \"OutOfBoundsException\" and gives null") {
    AtAges(kArrayVersions, [&](double version) {
        for (const bool isDirect : {false, true}) {
            SmallHost host(version);
            CHECK(REALGetArrayString(ThreeStrings(host, isDirect), 3) == nullptr);
            CHECK(MessageOfOne(host) == "Parameter index  is too big. Range is 0 to 2, but value is 3.");
        }
    });
}

TEST_CASE("An index outside the array builds no string but the message") {
    SmallHost host(2013.04);
    CHECK_FALSE(ReadArrayString(ThreeStrings(host), 3));
    CHECK(host.CallCount("REALBuildString") == 1);
    CHECK(MessageOfOne(host) == "Parameter index  is too big. Range is 0 to 2, but value is 3.");
}

TEST_CASE("Whether elements lie in a table is seen at each array, and never from 2016.0 on") {
    AtAges({2011.4, 2015.99, 2016.0}, [&](double version) {
        SmallHost host(version);
        for (const bool isDirect : {true, false, true})
            CHECK(HasDirectElements(ThreeStrings(host, isDirect)) == (isDirect && version < 2016.0));
    });
}

TEST_CASE("An upper bound is never below -1, nor above what can be counted past") {
    SmallHost host(2013.04);
    _REALarrayString *array = host.NewArray({}, false);
    const struct {
        int32_t told, taken;
    } rows[] = {{INT32_MIN, -1},           {-2, -1}, {-1, -1}, {0, 0}, {7, 7}, {INT32_MAX - 2, INT32_MAX - 2},
                {INT32_MAX, INT32_MAX - 2}};
    for (const auto &row : rows) {
        host.SetUpperBound(array, row.told);
        CHECK(UpperBoundOf(array) == row.taken);
    }
}

TEST_CASE("The range of an empty array reads 0 to -1") {
    SmallHost host(2013.04);
    CHECK(REALGetArrayString(host.NewArray({}, false), 0) == nullptr);
    CHECK(MessageOfOne(host) == "Parameter index  is too big. Range is 0 to -1, but value is 0.");
}

TEST_CASE("Without \"RuntimeUBound\" every array counts as one of a single element") {
    SmallHost host(2013.04);
    host.Withhold("RuntimeUBound");
    _REALarrayString *array = ThreeStrings(host);
    CHECK(host.Take(REALGetArrayString(array, 0)) == HostText{"one", 0x0600});
    CHECK(REALGetArrayString(array, 1) == nullptr);
    CHECK(MessageOfOne(host) == "Parameter index  is too big. Range is 0 to 0, but value is 1.");
}

TEST_CASE("Below 2016.0 an element is read from the table without a host call, and locked") {
    AtAges({0.0, 2011.4, 2012.5, 2015.99}, [&](double version) {
        SmallHost host(version);
        _REALarrayString *array = ThreeStrings(host, true);
        REALstringStruct *string = REALGetArrayString(array, 2);
        CHECK(host.Calls() == std::vector<std::string>{"RuntimeUBound()", "REALLockString()"});
        CHECK(host.Take(string) == HostText{"three", 0x0600});
        CHECK(REALGetArrayString(array, 1) == nullptr);
        CHECK(host.CallCount("REALLockString") == 1);
        CHECK(host.CallCount("RuntimeDirectReadStringArray") == 0);
    });
}

TEST_CASE("Below 2016.0 an array without a table is read through the host") {
    SmallHost host(2011.4);
    _REALarrayString *array = ThreeStrings(host, false);
    REALstringStruct *string = REALGetArrayString(array, 2);
    CHECK(host.Calls() == std::vector<std::string>{"RuntimeUBound()", "RuntimeDirectReadStringArray(2)"});
    CHECK(host.Take(string) == HostText{"three", 0x0600});
}

TEST_CASE("From 2016.0 on the place of the table is not looked at") {
    AtAges({2016.0, 3000.0}, [&](double version) {
        SmallHost host(version);
        _REALarrayString *array = ThreeStrings(host, true); // It points to where nothing may be read.
        CHECK(host.Take(REALGetArrayString(array, 0)) == HostText{"one", 0x0600});
        CHECK(host.CallCount("RuntimeDirectReadStringArray") == 1);
    });
}

TEST_CASE("A host without \"RuntimeDirectReadStringArray\" gives no elements") {
    SmallHost host(2016.0);
    host.Withhold("RuntimeDirectReadStringArray");
    CHECK(REALGetArrayString(ThreeStrings(host), 0) == nullptr);
    CHECK(host.raised.empty());
}

TEST_CASE("An array with an upper bound below -1 becomes an empty array") {
    for (const int32_t upperBound : {-1, -2, -3, -1000, INT32_MIN}) {
        SmallHost host(2013.04);
        _REALarrayString *array = host.NewArray({}, false);
        host.SetUpperBound(array, upperBound);
        const auto strings = OwnedCF<CFMutableArrayRef>::Adopt(NewCFStringArray(array));
        REQUIRE(strings);
        CHECK(CFArrayGetCount(strings.Get()) == 0);
        CHECK(host.raised.empty());
    }
}

namespace {

OwnedCF<CFArrayRef> NewCFArray(std::vector<const void *> texts, const CFArrayCallBacks *callBacks) {
    return OwnedCF<CFArrayRef>::Adopt(
        CFArrayCreate(kCFAllocatorDefault, texts.data(), static_cast<CFIndex>(texts.size()), callBacks));
}

using Texts = std::vector<std::optional<HostText>>;

} // namespace

TEST_CASE("Three strings added to a host array that already holds \"x\" give the three strings followed by \"x\"") {
    AtAges(kArrayVersions, [&](double version) {
        SmallHost host(version);
        _REALarrayString *array = host.NewArray({host.NewString("x", kCFStringEncodingUTF8)}, false);
        AddStringArray(array, NewCFArray({CFSTR("one"), CFSTR("two"), CFSTR("three")}, &kCFTypeArrayCallBacks).Get());
        CHECK(host.Elements(array) ==
              Texts{HostText{"one", kCFStringEncodingUTF8}, HostText{"two", kCFStringEncodingUTF8},
                    HostText{"three", kCFStringEncodingUTF8}, HostText{"x", kCFStringEncodingUTF8}});
        CHECK(host.Alive() == 4);
    });
}

TEST_CASE("Adding an empty CFArray leaves the host array unchanged") {
    SmallHost host(2013.04);
    _REALarrayString *array = host.NewArray({host.NewString("x", kCFStringEncodingUTF8)}, false);
    AddStringArray(array, NewCFArray({}, &kCFTypeArrayCallBacks).Get());
    CHECK(host.Elements(array) == Texts{HostText{"x", kCFStringEncodingUTF8}});
    CHECK(host.Calls().empty());
}

TEST_CASE(
    "A null element of a CFArray is skipped and takes no place, while a text that converts to nothing takes one") {
    SmallHost host(2013.04);
    _REALarrayString *array = host.NewArray({}, false);
    AddStringArray(array,
                   NewCFArray({nullptr, CFSTR("one"), nullptr, CFSTR(""), CFSTR("two"), nullptr}, nullptr).Get());
    CHECK(host.Elements(array) ==
          Texts{HostText{"one", kCFStringEncodingUTF8}, std::nullopt, HostText{"two", kCFStringEncodingUTF8}});
    CHECK(host.Alive() == 2);
}

TEST_CASE("Strings for an array without an insert function are released") {
    SmallHost host(2013.04);
    host.Withhold("PluginStringArrayInsertProc");
    _REALarrayString *array = host.NewArray({host.NewString("x", kCFStringEncodingUTF8)}, false);
    AddStringArray(array, NewCFArray({CFSTR("one"), CFSTR("two")}, &kCFTypeArrayCallBacks).Get());
    CHECK(host.Elements(array) == Texts{HostText{"x", kCFStringEncodingUTF8}});
    CHECK(host.Alive() == 1);
}

TEST_CASE("Strings for an array that the host could not make go nowhere") {
    SmallHost host(2013.04);
    AddStringArray(nullptr, NewCFArray({CFSTR("one"), CFSTR("two")}, &kCFTypeArrayCallBacks).Get());
    CHECK(host.CallCount("PluginStringArrayInsertProc") == 0);
    CHECK(host.Alive() == 0);
}
