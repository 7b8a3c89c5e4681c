#include "tests/simulator/macos/items/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/xattr.h>

namespace sim::macos {

namespace {

bool KeepsExtendedAttributes(const std::string &folder) {
    return setxattr(folder.c_str(), "user.test", "", 0, 0) == 0 && removexattr(folder.c_str(), "user.test") == 0;
}

/// Empty when none can be made there, or none that keeps extended attributes.
std::string MakeFolderIn(const std::filesystem::path &place) {
    std::string folder = (place / "items-XXXXXX").string();
    if (!mkdtemp(folder.data()))
        return {};
    if (KeepsExtendedAttributes(folder))
        return folder;
    std::filesystem::remove(folder);
    return {};
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    namespace fs = std::filesystem;
    for (const fs::path &place : {fs::temp_directory_path(), fs::path("/var/tmp"), fs::current_path()})
        if (path_.empty())
            path_ = MakeFolderIn(place);
    if (path_.empty())
        FAIL("no folder here keeps extended attributes of users; let TMPDIR name one that does");
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
}

std::string TemporaryFolder::Write(std::string_view name, std::string_view bytes) const {
    std::string path = PathOf(name);
    std::ofstream(path, std::ios::binary) << bytes;
    REQUIRE(std::filesystem::file_size(path) == bytes.size());
    return path;
}

std::string TemporaryFolder::MakeFolder(std::string_view name) const {
    REQUIRE(std::filesystem::create_directory(PathOf(name)));
    return PathOf(name);
}

void SetExtendedAttribute(const std::string &path, const char *name, std::string_view value) {
    REQUIRE(lsetxattr(path.c_str(), name, value.data(), value.size(), 0) == 0);
}

} // namespace sim::macos
