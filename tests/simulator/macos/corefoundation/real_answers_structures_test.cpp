// URLs, collections and calls that trap: what a real Core Foundation was seen to answer, row by row. The stand-in must
// answer the same; where it is stricter on purpose, docs/stand-in.md says so.
#include "simulator/macos/CoreFoundation/dictionary.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <algorithm>
#include <vector>

using namespace sim::macos;
using namespace tests;
using namespace std::string_literals;

namespace {

std::string Taken(CFURLRef url) { return TextOf(CFRef<CFURLRef>::Adopt(url).Get()); }

std::string Taken(CFStringRef string) {
    const auto held = CFRef<CFStringRef>::Adopt(string);
    return held ? Utf8Of(held.Get()) : "null";
}

std::string AbsoluteForm(const std::string &reference, const std::string &base) {
    const auto url = CFRef<CFURLRef>::Adopt(
        CFURLCreateWithString(nullptr, MakeString(std::string_view(reference)).Get(), UrlFrom(base).Get()));
    return url ? Taken(CFURLCopyAbsoluteURL(url.Get())) : "null";
}

void NoteKey(const void *key, const void *, void *context) {
    static_cast<std::vector<std::string> *>(context)->push_back(Utf8Of(static_cast<CFStringRef>(key)));
}

} // namespace

TEST_CASE_FIXTURE(Balanced, "Path components come off and go on as the real system does it") {
    struct Row {
        const char *url;
        const char *without;
        const char *last;
        const char *with;
    };
    const std::vector<Row> rows{
        {"file:///tmp/a%20b/c.txt", "file:///tmp/a%20b/", "c.txt", "file:///tmp/a%20b/c.txt/n%C3%A9w%20file"},
        {"http://example.org/x/y?q=1#f", "http://example.org/x/?q=1#f", "y",
         "http://example.org/x/y/n%C3%A9w%20file?q=1#f"},
        {"file:///tmp/dir/", "file:///tmp/", "dir", "file:///tmp/dir/n%C3%A9w%20file"},
        {"file:///", "file:///../", "/", "file:///n%C3%A9w%20file"},
        {"relative/leaf", "relative/", "leaf", "relative/leaf/n%C3%A9w%20file"},
        {"file:///a/new//", "file:///a/new//../", "", "file:///a/new//n%C3%A9w%20file"},
        {"a/.", "a/./../", ".", "a/./n%C3%A9w%20file"},
        {"http://example.org", "http://example.org../", "", "http://example.org/n%C3%A9w%20file"},
    };
    for (const Row &row : rows) {
        CAPTURE(row.url);
        const auto url = UrlFrom(row.url);
        CHECK_EQ(Taken(CFURLCreateCopyDeletingLastPathComponent(nullptr, url.Get())), row.without);
        CHECK_EQ(Taken(CFURLCopyLastPathComponent(url.Get())), row.last);
        CHECK_EQ(Taken(CFURLCreateCopyAppendingPathComponent(nullptr, url.Get(), CFSTR("n\u00E9w file"), false)),
                 row.with);
    }
}

TEST_CASE_FIXTURE(Balanced, "Texts become URLs, or none, as the real system has it") {
    struct Row {
        const char *text;
        const char *url;
    };
    const std::vector<Row> rows{
        {"", "null"},
        {"http://h/\u00E9", "http://h/%C3%A9"},
        {"http://h/[1]", "http://h/%5B1%5D"},
        {"http://h/a#b", "http://h/a#b"},
        {"http://h/a#b#c", "null"},
        {"file:///d/plain;x", "file:///d/plain;x"},
    };
    for (const Row &row : rows) {
        CAPTURE(row.text);
        CHECK_EQ(TextOf(UrlFrom(row.text).Get()), row.url);
    }
}

TEST_CASE_FIXTURE(Balanced, "References are resolved as the real system does it") {
    struct Row {
        const char *reference;
        const char *base;
        const char *absolute;
    };
    const std::vector<Row> rows{
        {"", "http://a/b", "null"},
        {"g;x=1/./y", "http://a/b/c/d;p?q", "http://a/b/c/g;x=1/./y"},
        {".", "http://h", "http://h/."},
        {"./a", "http://h", "http://h/./a"},
    };
    for (const Row &row : rows) {
        CAPTURE(row.reference);
        CHECK_EQ(AbsoluteForm(row.reference, row.base), row.absolute);
    }
}

