// An empty folder for the files of one test, gone with the object.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace tests {

class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "values-XXXXXX").string();
        path_ = std::filesystem::canonical(mkdtemp(name.data())).string();
    }
    ~ScratchFolder() { std::filesystem::remove_all(path_); }
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    const std::string &Path() const { return path_; }
    std::string PathOf(const std::string &name) const { return path_ + "/" + name; }
    /// Makes a file and gives its path.
    std::string File(const std::string &name) const {
        std::ofstream(PathOf(name)) << "content";
        return PathOf(name);
    }

private:
    std::string path_;
};

} // namespace tests
