// Reading host strings where the host is wrong about them, and Core Foundation strings too long to be converted. What a
// sound host sees is tested from outside.
#include <doctest/doctest.h>

#include "host/owned.h"
#include "host/strings.h"
#include "tests/support/host_ages.h"
#include "tests/whitebox/failing_memory.h"
#include "tests/whitebox/small_host.h"

using tests::AtAges;
using whitebox::FailingMemory;
using whitebox::SmallHost;

namespace {

/// An old host's string that says of itself what the test wants.
struct OldString {
    uint32_t unknown1;
    const char *storage;
    uint32_t unknown2;
    int32_t length;

    REALstringStruct *Handle() { return reinterpret_cast<REALstringStruct *>(this); }
};

/// A host that can only be read directly.
class SilentHost : public SmallHost {
public:
    SilentHost() : SmallHost(2011.4) {
        for (const char *service : {"REALGetStringEncoding", "REALLockString", "REALUnlockString"})
            Withhold(service);
    }
};

} // namespace

TEST_CASE("A string that claims a length but has no bytes, or a negative length, is not read") {
    SilentHost host;
    OldString withoutStorage{0, nullptr, 0, 3};
    CHECK(RBString2CFString(withoutStorage.Handle()) == nullptr);
    OldString negative{0, "\3abc", 0, -1};
    CHECK(RBString2CFString(negative.Handle()) == nullptr);
    negative.length = INT32_MIN;
    CHECK(RBString2CFString(negative.Handle()) == nullptr);
}

TEST_CASE("A string of length 0 is the empty string, with bytes or without") {
    SilentHost host;
    for (const char *storage : {"", static_cast<const char *>(nullptr)}) {
        OldString empty{0, storage, 0, 0};
        const auto string = OwnedCF<CFStringRef>::Adopt(RBString2CFString(empty.Handle()));
        REQUIRE(string);
        CHECK(CFStringGetLength(string.Get()) == 0);
    }
}

TEST_CASE("UTF-16 is read to the end of each string") {
    SmallHost host(2013.04);
    for (const size_t length : {2U, 6U, 4U}) {
        REALstringStruct *string = host.NewString(std::string(length, 'a'), kCFStringEncodingUnicode);
        const auto converted = OwnedCF<CFStringRef>::Adopt(RBString2CFString(string));
        REQUIRE(converted);
        CHECK(CFStringGetLength(converted.Get()) == static_cast<CFIndex>(length / 2));
        host.Take(string);
    }
}

TEST_CASE("A host is asked for its own conversion twice from 2012.0 on, and once before") {
    AtAges({2011.4, 2012.0, 2016.0, 2011.4}, [&](double version) {
        SmallHost host(version);
        REALstringStruct *string = host.NewString("abc", kCFStringEncodingUTF8);
        CHECK(OwnedCF<CFStringRef>::Adopt(RBString2CFString(string)));
        CHECK(host.CallCount("REALGetStringCFString") == (version < 2012.0 ? 1 : 2));
        host.Take(string);
    });
}

TEST_CASE("The length byte in front of an old host's text is not believed") {
    SilentHost host;
    OldString string{0, "\1abc", 0, 3};
    const auto converted = OwnedCF<CFStringRef>::Adopt(RBString2CFString(string.Handle()));
    REQUIRE(converted);
    CHECK(CFStringGetLength(converted.Get()) == 3);
}

TEST_CASE("From 2016.0 on a string with a length but without bytes is not read") {
    SmallHost host(2016.0);
    host.Withhold("StringGetCString");
    for (const CFStringEncoding encoding : {CFStringEncoding{0}, CFStringEncoding{0x0100}, kHostUnknownEncoding}) {
        REALstringStruct *string = host.NewString("abcd", encoding);
        CHECK(RBString2CFString(string) == nullptr);
        host.Take(string);
    }
    CHECK(host.Alive() == 0);
}

namespace {

/// A constant string in the form in which the compiler writes them, whose length is a lie.
struct ConstantString {
    const void *classReference = __CFConstantStringClassReference;
    uint32_t flags = 0x7C8;
    const char *text = "a";
    CFIndex length;
};

} // namespace

TEST_CASE("A text whose UTF-8 form may need 2 GiB or more gives no string and is not read") {
    SmallHost host(2013.04);
    for (const CFIndex length : {CFIndex{357913942}, CFIndex{INT32_MAX}}) {
        ConstantString string{.length = length};
        CHECK(CFString2RBString(reinterpret_cast<CFStringRef>(&string)) == nullptr);
    }
    CHECK(host.Calls().empty());
}

TEST_CASE("A text whose UTF-8 form may need no more gets the memory for it, if there is any") {
    const SmallHost host(2013.04);
    ConstantString string{.length = 357913941};
    const FailingMemory memory(1);
    CHECK(CFString2RBString(reinterpret_cast<CFStringRef>(&string)) == nullptr);
    CHECK(memory.Asked() == std::vector<size_t>{2147483646});
}

TEST_CASE("A text of negative length gives no string") {
    SmallHost host(2013.04);
    ConstantString string{.length = -1};
    CHECK(CFString2RBString(reinterpret_cast<CFStringRef>(&string)) == nullptr);
}
