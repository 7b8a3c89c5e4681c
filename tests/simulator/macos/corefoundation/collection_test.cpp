#include "simulator/macos/CoreFoundation/array.h"
#include "simulator/macos/CoreFoundation/data.h"
#include "simulator/macos/CoreFoundation/dictionary.h"
#include "simulator/macos/CoreFoundation/number.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <array>
#include <vector>

using namespace sim::macos;
using namespace tests;

namespace {

// Callbacks that write down what they are asked.
std::vector<std::string> notes;

std::string NameOf(const void *value) { return std::to_string(reinterpret_cast<std::uintptr_t>(value)); }
const void *ValueOf(std::uintptr_t number) { return reinterpret_cast<const void *>(number); }

const void *NoteRetain(CFAllocatorRef, const void *value) {
    notes.push_back("retain " + NameOf(value));
    return value;
}
void NoteRelease(CFAllocatorRef, const void *value) { notes.push_back("release " + NameOf(value)); }
Boolean SameTens(const void *one, const void *other) {
    return reinterpret_cast<std::uintptr_t>(one) / 10 == reinterpret_cast<std::uintptr_t>(other) / 10;
}
CFHashCode TensOf(const void *value) { return reinterpret_cast<std::uintptr_t>(value) / 10; }

constexpr CFArrayCallBacks kNoting{0, NoteRetain, NoteRelease, nullptr, SameTens};

CFRef<CFMutableArrayRef> NewArray(CFIndex capacity, const CFArrayCallBacks *callBacks = &kCFTypeArrayCallBacks) {
    return CFRef<CFMutableArrayRef>::Adopt(CFArrayCreateMutable(nullptr, capacity, callBacks));
}

} // namespace

TEST_CASE_FIXTURE(Balanced, "An array made with capacity 2 takes five elements: capacity is a hint") {
    const auto array = NewArray(2);
    for (int index = 0; index < 5; ++index)
        CFArrayAppendValue(array.Get(), CFSTR("element"));
    CHECK_EQ(CFArrayGetCount(array.Get()), 5);
}

TEST_CASE_FIXTURE(Balanced, "An array of objects retains what it takes and releases it at its end") {
    const auto value = MakeString("value");
    {
        const auto array = NewArray(0);
        CFArrayAppendValue(array.Get(), value.Get());
        CHECK_EQ(CFGetRetainCount(value.Get()), 2);
        CHECK_EQ(CFArrayGetValueAtIndex(array.Get(), 0), value.Get());
        CHECK_EQ(CFGetRetainCount(value.Get()), 2);
    }
    CHECK_EQ(CFGetRetainCount(value.Get()), 1);
}

TEST_CASE_FIXTURE(Balanced, "An array calls the callbacks it was made with, and none it was made without") {
    notes.clear();
    {
        const auto array = NewArray(0, &kNoting);
        CFArrayAppendValue(array.Get(), ValueOf(21));
        CFArrayAppendValue(array.Get(), ValueOf(32));
        const auto like = NewArray(0, &kNoting);
        CFArrayAppendValue(like.Get(), ValueOf(29));
        CFArrayAppendValue(like.Get(), ValueOf(30));
        CHECK(CFEqual(array.Get(), like.Get()));
    }
    CHECK(notes == std::vector<std::string>{"retain 21", "retain 32", "retain 29", "retain 30", "release 29",
                                            "release 30", "release 21", "release 32"});
    const auto plain = NewArray(0, nullptr);
    CFArrayAppendValue(plain.Get(), nullptr);
    CFArrayAppendValue(plain.Get(), ValueOf(1));
    CHECK_EQ(CFArrayGetValueAtIndex(plain.Get(), 0), nullptr);
    CHECK_EQ(CFArrayGetValueAtIndex(plain.Get(), 1), ValueOf(1));
}

