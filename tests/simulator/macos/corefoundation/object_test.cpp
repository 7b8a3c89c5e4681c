#include "simulator/macos/CoreFoundation/array.h"
#include "simulator/macos/CoreFoundation/number.h"
#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/registry.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <vector>

using namespace sim::macos;
using namespace tests;

namespace {

CFTypeRef nothing = nullptr;

// What a child process prints when the call aborts it.
std::string LastWordsOf(const std::function<void()> &call) {
    std::array<int, 2> ends{};
    REQUIRE_EQ(pipe(ends.data()), 0);
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        signal(SIGABRT, SIG_DFL);
        call();
        _exit(0);
    }
    close(ends[1]);
    std::string words;
    std::array<char, 4096> buffer{};
    for (ssize_t count; (count = read(ends[0], buffer.data(), buffer.size())) > 0;)
        words.append(buffer.data(), static_cast<std::size_t>(count));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    CHECK(WIFSIGNALED(status));
    CHECK_EQ(WTERMSIG(status), SIGABRT);
    return words;
}

CFArrayRef Nested(int depth) {
    CFArrayRef inner = CFArrayCreate(nullptr, nullptr, 0, &kCFTypeArrayCallBacks);
    for (int level = 1; level < depth; ++level) {
        const void *value = inner;
        CFArrayRef outer = CFArrayCreate(nullptr, &value, 1, &kCFTypeArrayCallBacks);
        CFRelease(inner);
        inner = outer;
    }
    return inner;
}

} // namespace

TEST_CASE_FIXTURE(Balanced,
                  "A new object has one reference; retain returns its argument and adds one, release takes one") {
    CFStringRef string = CFStringCreateWithCString(nullptr, "abc", kCFStringEncodingUTF8);
    CHECK_EQ(CFGetRetainCount(string), 1);
    CHECK_EQ(CFRetain(string), string);
    CHECK_EQ(CFGetRetainCount(string), 2);
    CFRelease(string);
    CHECK_EQ(CFGetRetainCount(string), 1);
    CFRelease(string);
}

TEST_CASE_FIXTURE(Balanced, "A constant string is a string like any other whose retain count does not move") {
    const CFStringRef constant = CFSTR("abc");
    const CFIndex before = CFGetRetainCount(constant);
    CHECK_EQ(CFRetain(constant), constant);
    CHECK_EQ(CFGetRetainCount(constant), before);
    CFRelease(constant);
    CFRelease(constant);
    CHECK_EQ(CFGetRetainCount(constant), before);
    CHECK_EQ(CFGetTypeID(constant), CFStringGetTypeID());
    const auto made = MakeString("abc");
    CHECK(CFEqual(constant, made.Get()));
    CHECK(CFEqual(made.Get(), constant));
    CHECK_EQ(CFHash(constant), CFHash(made.Get()));
    CHECK_FALSE(CFEqual(constant, CFSTR("abd")));
}

TEST_CASE_FIXTURE(Balanced, "A constant string with characters beyond ASCII is read as UTF-16") {
    CHECK_EQ(CFStringGetLength(CFSTR("n\u00e9\U0001F600")), 4);
    CHECK_EQ(Utf8Of(CFSTR("n\u00e9\U0001F600")), "n\u00e9\U0001F600");
}

TEST_CASE_FIXTURE(Balanced, "Singletons cannot be released away") {
    for (CFTypeRef singleton :
         std::vector<CFTypeRef>{kCFNull, kCFBooleanTrue, kCFBooleanFalse, kCFAllocatorSystemDefault,
                                CFNotificationCenterGetLocalCenter(), CFRunLoopGetMain()}) {
        const CFIndex before = CFGetRetainCount(singleton);
        CFRelease(singleton);
        CFRelease(singleton);
        CHECK_EQ(CFGetRetainCount(singleton), before);
    }
    CHECK_EQ(kCFAllocatorDefault, nullptr);
}

TEST_CASE_FIXTURE(Balanced, "Objects of different types are never equal") {
    CHECK_FALSE(CFEqual(kCFBooleanTrue, MakeNumber(std::int64_t{1}).Get()));
    CHECK_FALSE(CFEqual(CFSTR("1"), MakeNumber(std::int64_t{1}).Get()));
    CHECK(CFEqual(kCFBooleanTrue, kCFBooleanTrue));
    CHECK_FALSE(CFEqual(kCFBooleanTrue, kCFBooleanFalse));
}

