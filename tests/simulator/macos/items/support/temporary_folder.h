// A folder for the files of one test, gone with the object. It lies on a file system that keeps the extended attributes
// of users: the temporary folder when that one does, else one of the usual places. A machine with no such place at all
// fails every test that asks for a folder, with a message that says so.
#pragma once

#include <string>
#include <string_view>

namespace sim::macos {

class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    const std::string &Path() const { return path_; }
    std::string PathOf(std::string_view name) const { return path_ + "/" + std::string(name); }

    /// Writes a file and gives its path.
    std::string Write(std::string_view name, std::string_view bytes) const;
    std::string MakeFolder(std::string_view name) const;

private:
    std::string path_;
};

/// Sets an extended attribute; stops the test when that fails.
void SetExtendedAttribute(const std::string &path, const char *name, std::string_view value);

} // namespace sim::macos
