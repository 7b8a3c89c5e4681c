#include "simulator/macos/CoreFoundation/number.h"
#include "simulator/macos/control/faults.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <algorithm>
#include <functional>
#include <map>

using namespace sim::macos;
using namespace tests;

namespace {

// True when the call gave something; what it gave is released.
bool Gives(CFTypeRef created) {
    if (created)
        CFRelease(created);
    return created != nullptr;
}

CFRef<CFURLRef> Root() { return UrlFrom("file:///"); }

FSRef RootReference() {
    FSRef reference{};
    const OwnCalls own;
    CFURLGetFSRef(Root().Get(), &reference);
    return reference;
}

CFRef<CFBundleRef> FrameworkBundle() {
    const OwnCalls own;
    const auto url = UrlFrom("file:///System/Library/Frameworks/CoreServices.framework");
    return CFRef<CFBundleRef>::Adopt(CFBundleCreate(nullptr, url.Get()));
}

// One call of each function that can fail; true when it succeeded. Everything it needs is made without being counted.
const std::map<std::string, std::function<bool()>> &Calls() {
    static const std::int32_t number = 42;
    static const UInt8 byte = 1;
    static const UniChar unit = 'a';
    static const CFURLRef root = Root().Give();
    static const CFBundleRef bundle = FrameworkBundle().Give();
    static const FSRef reference = RootReference();
    static const std::map<std::string, std::function<bool()>> calls{
        {"CFArrayCreate", [] { return Gives(CFArrayCreate(nullptr, nullptr, 0, nullptr)); }},
        {"CFArrayCreateMutable", [] { return Gives(CFArrayCreateMutable(nullptr, 0, nullptr)); }},
        {"CFBundleCreate", [] { return Gives(CFBundleCreate(nullptr, root)); }},
        {"CFBundleLoadExecutable", [] { return bool(CFBundleLoadExecutable(bundle)); }},
        {"CFDataCreate", [] { return Gives(CFDataCreate(nullptr, &byte, 1)); }},
        {"CFDateCreate", [] { return Gives(CFDateCreate(nullptr, 0)); }},
        {"CFDictionaryCreateMutable", [] { return Gives(CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr)); }},
        {"CFNumberCreate", [] { return Gives(CFNumberCreate(nullptr, kCFNumberSInt32Type, &number)); }},
        {"CFStringCreateMutableCopy", [] { return Gives(CFStringCreateMutableCopy(nullptr, 0, CFSTR("a"))); }},
        {"CFStringCreateWithBytes",
         [] { return Gives(CFStringCreateWithBytes(nullptr, &byte, 1, kCFStringEncodingUTF8, true)); }},
        {"CFStringCreateWithCString",
         [] { return Gives(CFStringCreateWithCString(nullptr, "a", kCFStringEncodingUTF8)); }},
        {"CFStringCreateWithCharacters", [] { return Gives(CFStringCreateWithCharacters(nullptr, &unit, 1)); }},
        {"CFURLCopyAbsoluteURL", [] { return Gives(CFURLCopyAbsoluteURL(root)); }},
        {"CFURLCopyFileSystemPath", [] { return Gives(CFURLCopyFileSystemPath(root, kCFURLPOSIXPathStyle)); }},
        {"CFURLCopyLastPathComponent", [] { return Gives(CFURLCopyLastPathComponent(root)); }},
        {"CFURLCreateCopyAppendingPathComponent",
         [] { return Gives(CFURLCreateCopyAppendingPathComponent(nullptr, root, CFSTR("a"), false)); }},
        {"CFURLCreateCopyDeletingLastPathComponent",
         [] { return Gives(CFURLCreateCopyDeletingLastPathComponent(nullptr, root)); }},
        {"CFURLCreateFromFSRef", [] { return Gives(CFURLCreateFromFSRef(nullptr, &reference)); }},
        {"CFURLCreateWithFileSystemPath",
         [] { return Gives(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/a"), kCFURLPOSIXPathStyle, false)); }},
        {"CFURLCreateWithString", [] { return Gives(CFURLCreateWithString(nullptr, CFSTR("file:///"), nullptr)); }},
        {"CFURLGetFSRef",
         [] {
             FSRef found;
             return bool(CFURLGetFSRef(root, &found));
         }},
        {"CGColorCreateGenericRGB", [] { return Gives(CGColorCreateGenericRGB(0, 0, 0, 1)); }},
        {"FSFindFolder",
         [] {
             FSRef found;
             return FSFindFolder(kOnAppropriateDisk, kFrameworksFolderType, true, &found) == noErr;
         }},
        {"FSGetCatalogInfo",
         [] { return FSGetCatalogInfo(&reference, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr) == noErr; }},
    };
    return calls;
}

} // namespace

TEST_CASE("Every creating function can be made to fail, once, and succeeds before and after") {
    const auto &calls = Calls();
    const Balanced balanced;
    for (const auto &entry : calls) {
        const std::string &name = entry.first;
        const std::function<bool()> &call = entry.second;
        CAPTURE(name);
        faults::Reset();
        CHECK(call());
        CHECK_EQ(faults::Count(), 1);
        faults::FailCall(name, 2);
        CHECK(call());
        CHECK_FALSE(call());
        CHECK(call());
        CHECK_EQ(faults::Failed(), 1);
    }
}

TEST_CASE("The list of functions that can fail is complete for these frameworks") {
    std::vector<std::string> known;
    for (const auto &[name, call] : Calls())
        known.push_back(name);
    std::vector<std::string> names = faults::Names();
    std::erase_if(names, [](const std::string &name) { return name.starts_with("MD"); });
    CHECK(names == known);
}

TEST_CASE_FIXTURE(Balanced, "The n-th call of all can be made to fail, and nothing fails unless it was planned") {
    const auto twoStrings = [] {
        const bool first = Gives(CFStringCreateWithCString(nullptr, "a", kCFStringEncodingUTF8));
        return first && Gives(CFDateCreate(nullptr, 0));
    };
    CHECK(twoStrings());
    CHECK_EQ(faults::Count(), 2);
    std::size_t n = 1;
    for (;; ++n) {
        faults::Reset();
        faults::FailCall(n);
        if (twoStrings())
            break;
        CHECK_EQ(faults::Failed(), 1);
    }
    CHECK_EQ(n, 3);
}

TEST_CASE_FIXTURE(Balanced, "A function can be made to fail always, and Reset ends it") {
    faults::FailEvery("CFDateCreate");
    CHECK_FALSE(Gives(CFDateCreate(nullptr, 0)));
    CHECK_FALSE(Gives(CFDateCreate(nullptr, 0)));
    CHECK(Gives(CFDataCreate(nullptr, nullptr, 0)));
    faults::Reset();
    CHECK(Gives(CFDateCreate(nullptr, 0)));
    CHECK(Contains(RefusalOf([] { faults::FailEvery("CFNoSuchCreate"); }), "CFNoSuchCreate"));
}

TEST_CASE_FIXTURE(Balanced, "What the stand-ins make for themselves is neither counted nor made to fail") {
    faults::FailCall(1);
    {
        const OwnCalls own;
        CHECK(Gives(CFDateCreate(nullptr, 0)));
        MakeString("made in C++");
        MakeNumber(2.5);
    }
    MakeString("made in C++");
    CHECK_EQ(faults::Count(), 0);
    CHECK_FALSE(Gives(CFDateCreate(nullptr, 0)));
}
