// Host folder items on their way to file URLs: items that exist, items that do not yet, and items that never could. The
// URL is the one that arrives in the search scope of a query.
#include "simulator/macos/CoreServices/metadata/query/query_scope.h"
#include "tests/convert/value_session.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <bit>

using sim::host::HostOptions;
using sim::host::Object;
using tests::AtAges;
using tests::Fault;
using tests::TemporaryFolder;
using tests::ValueSession;

namespace {

constexpr const char *kService = "REALFSRefFromFolderItem";

/// The URLs of a query's scope after these folder items were set, as texts.
std::vector<std::string> ScopeOf(ValueSession &session, const std::vector<std::string> &paths) {
    sim::host::Host &host = session.Host();
    const Object query = NewQuery(session);
    const Object items = host.NewArray("folderitem");
    for (const std::string &path : paths)
        items.Append(host.NewFolderItem(path));
    host.ClearLog();
    query.CallWith("SetSearchScope", {items, nullptr});
    CFArrayRef scope = sim::macos::SearchScopeOf(std::bit_cast<MDQueryRef>(query.Get<int32_t>("Handle")));
    REQUIRE(scope);
    const sim::macos::OwnCalls own;
    std::vector<std::string> texts;
    for (CFIndex i = 0; i < CFArrayGetCount(scope); i++)
        texts.push_back(sim::macos::Utf8Of(CFURLGetString(static_cast<CFURLRef>(CFArrayGetValueAtIndex(scope, i)))));
    return texts;
}

/// The URL of one folder item; "none" for none.
std::string URLOf(ValueSession &session, const std::string &path) {
    const std::vector<std::string> urls = ScopeOf(session, {path});
    REQUIRE(urls.size() <= 1);
    CHECK(session.TakeException() == "");
    return urls.empty() ? "none" : urls.front();
}

std::string FileURL(const std::string &escapedPath) { return "file://" + escapedPath; }

} // namespace

TEST_CASE("A folder item of an existing file gives its URL, at the first question") {
    const TemporaryFolder folder;
    const std::string path = folder.File("file.txt");
    ValueSession session;
    CHECK(URLOf(session, path) == FileURL(path));
    CHECK(session.Host().CallCount(kService) == 1);
}

TEST_CASE("A folder item of an existing folder gives a folder's URL") {
    const TemporaryFolder folder;
    ValueSession session;
    CHECK(URLOf(session, folder.Path()) == FileURL(folder.Path() + "/"));
    CHECK(URLOf(session, "/") == "file:///");
}

TEST_CASE("A folder item of a file that does not exist yet gives the folder's URL with the name appended") {
    const TemporaryFolder folder;
    ValueSession session;
    CHECK(URLOf(session, folder.PathOf("new file.txt")) == FileURL(folder.PathOf("new%20file.txt")));
    CHECK(session.Host().CallCount(kService) == 2);
}

TEST_CASE("The name of a file that does not exist yet, written in precomposed form, is appended in form D") {
    const TemporaryFolder folder;
    ValueSession session;
    CHECK(URLOf(session, folder.PathOf("n\u00E9w")) == FileURL(folder.PathOf("ne%CC%81w")));
    CHECK(URLOf(session, folder.PathOf("ne\u0301w")) == FileURL(folder.PathOf("ne%CC%81w")));
    // A letter with two marks, a syllable, and a character of the upper planes that has a decomposition.
    CHECK(URLOf(session, folder.PathOf("\u1EC7")) == FileURL(folder.PathOf("e%CC%A3%CC%82")));
    CHECK(URLOf(session, folder.PathOf("\uD55C")) == FileURL(folder.PathOf("%E1%84%92%E1%85%A1%E1%86%AB")));
    CHECK(URLOf(session, folder.PathOf("\U0001D15E")) == FileURL(folder.PathOf("%F0%9D%85%97%F0%9D%85%A5")));
}

TEST_CASE("The name of an existing file stays as the file system has it") {
    const TemporaryFolder folder;
    const std::string path = folder.File("n\u00E9w");
    ValueSession session;
    CHECK(URLOf(session, path) == FileURL(folder.PathOf("n%C3%A9w")));
}