TEST_CASE_FIXTURE(Balanced, "Null is no element of an array of objects") {
    const auto array = NewArray(0);
    CHECK(Contains(RefusalOf([&] { CFArrayAppendValue(array.Get(), nullptr); }), "null"));
}

TEST_CASE_FIXTURE(Balanced, "An array has no element before its first or after its last") {
    const auto array = NewArray(0);
    CHECK(Contains(RefusalOf([&] { CFArrayGetValueAtIndex(array.Get(), 0); }),
                   "CFArrayGetValueAtIndex was asked for index 0 of CFArray of 0"));
    CHECK(Contains(RefusalOf([&] { CFArrayGetValueAtIndex(array.Get(), -1); }), "index -1"));
}

TEST_CASE_FIXTURE(Balanced, "An immutable array is made of its values at once and takes no more") {
    std::array<const void *, 2> values{CFSTR("a"), CFSTR("b")};
    const auto array = CFRef<CFArrayRef>::Adopt(CFArrayCreate(nullptr, values.data(), 2, &kCFTypeArrayCallBacks));
    CHECK_EQ(CFArrayGetCount(array.Get()), 2);
    CHECK(CFEqual(array.Get(), MakeArray(values).Get()));
    CHECK_EQ(CFHash(array.Get()), CFHash(MakeArray(values).Get()));
    CHECK_FALSE(CFEqual(array.Get(), NewArray(0).Get()));
    const auto asMutable = const_cast<CFMutableArrayRef>(array.Get());
    CHECK_EQ(RefusalOf([&] { CFArrayAppendValue(asMutable, CFSTR("c")); }),
             "CFArrayAppendValue was given an immutable array");
}

TEST_CASE_FIXTURE(Balanced, "A dictionary finds values by equal keys, and of equal pairs the last one stays") {
    const auto dictionary = NewDictionary();
    const auto key = MakeString("key");
    const auto first = MakeNumber(std::int64_t{1000});
    const auto second = MakeNumber(std::int64_t{2000});
    CFDictionarySetValue(dictionary.Get(), CFSTR("key"), first.Get());
    CHECK_EQ(CFGetRetainCount(first.Get()), 2);
    CHECK_EQ(CFDictionaryGetValue(dictionary.Get(), key.Get()), first.Get());
    CFDictionarySetValue(dictionary.Get(), key.Get(), second.Get());
    CHECK_EQ(CFDictionaryGetCount(dictionary.Get()), 1);
    CHECK_EQ(CFGetRetainCount(first.Get()), 1);
    CHECK_EQ(CFGetRetainCount(second.Get()), 2);
    CHECK_EQ(CFGetRetainCount(key.Get()), 2);
    CHECK_EQ(CFDictionaryGetValue(dictionary.Get(), CFSTR("key")), second.Get());
    CHECK_EQ(CFDictionaryGetValue(dictionary.Get(), CFSTR("other")), nullptr);
}

TEST_CASE_FIXTURE(Balanced, "A dictionary cannot be changed while a function is applied to it") {
    const auto dictionary = NewDictionary();
    CFDictionarySetValue(dictionary.Get(), CFSTR("a"), CFSTR("1"));
    const auto change = [](const void *, const void *, void *context) {
        CFDictionarySetValue(static_cast<CFMutableDictionaryRef>(context), CFSTR("b"), CFSTR("2"));
    };
    CHECK(Contains(RefusalOf([&] { CFDictionaryApplyFunction(dictionary.Get(), change, dictionary.Get()); }),
                   "cannot be changed"));
    CFDictionarySetValue(dictionary.Get(), CFSTR("b"), CFSTR("2"));
    CHECK_EQ(CFDictionaryGetCount(dictionary.Get()), 2);
}

