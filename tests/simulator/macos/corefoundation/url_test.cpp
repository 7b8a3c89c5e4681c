#include "simulator/macos/CoreFoundation/file_system.h"
#include "simulator/macos/CoreFoundation/url.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <vector>

using namespace sim::macos;
using namespace tests;

namespace {

std::string TextOf(CFStringRef string) { return string ? Utf8Of(string) : "null"; }

std::string Deleting(const std::string &url) {
    return tests::TextOf(
        CFRef<CFURLRef>::Adopt(CFURLCreateCopyDeletingLastPathComponent(nullptr, UrlFrom(url).Get())).Get());
}

std::string Last(const std::string &url) {
    return TextOf(CFRef<CFStringRef>::Adopt(CFURLCopyLastPathComponent(UrlFrom(url).Get())).Get());
}

std::string Appending(const std::string &url, std::u16string_view component, bool isDirectory = false) {
    const auto name = MakeString(component);
    return tests::TextOf(CFRef<CFURLRef>::Adopt(CFURLCreateCopyAppendingPathComponent(nullptr, UrlFrom(url).Get(),
                                                                                      name.Get(), isDirectory))
                             .Get());
}

CFRef<CFURLRef> FromPath(const std::string &path, bool isDirectory = false) {
    return CFRef<CFURLRef>::Adopt(CFURLCreateWithFileSystemPath(nullptr, MakeString(std::string_view(path)).Get(),
                                                                kCFURLPOSIXPathStyle, isDirectory));
}

std::string PathOf(CFURLRef url) {
    return TextOf(CFRef<CFStringRef>::Adopt(CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle)).Get());
}

std::string Resolved(const std::string &reference, const std::string &base) {
    const auto string = MakeString(std::string_view(reference));
    const auto url = CFRef<CFURLRef>::Adopt(CFURLCreateWithString(nullptr, string.Get(), UrlFrom(base).Get()));
    CHECK_EQ(tests::TextOf(url.Get()), reference);
    return tests::TextOf(CFRef<CFURLRef>::Adopt(CFURLCopyAbsoluteURL(url.Get())).Get());
}

} // namespace

TEST_CASE_FIXTURE(Balanced, "Deleting goes up from what is no name") {
    CHECK_EQ(Deleting("file:///../"), "file:///../../");
    CHECK_EQ(Deleting("leaf"), "./");
    CHECK_EQ(Deleting(".."), "../../");
    CHECK_EQ(Deleting("."), "./../");
}

TEST_CASE_FIXTURE(Balanced, "A URL without a path has no components to take away") {
    CHECK_EQ(Deleting("mailto:someone"), "null");
    CHECK_EQ(Last("mailto:someone"), "");
    CHECK_EQ(Appending("mailto:someone", u"x"), "null");
    CHECK_EQ(Appending("http://example.org", u"x"), "http://example.org/x");
}

TEST_CASE_FIXTURE(Balanced, "The last component is read without its escapes, and not at all when they hide no text") {
    CHECK_EQ(Last("file:///tmp/n%C3%A9w%20file"), "n\u00E9w file");
    CHECK_EQ(Last("file:///tmp/100%25"), "100%");
    CHECK_EQ(Last("file:///tmp/%FF"), "null");
}

TEST_CASE_FIXTURE(Balanced, "An appended component is escaped where it must be, and a directory ends with a slash") {
    CHECK_EQ(Appending("file:///a", u"b?c#d%e;f"), "file:///a/b%3Fc%23d%25e%3Bf");
    CHECK_EQ(Appending("file:///a", u"-_.!~*'():@&=+$,"), "file:///a/-_.!~*'():@&=+$,");
    CHECK_EQ(Appending("file:///a", u"b", true), "file:///a/b/");
    CHECK_EQ(Appending("file:///a/", u"e\u0301\U0001F600"), "file:///a/e%CC%81%F0%9F%98%80");
}

TEST_CASE_FIXTURE(Balanced, "Other characters than a URL may have make none") {
    for (const char *text : {"http://example.org/a b", "http://a/%2", "http://a/%zz", "http://a/<x>", "http://a/\""}) {
        CAPTURE(text);
        CHECK_FALSE(UrlFrom(text));
    }
    CHECK_EQ(tests::TextOf(UrlFrom("http://example.org/%41?a=[1]#x").Get()), "http://example.org/%41?a=%5B1%5D#x");
}

TEST_CASE_FIXTURE(Balanced, "A relative URL is resolved against its base; an absolute one is its own absolute URL") {
    const char *base = "http://a/b/c/d;p?q";
    CHECK_EQ(Resolved("g", base), "http://a/b/c/g");
    CHECK_EQ(Resolved("./g", base), "http://a/b/c/g");
    CHECK_EQ(Resolved("g/", base), "http://a/b/c/g/");
    CHECK_EQ(Resolved("/g", base), "http://a/g");
    CHECK_EQ(Resolved("//g", base), "http://g");
    CHECK_EQ(Resolved("?y", base), "http://a/b/c/d;p?y");
    CHECK_EQ(Resolved("g?y#s", base), "http://a/b/c/g?y#s");
    CHECK_EQ(Resolved("#s", base), "http://a/b/c/d;p?q#s");
    CHECK_EQ(Resolved("..", base), "http://a/b/");
    CHECK_EQ(Resolved("../../g", base), "http://a/g");
    CHECK_EQ(Resolved("file:///x", base), "file:///x");
    CHECK_EQ(Resolved(";x", base), "http://a/b/c/d;x");

    const auto absolute = UrlFrom("http://example.org/");
    const auto same = CFRef<CFURLRef>::Adopt(CFURLCopyAbsoluteURL(absolute.Get()));
    CHECK_EQ(same.Get(), absolute.Get());
    const auto lonely = UrlFrom("relative/leaf");
    CHECK_EQ(tests::TextOf(CFRef<CFURLRef>::Adopt(CFURLCopyAbsoluteURL(lonely.Get())).Get()), "relative/leaf");
}