TEST_CASE_FIXTURE(Balanced, "A raw semicolon ends the path of a file URL, and a colon in a path makes a scheme") {
    CHECK_EQ(Taken(CFURLCopyFileSystemPath(UrlFrom("file:///d/plain;x").Get(), kCFURLPOSIXPathStyle)), "/d/plain");
    CHECK_EQ(Taken(CFURLCreateWithFileSystemPath(nullptr, CFSTR("a:b"), kCFURLPOSIXPathStyle, false)), "a:b");
    CHECK_EQ(Taken(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/a"), kCFURLPOSIXPathStyle, false)), "file:///a");
}

TEST_CASE_FIXTURE(Balanced, "What traps or crashes on the real system is refused by name") {
    static CFTypeRef null = nullptr;
    const auto array = CFRef<CFMutableArrayRef>::Adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    const auto dictionary = NewDictionary();
    const auto fixed = MakeDictionary({});
    const auto accented = MakeString("\u00E9");
    const auto halved = MakeString(std::u16string_view(u"a\xD83D", 2));
    const auto root = UrlFrom("file:///");
    struct Row {
        const char *word;
        std::function<void()> call;
    };
    const std::vector<Row> rows{
        {"CFRetain was given null", [] { CFRetain(null); }},
        {"CFRelease was given null", [] { CFRelease(null); }},
        {"CFHash was given null", [] { CFHash(null); }},
        {"CFGetTypeID was given null", [] { CFEqual(null, CFSTR("a")); }},
        {"CFGetRetainCount was given null", [] { CFGetRetainCount(null); }},
        {"CFGetTypeID was given null", [] { CFGetTypeID(null); }},
        {"CFStringGetLength was given null", [] { CFStringGetLength(nullptr); }},
        {"null as a key or value", [&] { CFArrayAppendValue(array.Get(), null); }},
        {"null as a key or value", [&] { CFDictionarySetValue(dictionary.Get(), CFSTR("a"), null); }},
        {"was given null", [&] { CFDictionarySetValue(dictionary.Get(), null, CFSTR("a")); }},
        {"CFDictionarySetValue was given an immutable dictionary",
         [&] { CFDictionarySetValue(const_cast<CFMutableDictionaryRef>(fixed.Get()), CFSTR("a"), CFSTR("b")); }},
        {"CFHash was given null", [&] { CFDictionaryGetValue(dictionary.Get(), null); }},
        {"null as a key or value", [] { CFArrayCreate(nullptr, &null, 1, &kCFTypeArrayCallBacks); }},
        {"index 0", [&] { CFArrayGetValueAtIndex(array.Get(), 0); }},
        {"CFStringCreateWithBytes was given no bytes", [] { CFStringCreateWithBytes(nullptr, nullptr, 1, 0, true); }},
        {"CFDataCreate was given no bytes", [] { CFDataCreate(nullptr, nullptr, 1); }},
        {"an immutable string cannot be changed",
         [&] { CFStringNormalize(const_cast<CFMutableStringRef>(accented.Get()), kCFStringNormalizationFormD); }},
        {"a name with an unpaired surrogate",
         [&] { CFURLCreateCopyAppendingPathComponent(nullptr, root.Get(), halved.Get(), false); }},
        {"CFURLCreateCopyAppendingPathComponent was given null",
         [&] { CFURLCreateCopyAppendingPathComponent(nullptr, root.Get(), nullptr, true); }},
    };
    for (const Row &row : rows) {
        CAPTURE(row.word);
        CHECK(Contains(RefusalOf(row.call), row.word));
    }
}

TEST_CASE_FIXTURE(Balanced, "Empty data has no byte pointer, and less than no data is null") {
    const UInt8 byte = 1;
    for (const UInt8 *bytes : {static_cast<const UInt8 *>(nullptr), &byte}) {
        const auto empty = CFRef<CFDataRef>::Adopt(CFDataCreate(nullptr, bytes, 0));
        REQUIRE(empty);
        CHECK_EQ(CFDataGetLength(empty.Get()), 0);
        CHECK_EQ(CFDataGetBytePtr(empty.Get()), nullptr);
        CHECK_EQ(CFDataCreate(nullptr, bytes, -1), nullptr);
    }
}

TEST_CASE_FIXTURE(Balanced, "An equal key is replaced with its value") {
    const auto dictionary = NewDictionary();
    const auto first = MakeString("key");
    const auto second = MakeString("key");
    CFDictionarySetValue(dictionary.Get(), first.Get(), CFSTR("1"));
    CFDictionarySetValue(dictionary.Get(), second.Get(), CFSTR("2"));
    CHECK_EQ(CFGetRetainCount(first.Get()), 1);
    CHECK_EQ(CFGetRetainCount(second.Get()), 2);
    CHECK_EQ(CFDictionaryGetCount(dictionary.Get()), 1);
    CHECK_EQ(CFDictionaryGetValue(dictionary.Get(), first.Get()), CFSTR("2"));
}

TEST_CASE_FIXTURE(Balanced, "A function meets the pairs always in the same order, never in that of insertion") {
    const std::vector<std::vector<std::string>> fillings{
        {"one", "two"}, {"two", "one"}, {"one", "two", "three", "four"}, {"four", "three", "two", "one"}};
    for (const std::vector<std::string> &filling : fillings) {
        std::vector<std::vector<std::string>> met;
        for (int turn = 0; turn < 2; ++turn) {
            const auto dictionary = NewDictionary();
            for (const std::string &key : filling)
                CFDictionarySetValue(dictionary.Get(), MakeString(std::string_view(key)).Get(), kCFBooleanTrue);
            CFDictionaryApplyFunction(dictionary.Get(), NoteKey, &met.emplace_back());
        }
        CHECK(met[0] == met[1]);
        CHECK(met[0] != filling);
        CHECK(std::is_permutation(met[0].begin(), met[0].end(), filling.begin(), filling.end()));
    }
}
