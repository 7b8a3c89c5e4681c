#include "simulator/macos/CoreServices/metadata/store/open_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <memory>

namespace sim::macos::store {

namespace {

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};

} // namespace

OpenFolder::OpenFolder(const std::string &path, const FileIdentity &identity)
    : descriptor_(open(path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)) {
    const auto state = *this ? ReadFileState("", descriptor_) : std::nullopt;
    if (!*this || (state && state->identity == identity))
        return;
    close(descriptor_);
    descriptor_ = -1;
}

OpenFolder::~OpenFolder() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

std::optional<std::vector<std::string>> OpenFolder::Names() const {
    const int readable = openat(descriptor_, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (readable < 0)
        return std::nullopt;
    std::vector<std::string> names;
    const std::unique_ptr<DIR, CloseFolder> folder(fdopendir(readable));
    while (const dirent64 *entry = readdir64(folder.get())) {
        std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(std::move(name));
    }
    return names;
}

} // namespace sim::macos::store
