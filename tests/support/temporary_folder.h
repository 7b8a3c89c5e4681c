// An empty folder for the files of one test, gone with the object. It lies on a file system that keeps the extended
// attributes of users: the temporary folder where that does, else a usual place. A machine with no such place fails
// every test that asks for a folder, with a message that says so.
#pragma once

#include <doctest/doctest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/xattr.h>

namespace tests {

class TemporaryFolder {
public:
    TemporaryFolder() {
        namespace fs = std::filesystem;
        for (const fs::path &place : {fs::temp_directory_path(), fs::path("/var/tmp"), fs::current_path()})
            if (path_.empty())
                MakeIn(place);
        if (path_.empty())
            FAIL("no folder here keeps extended attributes of users; let TMPDIR name one that does");
    }
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    const std::string &Path() const { return path_; }
    std::string PathOf(std::string_view name) const { return path_ + "/" + std::string(name); }
    /// Makes a file and gives its path.
    std::string File(std::string_view name, std::string_view bytes = "content") const {
        std::ofstream(PathOf(name), std::ios::binary) << bytes;
        REQUIRE(std::filesystem::file_size(PathOf(name)) == bytes.size());
        return PathOf(name);
    }
    std::string Folder(std::string_view name) const {
        REQUIRE(std::filesystem::create_directory(PathOf(name)));
        return PathOf(name);
    }

private:
    void MakeIn(const std::filesystem::path &place) {
        std::string folder = (place / "test-XXXXXX").string();
        if (!mkdtemp(folder.data()))
            return;
        if (setxattr(folder.c_str(), "user.test", "", 0, 0) == 0 && removexattr(folder.c_str(), "user.test") == 0)
            path_ = std::filesystem::canonical(folder).string();
        else
            std::filesystem::remove(folder);
    }

    std::string path_;
};

/// Sets an extended attribute; stops the test when that fails.
inline void SetExtendedAttribute(const std::string &path, const char *name, std::string_view value) {
    REQUIRE(lsetxattr(path.c_str(), name, value.data(), value.size(), 0) == 0);
}

} // namespace tests