TEST_CASE_FIXTURE(Balanced, "URLs are equal when string and base are") {
    CHECK(CFEqual(UrlFrom("file:///a").Get(), UrlFrom("file:///a").Get()));
    CHECK_EQ(CFHash(UrlFrom("file:///a").Get()), CFHash(UrlFrom("file:///a").Get()));
    CHECK_FALSE(CFEqual(UrlFrom("file:///a").Get(), UrlFrom("file:///a/").Get()));
}

TEST_CASE_FIXTURE(Balanced, "The string of a URL is borrowed from it and stays the same object") {
    const auto url = UrlFrom("file:///a");
    CHECK_EQ(CFURLGetString(url.Get()), CFURLGetString(url.Get()));
    CHECK_EQ(CFGetRetainCount(CFURLGetString(url.Get())), 1);
}

TEST_CASE_FIXTURE(Balanced, "A path becomes a file URL and comes back") {
    CHECK_EQ(tests::TextOf(FromPath("/tmp/a b/n\u00E9").Get()), "file:///tmp/a%20b/n%C3%A9");
    CHECK_EQ(tests::TextOf(FromPath("/tmp/dir", true).Get()), "file:///tmp/dir/");
    CHECK_EQ(tests::TextOf(FromPath("/tmp/dir/").Get()), "file:///tmp/dir");
    CHECK_EQ(tests::TextOf(FromPath("/", true).Get()), "file:///");
    CHECK_FALSE(FromPath(""));
    CHECK_EQ(PathOf(FromPath("/tmp/a b/n\u00E9").Get()), "/tmp/a b/n\u00E9");
    CHECK_EQ(PathOf(UrlFrom("file:///tmp/dir/").Get()), "/tmp/dir");
    CHECK_EQ(PathOf(UrlFrom("file:///").Get()), "/");
    CHECK_EQ(PathOf(UrlFrom("mailto:someone").Get()), "null");
    CHECK_EQ(PathOf(UrlFrom("file:///%FF").Get()), "null");
    CHECK(Contains(RefusalOf([] { CFURLCopyFileSystemPath(UrlFrom("file:///").Get(), kCFURLHFSPathStyle); }),
                   "not modelled"));
}

TEST_CASE_FIXTURE(Balanced, "A relative path is relative to the current folder") {
    const auto url = FromPath("some/file");
    CHECK_EQ(tests::TextOf(url.Get()), "some/file");
    const std::string folder = std::filesystem::current_path();
    CHECK_EQ(PathOf(CFRef<CFURLRef>::Adopt(CFURLCopyAbsoluteURL(url.Get())).Get()), folder + "/some/file");
}

TEST_CASE_FIXTURE(Balanced, "Only a file URL of an item that exists has a reference, and the reference leads back") {
    const TemporaryFolder folder;
    const std::string file = folder.File("some file.txt");
    FSRef reference;
    REQUIRE(CFURLGetFSRef(FromPath(file).Get(), &reference));
    const auto back = CFRef<CFURLRef>::Adopt(CFURLCreateFromFSRef(nullptr, &reference));
    CHECK_EQ(tests::TextOf(back.Get()), "file://" + EscapedPath(file));
    REQUIRE(CFURLGetFSRef(FromPath(folder.Path()).Get(), &reference));
    const auto backToFolder = CFRef<CFURLRef>::Adopt(CFURLCreateFromFSRef(nullptr, &reference));
    CHECK_EQ(tests::TextOf(backToFolder.Get()), "file://" + EscapedPath(folder.Path()) + "/");
    CHECK(CFURLGetFSRef(FromPath(folder.Path(), true).Get(), &reference));
    CHECK(CFURLGetFSRef(UrlFrom("FILE://localhost" + EscapedPath(file) + "?query#fragment").Get(), &reference));
    CHECK_FALSE(CFURLGetFSRef(FromPath(folder.PathOf("absent")).Get(), &reference));
    CHECK_FALSE(CFURLGetFSRef(UrlFrom("http://localhost" + EscapedPath(file)).Get(), &reference));
    CHECK_FALSE(CFURLGetFSRef(UrlFrom("relative/leaf").Get(), &reference));
    CHECK_FALSE(CFURLGetFSRef(UrlFrom("file:///tmp%00/x").Get(), &reference));
    CHECK_FALSE(CFURLGetFSRef(UrlFrom("mailto:someone").Get(), &reference));
}

TEST_CASE_FIXTURE(Balanced, "A relative file URL finds its item through its base") {
    const TemporaryFolder folder;
    folder.File("leaf");
    const auto base = FromPath(folder.Path(), true);
    const auto url = CFRef<CFURLRef>::Adopt(CFURLCreateWithString(nullptr, CFSTR("leaf"), base.Get()));
    FSRef reference;
    CHECK(CFURLGetFSRef(url.Get(), &reference));
}

TEST_CASE_FIXTURE(Balanced, "A name that is not UTF-8 survives the way through a URL, byte by byte") {
    const TemporaryFolder folder;
    const std::string file = folder.Path() + "/\xFF.txt";
    close(open(file.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    const auto url = UrlFrom("file://" + EscapedPath(file));
    FSRef reference;
    REQUIRE(CFURLGetFSRef(url.Get(), &reference));
    const auto back = CFRef<CFURLRef>::Adopt(CFURLCreateFromFSRef(nullptr, &reference));
    CHECK(CFEqual(back.Get(), url.Get()));
}