TEST_CASE("A folder item whose parent folder does not exist either gives no URL") {
    const TemporaryFolder folder;
    ValueSession session;
    CHECK(URLOf(session, folder.PathOf("missing/file.txt")) == "none");
    CHECK(session.Host().CallCount(kService) == 2);
}

TEST_CASE("A folder item that names nothing gives no URL") {
    ValueSession session;
    CHECK(URLOf(session, "") == "none");
}

TEST_CASE("A folder item in a file that is no folder gives no URL") {
    const TemporaryFolder folder;
    const std::string path = folder.File("file.txt");
    ValueSession session;
    CHECK(URLOf(session, path + "/inside/deeper") == "none");
}

TEST_CASE("A name as long as the record holds is appended, and a longer one gives no URL") {
    const TemporaryFolder folder;
    ValueSession session;
    const std::string longest(255, 'n');
    CHECK(URLOf(session, folder.PathOf(longest)) == FileURL(folder.PathOf(longest)));
    CHECK(URLOf(session, folder.PathOf(longest + "n")) == "none");
}

TEST_CASE("A name with half of a surrogate pair in it gives no URL, and whole pairs are appended") {
    const TemporaryFolder folder;
    ValueSession session;
    const auto urlOf = [&](std::u16string_view name) {
        const Object query = NewQuery(session);
        const Object items = session.Host().NewArray("folderitem", {session.Host().NewFolderItem(folder.Path(), name)});
        query.CallWith("SetSearchScope", {items, nullptr});
        CFArrayRef scope = sim::macos::SearchScopeOf(std::bit_cast<MDQueryRef>(query.Get<int32_t>("Handle")));
        const sim::macos::OwnCalls own;
        return CFArrayGetCount(scope) == 0
                   ? std::string("none")
                   : sim::macos::Utf8Of(CFURLGetString(static_cast<CFURLRef>(CFArrayGetValueAtIndex(scope, 0))));
    };
    constexpr char16_t kHigh = 0xD83D, kLow = 0xDE00, kHighest = 0xDBFF, kLowest = 0xDC00, kLastLow = 0xDFFF;
    for (const std::u16string &name : std::initializer_list<std::u16string>{{kHigh},
                                                                            {kLow},
                                                                            {kHigh, u'a'},
                                                                            {u'a', kHigh},
                                                                            {kLow, u'a'},
                                                                            {u'a', kLow},
                                                                            {kHigh, kHigh, kLow},
                                                                            {kHigh, kLow, kLow},
                                                                            {kLow, kHigh},
                                                                            {kHighest},
                                                                            {kLowest},
                                                                            {kLastLow}}) {
        CAPTURE(name.size());
        CHECK(urlOf(name) == "none");
    }
    CHECK(urlOf(std::u16string{kHigh, kLow}) == FileURL(folder.PathOf("%F0%9F%98%80")));
    CHECK(urlOf(std::u16string{u'a', kHighest, kLowest, u'b'}) == FileURL(folder.PathOf("a%F4%8F%B0%80b")));
    CHECK(urlOf(std::u16string{0xD800, kLastLow}) == FileURL(folder.PathOf("%F0%90%8F%BF")));
    CHECK(urlOf(std::u16string{0xD7FF, 0xE000}) == FileURL(folder.PathOf("%ED%9F%BF%EE%80%80")));
    CHECK(session.TakeException() == "");
}

TEST_CASE("A host without \"REALFSRefFromFolderItem\" gives no URLs, and is asked again for each try") {
    const TemporaryFolder folder;
    ValueSession session(HostOptions{.withheld = {kService}});
    CHECK(URLOf(session, folder.Path()) == "none");
    CHECK(session.Host().RequestCount(kService) == 2);
    session.Host().Offer(kService);
    CHECK(URLOf(session, folder.Path()) == FileURL(folder.Path() + "/"));
}

TEST_CASE("A host that gives no reference at the first question is asked for folder and name") {
    const TemporaryFolder folder;
    const std::string path = folder.File("file.txt");
    ValueSession session;
    session.Host().ReturnNothing(kService, 1, 1);
    CHECK(URLOf(session, path) == FileURL(path));
    CHECK(session.Host().CallCount(kService) == 2);
}