TEST_CASE_FIXTURE(Balanced, "Retain, release and every look at null are refused by name") {
    CHECK_EQ(RefusalOf([] { CFRelease(nothing); }), "CFRelease was given null");
    CHECK_EQ(RefusalOf([] { CFRetain(nothing); }), "CFRetain was given null");
    CHECK_EQ(RefusalOf([] { CFGetTypeID(nullptr); }), "CFGetTypeID was given null");
    CHECK_EQ(RefusalOf([] { CFStringGetLength(nullptr); }), "CFStringGetLength was given null");
    CHECK_EQ(RefusalOf([] { CFEqual(nullptr, CFSTR("a")); }), "CFGetTypeID was given null");
}

TEST_CASE_FIXTURE(Balanced, "What never was an object is refused") {
    alignas(16) static const std::array<unsigned, 8> words{1, 2, 3, 4, 5, 6, 7, 8};
    CHECK_EQ(RefusalOf([] { CFRetain(words.data()); }), "CFRetain was given something that is no object");
    CHECK_EQ(RefusalOf([] { CFRetain(reinterpret_cast<CFTypeRef>(12)); }),
             "CFRetain was given something that is no object");
}

TEST_CASE_FIXTURE(Balanced, "A release too many is refused and names the object and where it was made") {
    CFStringRef string = CFStringCreateWithCString(nullptr, "over", kCFStringEncodingUTF8);
    CFRelease(string);
    const std::string refusal = RefusalOf([&] { CFRelease(string); });
    CHECK(Contains(refusal, "CFRelease was given a dead object: CFString \"over\", made by CFStringCreateWithCString"));
    CHECK(Contains(refusal, "released for the last time by CFRelease"));
}

TEST_CASE_FIXTURE(Balanced,
                  "A dead object is recognised long after its death, while thousands of others live and die") {
    CFNumberRef number = MakeNumber(std::int64_t{123456}).Give();
    CFRelease(number);
    for (int turn = 0; turn < 5000; ++turn)
        MakeString("another");
    std::int32_t value = 0;
    const std::string refusal = RefusalOf([&] { CFNumberGetValue(number, kCFNumberSInt32Type, &value); });
    CHECK(Contains(refusal, "CFNumberGetValue was given a dead object: CFNumber 123456"));
}

