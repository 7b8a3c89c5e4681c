// Items that host code constructs from folder items: what they hold, and the three ways in which that fails.
#include <doctest/doctest.h>

#include "simulator/macos/CoreFoundation/ledger.h"
#include "tests/spotlight/support/item_files.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

using namespace tests;

namespace {

constexpr const char *kNilFolderItem = "NilObjectException: Folderitem is nil";
constexpr const char *kInvalidFolderItem = "NilObjectException: Folderitem is invalid";

int32_t HandleOf(const Object &item) { return item.Get<int32_t>("Handle"); }

} // namespace

TEST_CASE("An item constructed from a folder item owns one reference to the system's item of that file") {
    const TemporaryFolder folder;
    const std::string path = folder.File("letter.txt");
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        Object item = ConstructItem(session.Host(), path);
        CHECK(session.TakeException() == "");
        REQUIRE(HandleOf(item) != 0);
        CHECK(CFGetTypeID(ItemOf(item)) == MDItemGetTypeID());
        CHECK(CFGetRetainCount(ItemOf(item)) == 1);
        CHECK(item.Get<std::string>("Path") == path);
        const auto kept = CFRef<MDItemRef>::Retain(ItemOf(item));
        item.Release();
        CHECK(CFGetRetainCount(kept.Get()) == 1);
    });
}

TEST_CASE("Constructing an item from nil raises that the folder item is nil") {
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        Object item = session.Host().Create("MDItemQTX");
        item.Call<void>("Constructor", nullptr);
        CHECK(session.TakeException() == kNilFolderItem);
        CHECK(HandleOf(item) == 0);
    });
}

TEST_CASE("Constructing an item from a folder item that has no URL raises that the folder item is invalid") {
    const TemporaryFolder folder;
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        for (const std::string &path : {std::string(), folder.PathOf("no folder/no file")}) {
            CAPTURE(path);
            const Object item = ConstructItem(session.Host(), path);
            CHECK(session.TakeException() == kInvalidFolderItem);
            CHECK(HandleOf(item) == 0);
        }
    });
}

TEST_CASE("Constructing an item for a file that does not exist gets a URL but no item, and raises the nil reference") {
    const TemporaryFolder folder;
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        const Object item = ConstructItem(session.Host(), folder.PathOf("missing"));
        CHECK(session.TakeException() == kNilItem);
        CHECK(HandleOf(item) == 0);
    });
}

TEST_CASE("An existing file that the system cannot describe raises the nil reference") {
    const TemporaryFolder folder;
    const std::string path = folder.File("letter.txt");
    TestSession session;
    const Fault fault("MDItemCreateWithURL", 1);
    const Object item = ConstructItem(session.Host(), path);
    CHECK(fault.Failed() == 1);
    CHECK(session.TakeException() == kNilItem);
    CHECK(HandleOf(item) == 0);
}

TEST_CASE("By the time the missing item is raised its URL is gone") {
    const TemporaryFolder folder;
    TestSession session;
    size_t urls = 0;
    session.Host().Before("RuntimeRaiseException", 1, [&urls] {
        for (const auto &entry : sim::macos::ledger::Since({}).made) // all that are alive
            urls += entry.type == "CFURL";
    });
    ConstructItem(session.Host(), folder.PathOf("missing"));
    CHECK(session.TakeException() != "");
    CHECK(urls == 0);
}

TEST_CASE("The constructor's exceptions carry an ASCII message and the number 0") {
    const TemporaryFolder folder;
    TestSession session;
    auto &host = session.Host();
    host.Create("MDItemQTX").Call<void>("Constructor", nullptr);
    ConstructItem(host, "");
    ConstructItem(host, folder.PathOf("missing"));
    const auto raised = host.TakeRaised();
    REQUIRE(raised.size() == 3);
    for (const auto &exception : raised) {
        CHECK(exception.errorNumber == 0);
        CHECK(exception.messageEncoding == sim::host::kASCII);
    }
}

TEST_CASE("An object whose constructor failed has no item, and can be constructed after all") {
    const TemporaryFolder folder;
    const std::string path = folder.File("letter.txt");
    TestSession session;
    auto &host = session.Host();
    Object item = ConstructItem(host, folder.PathOf("missing"));
    CHECK(session.TakeException() == kNilItem);
    CHECK(item.Call("GetAttribute", "kMDItemFSName").IsNil());
    CHECK(session.TakeException() == kNilItem);
    item.Call<void>("Constructor", host.NewFolderItem(path));
    CHECK(item.Call<std::string>("AttributeString", "kMDItemFSName") == "letter.txt");
    CHECK(session.TakeException() == "");
}

TEST_CASE("Constructing an object twice replaces its item and releases nothing") {
    const TemporaryFolder folder;
    const std::string first = folder.File("first"), second = folder.File("second");
    TestSession session;
    auto &host = session.Host();
    Object item = ConstructItem(host, first);
    const MDItemRef replaced = ItemOf(item);
    item.Call<void>("Constructor", host.NewFolderItem(second));
    CHECK(ItemOf(item) != replaced);
    CHECK(item.Get<std::string>("FSName") == "second");
    CHECK(CFGetRetainCount(replaced) == 1);
    item.Release();
    CHECK(CFGetRetainCount(replaced) == 1);
    CFRelease(replaced); // nobody else does
}

TEST_CASE("A second construction that finds no item leaves none; one without a URL leaves the first") {
    const TemporaryFolder folder;
    const std::string path = folder.File("first");
    TestSession session;
    auto &host = session.Host();
    Object item = ConstructItem(host, path);
    const MDItemRef first = ItemOf(item);
    item.Call<void>("Constructor", nullptr);
    CHECK(session.TakeException() == kNilFolderItem);
    CHECK(ItemOf(item) == first);
    item.Call<void>("Constructor", host.NewFolderItem(""));
    CHECK(session.TakeException() == kInvalidFolderItem);
    CHECK(ItemOf(item) == first);
    item.Call<void>("Constructor", host.NewFolderItem(folder.PathOf("missing")));
    CHECK(session.TakeException() == kNilItem);
    CHECK(HandleOf(item) == 0);
    CHECK(CFGetRetainCount(first) == 1);
    CFRelease(first); // its object has forgotten it
}