TEST_CASE_FIXTURE(Balanced,
                  "A dictionary calls the callbacks it was made with; without any, pointers are all it knows") {
    notes.clear();
    const CFDictionaryKeyCallBacks keys{0, NoteRetain, NoteRelease, nullptr, SameTens, TensOf};
    const CFDictionaryValueCallBacks values{0, NoteRetain, NoteRelease, nullptr, nullptr};
    {
        const auto dictionary =
            CFRef<CFMutableDictionaryRef>::Adopt(CFDictionaryCreateMutable(nullptr, 0, &keys, &values));
        CFDictionarySetValue(dictionary.Get(), ValueOf(21), ValueOf(1));
        CFDictionarySetValue(dictionary.Get(), ValueOf(28), ValueOf(2));
        CHECK_EQ(CFDictionaryGetValue(dictionary.Get(), ValueOf(25)), ValueOf(2));
        CHECK_EQ(CFDictionaryGetCount(dictionary.Get()), 1);
    }
    CHECK(notes == std::vector<std::string>{"retain 21", "retain 1", "retain 28", "retain 2", "release 21", "release 1",
                                            "release 28", "release 2"});
    const auto plain = CFRef<CFMutableDictionaryRef>::Adopt(CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr));
    CFDictionarySetValue(plain.Get(), nullptr, ValueOf(7));
    CHECK_EQ(CFDictionaryGetValue(plain.Get(), nullptr), ValueOf(7));
    CHECK_EQ(CFDictionaryGetValue(plain.Get(), ValueOf(21)), nullptr);
}

TEST_CASE_FIXTURE(Balanced, "Dictionaries with equal pairs are equal, in whatever order they were filled") {
    const auto one = NewDictionary();
    const auto other = NewDictionary();
    CFDictionarySetValue(one.Get(), CFSTR("a"), CFSTR("1"));
    CFDictionarySetValue(one.Get(), CFSTR("b"), CFSTR("2"));
    CFDictionarySetValue(other.Get(), CFSTR("b"), MakeString("2").Get());
    CHECK_FALSE(CFEqual(one.Get(), other.Get()));
    CFDictionarySetValue(other.Get(), CFSTR("a"), MakeString("1").Get());
    CHECK(CFEqual(one.Get(), other.Get()));
    CHECK_EQ(CFHash(one.Get()), CFHash(other.Get()));
    const std::array<std::pair<CFTypeRef, CFTypeRef>, 2> pairs{{{CFSTR("a"), CFSTR("1")}, {CFSTR("b"), CFSTR("2")}}};
    CHECK(CFEqual(MakeDictionary(pairs).Get(), one.Get()));
}

TEST_CASE_FIXTURE(Balanced,
                  "Null is neither key nor value of a dictionary of objects, and an immutable one takes nothing") {
    const auto dictionary = NewDictionary();
    CHECK(Contains(RefusalOf([&] { CFDictionarySetValue(dictionary.Get(), CFSTR("a"), nullptr); }), "null"));
    const auto fixed = MakeDictionary({});
    const auto asMutable = const_cast<CFMutableDictionaryRef>(fixed.Get());
    CHECK_EQ(RefusalOf([&] { CFDictionarySetValue(asMutable, CFSTR("a"), CFSTR("b")); }),
             "CFDictionarySetValue was given an immutable dictionary");
}

TEST_CASE_FIXTURE(Balanced, "Data copies its bytes, and equal bytes make equal data") {
    std::array<UInt8, 3> bytes{1, 2, 3};
    const auto data = CFRef<CFDataRef>::Adopt(CFDataCreate(nullptr, bytes.data(), 3));
    bytes[0] = 9;
    CHECK_EQ(CFDataGetLength(data.Get()), 3);
    CHECK_EQ(CFDataGetBytePtr(data.Get())[0], 1);
    const auto empty = CFRef<CFDataRef>::Adopt(CFDataCreate(nullptr, nullptr, 0));
    bytes[0] = 1;
    CHECK(CFEqual(data.Get(), MakeData(bytes).Get()));
    CHECK_EQ(CFHash(data.Get()), CFHash(MakeData(bytes).Get()));
    CHECK_FALSE(CFEqual(data.Get(), empty.Get()));
}
