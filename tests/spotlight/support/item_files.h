// Real files for the items of one test, in a folder that goes with the object. It lies on a file system that keeps the
// extended attributes of users: the temporary folder where that does, else a usual place.
#pragma once

#include "simulator/host/host.h"

#include <doctest/doctest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/xattr.h>

namespace tests {

class ItemFolder {
public:
    ItemFolder() {
        namespace fs = std::filesystem;
        for (const fs::path &place : {fs::temp_directory_path(), fs::path("/var/tmp"), fs::current_path()})
            if (path_.empty())
                MakeIn(place);
        if (path_.empty())
            FAIL("no folder here keeps extended attributes of users; let TMPDIR name one that does");
    }
    ~ItemFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    ItemFolder(const ItemFolder &) = delete;
    ItemFolder &operator=(const ItemFolder &) = delete;

    const std::string &Path() const { return path_; }
    std::string PathOf(const std::string &name) const { return path_ + "/" + name; }
    /// Makes a file and gives its path.
    std::string File(const std::string &name, std::string_view bytes = "content") const {
        std::ofstream(PathOf(name), std::ios::binary) << bytes;
        REQUIRE(std::filesystem::file_size(PathOf(name)) == bytes.size());
        return PathOf(name);
    }
    std::string Folder(const std::string &name) const {
        REQUIRE(std::filesystem::create_directory(PathOf(name)));
        return PathOf(name);
    }

private:
    void MakeIn(const std::filesystem::path &place) {
        std::string folder = (place / "item-XXXXXX").string();
        if (!mkdtemp(folder.data()))
            return;
        if (setxattr(folder.c_str(), "user.test", "", 0, 0) == 0 && removexattr(folder.c_str(), "user.test") == 0)
            path_ = std::filesystem::canonical(folder).string();
        else
            std::filesystem::remove(folder);
    }

    std::string path_;
};

/// An item object that host code constructs for the file at that path.
inline sim::host::Object ConstructItem(sim::host::Host &host, const std::string &path) {
    sim::host::Object item = host.Create("MDItemQTX");
    item.Call<void>("Constructor", host.NewFolderItem(path));
    return item;
}

} // namespace tests