TEST_CASE_FIXTURE(Balanced, "What only the stand-in saw takes no place among the dead that are remembered") {
    CFNumberRef before = MakeNumber(std::int64_t{123456}).Give();
    CFRelease(before);
    CFNumberRef meanwhile = MakeNumber(std::int64_t{654321}).Give();
    {
        const Unseen strings;
        CFRelease(meanwhile);
        for (int turn = 0; turn < 20'000; ++turn)
            MakeString("another");
    }
    std::int32_t value = 0;
    CHECK(Contains(RefusalOf([&] { CFNumberGetValue(before, kCFNumberSInt32Type, &value); }), "CFNumber 123456"));
    CHECK(Contains(RefusalOf([&] { CFNumberGetValue(meanwhile, kCFNumberSInt32Type, &value); }), "CFNumber 654321"));
}

TEST_CASE_FIXTURE(Balanced, "An object of another type than a function's own is refused") {
    const auto number = MakeNumber(std::int64_t{7});
    const auto notAString = static_cast<CFStringRef>(static_cast<CFTypeRef>(number.Get()));
    CHECK_EQ(RefusalOf([&] { CFStringGetLength(notAString); }),
             "CFStringGetLength was given an object of the wrong type: CFNumber 7");
    const auto notAnArray = static_cast<CFArrayRef>(static_cast<CFTypeRef>(CFSTR("text")));
    CHECK_EQ(RefusalOf([&] { CFArrayGetCount(notAnArray); }),
             "CFArrayGetCount was given an object of the wrong type: CFString \"text\"");
}

TEST_CASE("Without a handler a refused call prints its sentence and aborts") {
    CHECK(Contains(LastWordsOf([] { CFRelease(nothing); }), "stand-in macOS: CFRelease was given null"));
    CHECK(Contains(LastWordsOf([] {
                       CFStringRef string = CFStringCreateWithCString(nullptr, "gone", kCFStringEncodingUTF8);
                       CFRelease(string);
                       CFRetain(string);
                   }),
                   "CFRetain was given a dead object: CFString \"gone\""));
}

TEST_CASE("The ledger names what was leaked, where it was made and how often it is retained") {
    const ledger::Snapshot before = ledger::Take();
    CFStringRef string = CFStringCreateWithCString(nullptr, "kept", kCFStringEncodingUTF8);
    CFRetain(string);
    const ledger::Difference difference = ledger::Since(before);
    REQUIRE_EQ(difference.made.size(), 1);
    CHECK_EQ(difference.made[0].object, string);
    CHECK_EQ(difference.made[0].type, "CFString");
    CHECK_EQ(difference.made[0].description, "\"kept\"");
    CHECK_EQ(difference.made[0].retainCount, 2);
    CHECK(Contains(difference.ToText(), "still alive: CFString \"kept\", retain count 2, made by "
                                        "CFStringCreateWithCString"));
    CFRelease(string);
    CFRelease(string);
    CHECK(ledger::Since(before).Empty());
    CHECK_EQ(ledger::Since(before).ToText(), "");
}

TEST_CASE("The ledger tells a release too many and a retain too many of an object that others hold") {
    const auto outer = MakeString("held by others");
    CFRetain(outer.Get());
    const ledger::Snapshot before = ledger::Take();
    CFRelease(outer.Get());
    CHECK(Contains(ledger::Since(before).ToText(), "retain count was 2: CFString \"held by others\", retain count 1"));
    CFRetain(outer.Get());
    CHECK(ledger::Since(before).Empty());
    CFRetain(outer.Get());
    CHECK_EQ(ledger::Since(before).changed.size(), 1);
    CFRelease(outer.Get());
    CFRelease(outer.Get());
}

TEST_CASE("The ledger tells of those alone that are wanted, by what they are now") {
    const auto held = MakeString("held");
    const ledger::Snapshot before = ledger::Take();
    const auto one = MakeString("one"), other = MakeString("other");
    CFRetain(held.Get());
    const ledger::Difference made =
        ledger::Since(before, [&](const ledger::Mark &mark) { return mark.object == one.Get(); });
    REQUIRE_EQ(made.made.size(), 1);
    CHECK_EQ(made.made[0].description, "\"one\"");
    CHECK(made.changed.empty());
    const ledger::Difference changed =
        ledger::Since(before, [](const ledger::Mark &mark) { return mark.retainCount == 2; });
    CHECK(changed.made.empty());
    CHECK_EQ(changed.changed.size(), 1);
    CFRelease(held.Get());
}

TEST_CASE("The ledger tells an object that died although somebody still counts on it") {
    CFStringRef string = CFStringCreateWithCString(nullptr, "lost", kCFStringEncodingUTF8);
    const ledger::Snapshot before = ledger::Take();
    CFRelease(string);
    const ledger::Difference difference = ledger::Since(before);
    REQUIRE_EQ(difference.gone.size(), 1);
    CHECK(Contains(difference.ToText(), "gone: CFString \"lost\""));
}

TEST_CASE("The ledger leaves out constants and singletons and counts a hundred thousand objects") {
    const std::size_t before = ledger::LiveCount();
    CFRetain(CFSTR("a constant"));
    CFRetain(kCFNull);
    CHECK_EQ(ledger::LiveCount(), before);
    constexpr std::size_t kMany = 100000;
    std::vector<CFRef<CFNumberRef>> numbers;
    for (std::size_t index = 0; index < kMany; ++index)
        numbers.push_back(MakeNumber(std::int64_t{1000} + static_cast<std::int64_t>(index)));
    CHECK_EQ(ledger::LiveCount(), before + kMany);
    numbers.clear();
    CHECK_EQ(ledger::LiveCount(), before);
}

TEST_CASE_FIXTURE(Balanced, "An array nested a hundred thousand deep can be released without exhausting the stack") {
    CFRelease(Nested(100000));
}

TEST_CASE("A type registered twice is one type, and identifiers lead back to names") {
    const CFTypeID first = RegisterType("SomeType");
    CHECK_EQ(RegisterType("SomeType"), first);
    CHECK_NE(RegisterType("SomeOtherType"), first);
    CHECK_NE(first, 0);
    CHECK_EQ(TypeName(first), "SomeType");
    CHECK_EQ(TypeName(CFStringGetTypeID()), "CFString");
}

TEST_CASE_FIXTURE(Balanced, "A holder releases what it adopted, once, and gives away what it is asked for") {
    CFStringRef string = CFStringCreateWithCString(nullptr, "held", kCFStringEncodingUTF8);
    {
        const auto holder = CFRef<CFStringRef>::Retain(string);
        CHECK_EQ(CFGetRetainCount(string), 2);
        auto copy = holder.Copy();
        CHECK_EQ(CFGetRetainCount(string), 3);
        const CFRef<CFStringRef> moved = std::move(copy);
        CHECK_EQ(CFGetRetainCount(string), 3);
    }
    CHECK_EQ(CFGetRetainCount(string), 1);
    auto owner = CFRef<CFStringRef>::Adopt(string);
    CFStringRef given = owner.Give();
    CHECK_FALSE(owner);
    CFRelease(given);
}
