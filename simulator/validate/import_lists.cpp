#include "simulator/validate/import_lists.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace sim::validate {
namespace {

uint32_t PackedVersion(const std::string &text) {
    uint32_t major = 0, minor = 0;
    char point = 0;
    std::istringstream words(text);
    words >> major >> point >> minor;
    return major << 16 | minor << 8;
}

void ReadList(const std::filesystem::path &path, ImportLists &lists) {
    std::ifstream file(path);
    std::string library;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string kind, name, weak;
        if (!(words >> kind) || kind.front() == '#')
            continue;
        if (!(words >> name))
            throw std::runtime_error(path.string() + ": a line in an unknown form: " + line);
        words >> weak;
        if (kind == "library")
            lists.libraries[library = name] = {};
        else if (kind == "current-version")
            lists.libraries[library].currentVersion = PackedVersion(name);
        else if (kind == "compatibility-version")
            lists.libraries[library].compatibilityVersion = PackedVersion(name);
        else if (kind == "function" || kind == "data")
            lists.homes[name] = {library, kind == "function", weak == "weak"};
        else
            throw std::runtime_error(path.string() + ": a line in an unknown form: " + line);
    }
}

} // namespace

ImportLists ImportLists::Read(const std::filesystem::path &folder) {
    ImportLists lists;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".txt")
            ReadList(entry.path(), lists);
    if (lists.homes.empty())
        throw std::runtime_error(folder.string() + ": there are no import lists");
    return lists;
}

} // namespace sim::validate
