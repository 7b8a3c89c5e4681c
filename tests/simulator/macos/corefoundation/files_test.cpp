#include "simulator/macos/CoreFoundation/file_system.h"
#include "simulator/macos/control/environment.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <cstring>
#include <filesystem>

using namespace sim::macos;
using namespace tests;

namespace {

CFRef<CFURLRef> URLOfPath(const std::string &path) {
    return CFRef<CFURLRef>::Adopt(
        CFURLCreateWithFileSystemPath(nullptr, MakeString(std::string_view(path)).Get(), kCFURLPOSIXPathStyle, false));
}

FSRef ReferenceOf(const std::string &path) {
    FSRef reference;
    REQUIRE(CFURLGetFSRef(URLOfPath(path).Get(), &reference));
    return reference;
}

std::string PathOf(const FSRef &reference) {
    const auto url = CFRef<CFURLRef>::Adopt(CFURLCreateFromFSRef(nullptr, &reference));
    if (!url)
        return "null";
    return Utf8Of(CFRef<CFStringRef>::Adopt(CFURLCopyFileSystemPath(url.Get(), kCFURLPOSIXPathStyle)).Get());
}

std::u16string NameOf(const FSRef &reference) {
    HFSUniStr255 name{};
    CHECK_EQ(FSGetCatalogInfo(&reference, kFSCatInfoNone, nullptr, &name, nullptr, nullptr), noErr);
    return std::u16string(name.unicode, name.unicode + name.length);
}

UInt32 NodeOf(const FSRef &reference) {
    FSCatalogInfo info{};
    CHECK_EQ(FSGetCatalogInfo(&reference, kFSCatInfoNodeID, &info, nullptr, nullptr, nullptr), noErr);
    return info.nodeID;
}

OSErr Check(const FSRef &reference) {
    return FSGetCatalogInfo(&reference, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
}

std::string PascalText(const UInt8 *name) { return {reinterpret_cast<const char *>(name + 1), name[0]}; }

} // namespace

TEST_CASE_FIXTURE(Balanced, "Every output of the catalogue call is given together or left out") {
    const TemporaryFolder folder;
    const FSRef reference = ReferenceOf(folder.File("plain.txt"));
    FSCatalogInfo info{};
    HFSUniStr255 name{};
    FSSpec spec{};
    FSRef parent{};
    CHECK_EQ(FSGetCatalogInfo(&reference, kFSCatInfoNodeID, &info, &name, &spec, &parent), noErr);
    CHECK_GE(info.nodeID, 16);
    CHECK_EQ(name.length, 9);
    CHECK_EQ(PathOf(parent), folder.Path());
    CHECK_EQ(PascalText(spec.name), "plain.txt");
    CHECK_EQ(+spec.parID, static_cast<SInt32>(NodeOf(parent)));
    CHECK_EQ(spec.vRefNum, -100);
    CHECK_EQ(Check(reference), noErr);
}

TEST_CASE_FIXTURE(Balanced, "The root of a volume is node 2, and what it is in is node 1, of which nothing is known") {
    const FSRef root = ReferenceOf("/");
    CHECK_EQ(NodeOf(root), 2);
    CHECK(NameOf(root) == u"Macintosh HD");
    FSSpec spec{};
    FSRef parent{};
    CHECK_EQ(FSGetCatalogInfo(&root, kFSCatInfoNone, nullptr, nullptr, &spec, &parent), noErr);
    CHECK_EQ(spec.vRefNum, -100);
    CHECK_EQ(+spec.parID, 1);
    CHECK_EQ(PascalText(spec.name), "Macintosh HD");
    CHECK_EQ(Check(parent), noErr);
    CHECK_EQ(NodeOf(parent), 1);
    CHECK(NameOf(parent).empty());
    CHECK_EQ(PathOf(parent), "null");
    CHECK_EQ(FSGetCatalogInfo(&parent, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr), nsvErr);
}

TEST_CASE_FIXTURE(Balanced, "A folder can be declared the root of a volume of its own") {
    const TemporaryFolder folder;
    folder.Folder("inside");
    environment::AddVolume(folder.Path(), u"Disk \u00E9");
    const FSRef root = ReferenceOf(folder.Path());
    CHECK_EQ(NodeOf(root), 2);
    CHECK(NameOf(root) == u"Disk \u00E9");
    FSSpec spec{};
    CHECK_EQ(FSGetCatalogInfo(&root, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr), noErr);
    CHECK_EQ(spec.vRefNum, -101);
    CHECK_EQ(PascalText(spec.name), "Disk \x8E");
    const FSRef inside = ReferenceOf(folder.PathOf("inside"));
    CHECK_EQ(FSGetCatalogInfo(&inside, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr), noErr);
    CHECK_EQ(spec.vRefNum, -101);
    CHECK_EQ(+spec.parID, 2);
    CHECK_NE(NodeOf(inside), 2);
    environment::Reset();
    CHECK_NE(NodeOf(root), 2);
}

TEST_CASE_FIXTURE(Balanced, "Names are decomposed and have a slash where the path has a colon") {
    const TemporaryFolder folder;
    CHECK(NameOf(ReferenceOf(folder.File("n\u00E9w"))) == u"ne\u0301w");
    CHECK(NameOf(ReferenceOf(folder.File("10:30"))) == u"10/30");
    CHECK(NameOf(ReferenceOf(folder.File("\U0001F600"))) == u"\U0001F600");
}

TEST_CASE_FIXTURE(Balanced, "A name that grows past 255 units when it is decomposed is cut there") {
    const TemporaryFolder folder;
    std::string name;
    for (int count = 0; count < 85; ++count)
        name += "\u1F82"; // three bytes, four units
    const std::u16string known = NameOf(ReferenceOf(folder.File(name)));
    CHECK_EQ(known.size(), 255);
    CHECK(known.substr(0, 4) == u"\u03B1\u0313\u0300\u0345");
}

TEST_CASE_FIXTURE(Balanced, "The name of old is MacRoman of at most 31 bytes") {
    const TemporaryFolder folder;
    const auto oldName = [&](const std::string &name) {
        const FSRef reference = ReferenceOf(folder.File(name));
        FSSpec spec{};
        CHECK_EQ(FSGetCatalogInfo(&reference, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr), noErr);
        return PascalText(spec.name);
    };
    CHECK_EQ(oldName("e\u0301\u0416\U0001F600"), "\x8E??");
    CHECK_EQ(oldName(std::string(31, 'x')), std::string(31, 'x'));
    const std::string mangled = oldName(std::string(40, 'x') + ".txt");
    CHECK_EQ(mangled.size(), 31);
    CHECK(mangled.starts_with("xxxxxxxx"));
    CHECK(Contains(mangled, "#"));
    CHECK(mangled.ends_with(".txt"));
}

TEST_CASE_FIXTURE(Balanced, "A file is found under the decomposed form of its name, and the composed") {
    const TemporaryFolder folder;
    const std::string composed = folder.File("n\u00E9w");
    CHECK_EQ(PathOf(ReferenceOf(folder.PathOf("ne\u0301w"))), composed);
    const std::string decomposed = folder.Folder("e\u0301");
    CHECK_EQ(PathOf(ReferenceOf(folder.PathOf("\u00E9"))), decomposed);
    CHECK_EQ(ExistingPath(folder.PathOf("\u00E9/../\u00E9/.")), decomposed);
    FSRef reference;
    CHECK_FALSE(CFURLGetFSRef(URLOfPath(folder.PathOf("N\u00E9w")).Get(), &reference));
}

TEST_CASE_FIXTURE(Balanced, "A link is an item of its own in the last place and a way on anywhere else") {
    const TemporaryFolder folder;
    folder.Folder("real");
    folder.File("real/file");
    std::filesystem::create_symlink("real", folder.PathOf("link"));
    CHECK_EQ(PathOf(ReferenceOf(folder.PathOf("link"))), folder.PathOf("link"));
    CHECK_EQ(PathOf(ReferenceOf(folder.PathOf("link/file"))), folder.PathOf("real/file"));
    std::filesystem::create_symlink("absent", folder.PathOf("broken"));
    CHECK_EQ(PathOf(ReferenceOf(folder.PathOf("broken"))), folder.PathOf("broken"));
}

TEST_CASE_FIXTURE(Balanced, "One item has one node number, and different items have different ones") {
    const TemporaryFolder folder;
    const std::string one = folder.File("one");
    const std::string other = folder.File("other");
    CHECK_EQ(NodeOf(ReferenceOf(one)), NodeOf(ReferenceOf(one)));
    CHECK_NE(NodeOf(ReferenceOf(one)), NodeOf(ReferenceOf(other)));
    const FSRef first = ReferenceOf(one);
    const FSRef again = ReferenceOf(one);
    CHECK_EQ(std::memcmp(&first, &again, sizeof first), 0);
}

TEST_CASE_FIXTURE(Balanced,
                  "A reference follows its item when it gets another name, even when another takes the old one") {
    const TemporaryFolder folder;
    const FSRef reference = ReferenceOf(folder.File("before"));
    std::filesystem::rename(folder.PathOf("before"), folder.PathOf("after"));
    CHECK_EQ(PathOf(reference), folder.PathOf("after"));
    folder.File("before");
    CHECK_EQ(PathOf(reference), folder.PathOf("after"));
    CHECK(NameOf(reference) == u"after");
}

TEST_CASE_FIXTURE(Balanced, "Each kind of bad reference has its own error") {
    const TemporaryFolder folder;
    const FSRef reference = ReferenceOf(folder.File("file"));
    std::filesystem::remove(folder.PathOf("file"));
    CHECK_EQ(Check(reference), fnfErr);
    CHECK_EQ(PathOf(reference), "null");
    CHECK_EQ(Check(FSRef{}), nsvErr);
    CHECK_EQ(PathOf(FSRef{}), "null");
    FSRef damaged = reference;
    damaged.hidden[79] = 1;
    CHECK_EQ(Check(damaged), paramErr);
    std::memset(&damaged, 0xAA, sizeof damaged);
    CHECK_EQ(Check(damaged), paramErr);
    CHECK_EQ(FSGetCatalogInfo(nullptr, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), paramErr);
    CHECK_EQ(FSGetCatalogInfo(&reference, kFSCatInfoNodeID, nullptr, nullptr, nullptr, nullptr), paramErr);
}

TEST_CASE_FIXTURE(Balanced, "A field of the catalogue that is not modelled is refused") {
    const FSRef root = ReferenceOf("/");
    FSCatalogInfo info{};
    CHECK(
        Contains(RefusalOf([&] { FSGetCatalogInfo(&root, 0x20, &info, nullptr, nullptr, nullptr); }), "not modelled"));
}

TEST_CASE_FIXTURE(Balanced, "The frameworks folder is found by each of its three domains and by no other") {
    for (const int domain :
         {static_cast<int>(kOnSystemDisk), static_cast<int>(kOnAppropriateDisk), static_cast<int>(kSystemDomain)}) {
        FSRef reference{};
        CHECK_EQ(FSFindFolder(static_cast<FSVolumeRefNum>(domain), kFrameworksFolderType, true, &reference), noErr);
        CHECK_EQ(PathOf(reference), "/System/Library/Frameworks");
        CHECK(NameOf(reference) == u"Frameworks");
    }
    FSRef reference{};
    CHECK_EQ(FSFindFolder(0, kFrameworksFolderType, true, &reference), nsvErr);
    CHECK_EQ(FSFindFolder(kOnAppropriateDisk, 0x64657363, true, &reference), fnfErr);
    CHECK_EQ(FSFindFolder(kOnAppropriateDisk, kFrameworksFolderType, true, nullptr), paramErr);
    environment::SetFindFolderResult(-43);
    CHECK_EQ(FSFindFolder(kOnAppropriateDisk, kFrameworksFolderType, true, &reference), -43);
}