TEST_CASE("A host that gives no reference at either question gives no URL") {
    const TemporaryFolder folder;
    ValueSession session;
    session.Host().ReturnNothing(kService);
    CHECK(URLOf(session, folder.Path()) == "none");
    CHECK(session.Host().CallCount(kService) == 2);
}

TEST_CASE("A reference that yields no URL is as good as none: folder and name are asked for") {
    const TemporaryFolder folder;
    const std::string path = folder.File("file.txt");
    ValueSession session;
    const Fault fault("CFURLCreateFromFSRef", 1);
    CHECK(URLOf(session, path) == FileURL(path));
    CHECK(fault.Failed() == 1);
    CHECK(session.Host().CallCount(kService) == 2);
}

TEST_CASE("A folder that yields no URL gives none") {
    const TemporaryFolder folder;
    ValueSession session;
    const Fault fault("CFURLCreateFromFSRef");
    CHECK(URLOf(session, folder.PathOf("new")) == "none");
    CHECK(fault.Failed() == 1);
}

TEST_CASE("A name of which no CFString can be made gives no URL") {
    const TemporaryFolder folder;
    ValueSession session;
    const Fault fault("CFStringCreateWithCharacters");
    CHECK(URLOf(session, folder.PathOf("new")) == "none");
    CHECK(fault.Failed() == 1);
}

TEST_CASE("A name of which no mutable copy can be made is appended as it is written") {
    const TemporaryFolder folder;
    ValueSession session;
    const Fault fault("CFStringCreateMutableCopy");
    CHECK(URLOf(session, folder.PathOf("n\u00E9w")) == FileURL(folder.PathOf("n%C3%A9w")));
    CHECK(fault.Failed() == 1);
}

TEST_CASE("A name that cannot be appended gives no URL") {
    const TemporaryFolder folder;
    ValueSession session;
    const Fault fault("CFURLCreateCopyAppendingPathComponent");
    CHECK(URLOf(session, folder.PathOf("new")) == "none");
    CHECK(fault.Failed() == 1);
}

TEST_CASE("Each creation that fails on the way of an existing and of a new item leaves nothing behind") {
    const TemporaryFolder folder;
    folder.File("file.txt");
    size_t failures = 0;
    for (size_t n = 1; n == failures + 1; n++) {
        CAPTURE(n);
        ValueSession session;
        const Object query = NewQuery(session);
        const Object items = session.Host().NewArray("folderitem");
        items.Append(session.Host().NewFolderItem(folder.PathOf("file.txt")));
        items.Append(session.Host().NewFolderItem(folder.PathOf("n\u00E9w")));
        const Fault fault(n);
        query.CallWith("SetSearchScope", {items, nullptr});
        failures += fault.Failed();
        CHECK(session.TakeException() == "");
    }
    CHECK(failures >= 6);
}

TEST_CASE("Folder items become URLs on hosts of every age, nil ones being left out") {
    const TemporaryFolder folder;
    const std::string path = folder.File("file.txt");
    AtAges(std::initializer_list<std::optional<double>>{std::nullopt, 2011.4, 2012.5, 2016.1},
           [&](std::optional<double> age) {
               ValueSession session(HostOptions{.version = age});
               CHECK(ScopeOf(session, {path, "", folder.Path()}) ==
                     std::vector<std::string>{FileURL(path), FileURL(folder.Path() + "/")});
           });
}

TEST_CASE("An item is constructed through a folder item of an existing file, and of none else") {
    const TemporaryFolder folder;
    const std::string path = folder.File("file.txt");
    ValueSession session;
    const auto construct = [&](const std::string &of) {
        const Object item = session.Host().Create("MDItemQTX");
        item.CallWith("Constructor", {session.Host().NewFolderItem(of)});
        return item.Get<std::string>("Path");
    };
    CHECK(construct(path) == path);
    CHECK(session.TakeException() == "");
    CHECK(construct(folder.PathOf("new")) == "");
    CHECK(session.TakeException() == "NilObjectException: MDItem Reference is nil");
    CHECK(construct(folder.PathOf("missing/new")) == "");
    CHECK(session.TakeException() == "NilObjectException: Folderitem is invalid");
}
