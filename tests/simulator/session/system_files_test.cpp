#include "simulator/macos/CoreFoundation/ledger.h"
#include "simulator/session/system_files.h"
#include "tests/support/temporary_folder.h"

#include <CoreServices/CoreServices.h>
#include <doctest/doctest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

using sim::SystemFiles;
using sim::host::FileReference;

// A folder with a file in it, and the proof that looking at them leaves no object behind.
class Files {
public:
    Files() : before_(sim::macos::ledger::Take()) { folder_.File("größe.txt", ""); }
    ~Files() { CHECK(sim::macos::ledger::Since(before_).ToText() == ""); }
    std::string Path(const std::string &name) const { return folder_.PathOf(name); }
    const std::string &Folder() const { return folder_.Path(); }

private:
    sim::macos::ledger::Snapshot before_;
    tests::TemporaryFolder folder_;
};

FSSpec SpecOf(const FileReference &reference) {
    FSRef named;
    std::memcpy(&named, reference.data(), sizeof named);
    FSSpec spec;
    REQUIRE(FSGetCatalogInfo(&named, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr) == noErr);
    return spec;
}

TEST_CASE("A path becomes a reference and the reference the path again") {
    const Files files;
    SystemFiles system;
    for (const std::string &path : {files.Path("größe.txt"), files.Folder(), std::string("/")}) {
        FileReference reference;
        REQUIRE(system.MakeReference(path, reference));
        CHECK(system.PathOf(reference) == path);
    }
}

TEST_CASE("There is no reference to what is not there, and none is made") {
    const Files files;
    SystemFiles system;
    FileReference reference{};
    CHECK_FALSE(system.MakeReference(files.Path("missing.txt"), reference));
    CHECK_FALSE(system.MakeReference("", reference));
    CHECK_FALSE(system.MakeReference("\xff\xfe", reference));
    CHECK(reference == FileReference{});
    CHECK_FALSE(system.PathOf(reference).has_value());
}

TEST_CASE("A reference follows its file to another name") {
    const Files files;
    SystemFiles system;
    FileReference reference;
    REQUIRE(system.MakeReference(files.Path("größe.txt"), reference));
    std::filesystem::rename(files.Path("größe.txt"), files.Path("other.txt"));
    CHECK(system.PathOf(reference) == files.Path("other.txt"));
    std::filesystem::remove(files.Path("other.txt"));
    CHECK_FALSE(system.PathOf(reference).has_value());
}

TEST_CASE("A specification is turned back for the root and for what lies in folders that were met") {
    const Files files;
    SystemFiles system;
    FileReference root;
    FileReference file;
    REQUIRE(SystemFiles().MakeReference("/", root));
    REQUIRE(SystemFiles().MakeReference(files.Path("größe.txt"), file));
    const FSSpec rootSpec = SpecOf(root);
    const FSSpec fileSpec = SpecOf(file);
    CHECK(system.PathOfSpec(&rootSpec) == "/");
    CHECK_FALSE(system.PathOfSpec(&fileSpec).has_value());
    system.Meet(files.Folder());
    CHECK(system.PathOfSpec(&fileSpec) == files.Path("größe.txt"));
}

} // namespace
