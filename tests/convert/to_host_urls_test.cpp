// URLs on their way to the host: folder items for what exists and what could, text for the rest.
#include "tests/convert/value_session.h"
#include "tests/support/temporary_folder.h"

#include "simulator/macos/control/environment.h"
#include "tests/support/fault.h"

#include <doctest/doctest.h>

using sim::host::HostOptions;
using tests::CoreFileURL;
using tests::CoreURL;
using tests::CoreValue;
using tests::Fault;
using tests::TemporaryFolder;
using tests::ValueSession;

namespace {

constexpr const char *kByParent = "REALFolderItemFromParentFSRef";
constexpr const char *kBySpec = "FolderItemFromFSSpec";

/// A decomposed e with an acute accent.
const std::string kDecomposedName = "cafe\xCC\x81";
const std::string kComposedName = "caf\xC3\xA9";

} // namespace

TEST_CASE("The URL of an existing file becomes a folder item, by its parent and name") {
    ValueSession session;
    const TemporaryFolder folder;
    const std::string path = folder.File("a b.txt");
    CHECK(session.TextInHost(CoreFileURL(path)) == "FolderItem " + path);
    CHECK(session.TextInHost(CoreFileURL(folder.Path(), true)) == "FolderItem " + folder.Path());
    CHECK(session.Host().CallCount(kByParent) == 2);
    CHECK(session.Host().CallCount(kBySpec) == 0);
}

TEST_CASE("The root of a volume becomes a folder item by its file specification") {
    ValueSession session;
    CHECK(session.TextInHost(CoreURL("file:///")) == "FolderItem /");
    CHECK(session.Host().CallCount(kByParent) == 0);
    CHECK(session.Host().CallCount(kBySpec) == 1);
}

TEST_CASE("The root of a volume without a host service for specifications becomes text") {
    ValueSession session(HostOptions{.withheld = {kBySpec}});
    CHECK(session.TextInHost(CoreURL("file:///")) == "\"file:///\"");
}

TEST_CASE("A file whose catalogue entry cannot be read becomes a folder item by its file specification") {
    // The questions are, in order: the node and the parent, the name, the parent itself.
    for (size_t question = 1; question <= 3; question++) {
        CAPTURE(question);
        ValueSession session;
        const TemporaryFolder folder;
        const std::string path = folder.File("file.txt");
        // The host finds a specification in folders that it has met.
        session.FromHost(session.Host().NewFolderItem(path));
        const Fault fault("FSGetCatalogInfo", question);
        CHECK(session.TextInHost(CoreFileURL(path)) == "FolderItem " + path);
        CHECK(session.Host().CallCount(kByParent) == 0);
        CHECK(session.Host().CallCount(kBySpec) == 1);
    }
}

TEST_CASE("A file for which the system gives neither parent nor specification becomes text") {
    ValueSession session;
    const TemporaryFolder folder;
    const std::string path = folder.File("file.txt");
    const Fault fault("FSGetCatalogInfo");
    CHECK(session.TextInHost(CoreFileURL(path)) == "\"file://" + path + "\"");
    CHECK(session.Host().CallCount(kBySpec) == 0);
}

TEST_CASE("A file for which the host makes no folder item becomes text, without a second way being tried") {
    ValueSession session;
    const TemporaryFolder folder;
    const std::string path = folder.File("file.txt");
    session.Host().ReturnNothing(kByParent);
    CHECK(session.TextInHost(CoreFileURL(path)) == "\"file://" + path + "\"");
    CHECK(session.Host().CallCount(kBySpec) == 0);
}

TEST_CASE("The URL of something new in an existing folder becomes a folder item of that name") {
    ValueSession session;
    const TemporaryFolder folder;
    CHECK(session.TextInHost(CoreFileURL(folder.PathOf("not yet"))) == "FolderItem " + folder.PathOf("not yet"));
    CHECK(session.TextInHost(CoreURL("file://" + folder.Path() + "/a%20b%25")) ==
          "FolderItem " + folder.PathOf("a b%"));
}

TEST_CASE("The name of something new is decomposed") {
    ValueSession session;
    const TemporaryFolder folder;
    CHECK(session.TextInHost(CoreFileURL(folder.PathOf(kComposedName))) ==
          "FolderItem " + folder.PathOf(kDecomposedName));
}

