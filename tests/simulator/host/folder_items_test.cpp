#include "tests/simulator/host/fixture.h"

#include <cstring>
#include <map>

namespace tests {

namespace {

struct UnicodeName {
    uint16_t length = 0;
    char16_t units[255] = {};

    std::u16string Text() const { return {units, length}; }
};

UnicodeName NameOf(std::u16string_view text) {
    UnicodeName name;
    name.length = static_cast<uint16_t>(text.size());
    text.copy(name.units, 255);
    return name;
}

/// Knows a few paths; the first byte of a reference is the number of its path.
class FewFiles : public FileManager {
public:
    bool MakeReference(const std::string &path, FileReference &reference) override {
        for (const auto &[number, known] : paths)
            if (known == path) {
                reference[0] = std::byte{number};
                return true;
            }
        return false;
    }
    std::optional<std::string> PathOf(const FileReference &reference) override { return PathNumbered(reference[0]); }
    std::optional<std::string> PathOfSpec(const void *spec) override {
        return PathNumbered(*static_cast<const std::byte *>(spec));
    }

    std::map<unsigned char, std::string> paths = {{1, "/"}, {2, "/home"}, {3, "/home/lamp"}};

private:
    std::optional<std::string> PathNumbered(std::byte number) {
        auto found = paths.find(static_cast<unsigned char>(number));
        return found == paths.end() ? std::nullopt : std::optional(found->second);
    }
};

struct FilesHost : FewFiles, HostUnderTest {
    FilesHost() : HostUnderTest(Options(this)) {}
    static HostOptions Options(FileManager *files) {
        HostOptions options;
        options.files = files;
        return options;
    }
};

bool GetReference(const Object &item, FileReference &reference, UnicodeName *name) {
    return LowByte(Ask<uint32_t(void *, void *, UnicodeName *)>("REALFSRefFromFolderItem")(item.Address(),
                                                                                           reference.data(), name));
}

} // namespace

TEST_CASE("An existing item gives its own reference") {
    FilesHost host;
    FileReference reference = {};
    CHECK(GetReference(host.NewFolderItem("/home/lamp"), reference, nullptr));
    CHECK(reference[0] == std::byte{3});
}

TEST_CASE("An item that does not exist yet gives its parent's reference and its own name") {
    FilesHost host;
    FileReference reference = {};
    UnicodeName name;
    Object item = host.NewFolderItem("/home/n\xC3\xA9w:file");
    CHECK_FALSE(GetReference(item, reference, nullptr));
    CHECK(reference[0] == std::byte{0});
    CHECK(GetReference(item, reference, &name));
    CHECK(reference[0] == std::byte{2});
    CHECK(name.Text() == u"n\u00E9w/file");
    CHECK(GetReference(host.NewFolderItem("/new/"), reference, &name));
    CHECK(reference[0] == std::byte{1});
    CHECK(name.Text() == u"new");
}

TEST_CASE("An item without a parent, without a path, or with too long a name gives nothing") {
    FilesHost host;
    FileReference reference = {};
    UnicodeName name;
    for (const std::string &path : {std::string("/nowhere/lamp"), std::string(), std::string("/"), std::string("lamp"),
                                    "/home/" + std::string(256, 'x')}) {
        CAPTURE(path);
        CHECK_FALSE(GetReference(host.NewFolderItem(path), reference, &name));
    }
    CHECK(GetReference(host.NewFolderItem("/home/" + std::string(255, 'x')), reference, &name));
    CHECK(name.length == 255);
}

TEST_CASE("A folder item is made from a parent and a name, whether it exists or not") {
    FilesHost host;
    auto make = Ask<void *(const void *, const UnicodeName *)>("REALFolderItemFromParentFSRef");
    FileReference parent = {std::byte{2}};
    UnicodeName name = NameOf(u"e\u0301/x");
    CHECK(host.Adopt(make(parent.data(), &name)).Path() == "/home/e\xCC\x81:x");
    FileReference root = {std::byte{1}};
    name = NameOf(u"home");
    CHECK(host.Adopt(make(root.data(), &name)).Path() == "/home");
    FileReference nobody = {};
    CHECK(make(nobody.data(), &name) == nullptr);
    name.length = 0;
    CHECK(make(root.data(), &name) == nullptr);
}

TEST_CASE("A folder item is made from a file specification") {
    FilesHost host;
    auto make = Ask<void *(const void *)>("FolderItemFromFSSpec");
    unsigned char spec[70] = {1};
    CHECK(host.Adopt(make(spec)).Path() == "/");
    spec[0] = 9;
    CHECK(make(spec) == nullptr);
}

TEST_CASE("Without a File Manager nothing is there") {
    HostUnderTest host;
    FileReference reference = {};
    CHECK_FALSE(GetReference(host.NewFolderItem("/"), reference, nullptr));
    CHECK(Ask<void *(const void *)>("FolderItemFromFSSpec")(&reference) == nullptr);
}

TEST_CASE("A folder item is known by its method TrueItem") {
    HostUnderTest host;
    constexpr const char *kTrueItem = "TrueItem(Index as integer) as Folderitem";
    CHECK(CanLoadOn(host.NewFolderItem("/").Address(), kTrueItem));
    CHECK_FALSE(CanLoadOn(host.NewDate({}).Address(), kTrueItem));
    CHECK_FALSE(CanLoadOn(host.NewArray("string").Address(), kTrueItem));
}

} // namespace tests
