#include "simulator/macos/CoreServices/metadata/store/folder_listing.h"

#include <dirent.h>

#include <memory>

namespace sim::macos::store {

namespace {

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};

} // namespace

std::vector<std::string> ListFolder(const std::string &path) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, CloseFolder> folder(opendir(path.c_str()));
    if (!folder)
        return names;
    while (const dirent64 *entry = readdir64(folder.get())) {
        std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(std::move(name));
    }
    return names;
}

} // namespace sim::macos::store