TEST_CASE("The name of something new is cut off at 255 UTF-16 units, counted after it was decomposed") {
    ValueSession session;
    const TemporaryFolder folder;
    CHECK(session.TextInHost(CoreFileURL(folder.PathOf(std::string(255, 'x')))) ==
          "FolderItem " + folder.PathOf(std::string(255, 'x')));
    CHECK(session.TextInHost(CoreFileURL(folder.PathOf(std::string(300, 'x')))) ==
          "FolderItem " + folder.PathOf(std::string(255, 'x')));
    std::string accents, expected;
    for (int i = 0; i < 128; i++) {
        accents += "\xC3\xA9";
        expected += i < 127 ? "e\xCC\x81" : "e";
    }
    CHECK(session.TextInHost(CoreFileURL(folder.PathOf(accents))) == "FolderItem " + folder.PathOf(expected));
}

TEST_CASE("Without memory for a decomposed copy the name of something new stays as it is written") {
    ValueSession session;
    const TemporaryFolder folder;
    const CoreValue url = CoreFileURL(folder.PathOf(kComposedName));
    const Fault fault("CFStringCreateMutableCopy", 1);
    CHECK(session.TextInHost(url) == "FolderItem " + folder.PathOf(kComposedName));
    CHECK(fault.Failed() == 1);
}

TEST_CASE("Something new for which the system gives no folder or no name becomes text") {
    for (const char *function : {"CFURLCreateCopyDeletingLastPathComponent", "CFURLCopyLastPathComponent"}) {
        ValueSession session;
        const TemporaryFolder folder;
        const CoreValue url = CoreFileURL(folder.PathOf("new"));
        const Fault fault(function, 1);
        CHECK(session.TextInHost(url) == "\"file://" + folder.PathOf("new") + "\"");
        CHECK(fault.Failed() == 1);
    }
}

TEST_CASE("The URL of something in a folder that is not there becomes text") {
    ValueSession session;
    CHECK(session.TextInHost(CoreURL("file:///no%20such%20folder/file")) == "\"file:///no%20such%20folder/file\"");
}

TEST_CASE("A URL with a web scheme becomes its absolute text") {
    ValueSession session;
    CHECK(session.TextInHost(CoreURL("http://example.org/usr/x?q=1#f")) == "\"http://example.org/usr/x?q=1#f\"");
    CHECK(session.TextInHost(CoreURL("mailto:someone@example.org")) == "\"mailto:someone@example.org\"");
}

TEST_CASE("A relative URL becomes the text of the URL that it stands for") {
    ValueSession session;
    const CoreValue base = CoreURL("http://example.org/folder/");
    const auto text = sim::macos::MakeString("leaf");
    const CoreValue url =
        CoreValue::Adopt(CFURLCreateWithString(nullptr, text.Get(), static_cast<CFURLRef>(base.Get())));
    CHECK(session.TextInHost(url) == "\"http://example.org/folder/leaf\"");
}

TEST_CASE("A URL whose absolute form or text cannot be had gives nil") {
    SUBCASE("no absolute URL") {
        ValueSession session;
        const CoreValue url = CoreURL("http://example.org/");
        const Fault fault("CFURLCopyAbsoluteURL", 1);
        CHECK(session.ToHost(url).IsNil());
    }
    SUBCASE("the host builds no text") {
        ValueSession session(HostOptions{.withheld = {"REALBuildString", "REALBuildStringWithEncoding"}});
        CHECK(session.ToHost(CoreURL("http://example.org/")).IsNil());
    }
    SUBCASE("the host makes no variant: the text is unlocked") {
        ValueSession session(HostOptions{.withheld = {"StringToVariant"}});
        CHECK(session.ToHost(CoreURL("http://example.org/")).IsNil());
        CHECK(session.Host().Alive("string") == 0);
    }
}

TEST_CASE("A file on another volume, and that volume's root, are found each in its way") {
    const TemporaryFolder folder;
    const std::string path = folder.File("file.txt");
    sim::macos::environment::AddVolume(folder.Path(), u"Other");
    {
        ValueSession session;
        CHECK(session.TextInHost(CoreFileURL(path)) == "FolderItem " + path);
        CHECK(session.TextInHost(CoreFileURL(folder.Path(), true)) == "FolderItem " + folder.Path());
        CHECK(session.Host().CallCount(kByParent) == 1);
        CHECK(session.Host().CallCount(kBySpec) == 1);
    }
    sim::macos::environment::Reset();
}
