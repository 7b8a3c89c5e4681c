// The virtual parts of the system.
#include "simulator/macos/control/environment.h"

#include <algorithm>
#include <array>
#include <map>
#include <vector>

namespace sim::macos::environment {

namespace {

constexpr FSVolumeRefNum kFirstVolume = -100;

struct System {
    OSErr findFolderResult = noErr;
    bool frameworkExists = true;
    bool frameworkLoads = true;
    std::map<std::string, bool, std::less<>> exports{{"MDQueryGetSortOptionFlagsForAttribute", false},
                                                     {"MDQuerySetSortOptionFlagsForAttribute", true},
                                                     {"MDQuerySetSortOrder", true}};
    std::vector<Volume> volumes{{kFirstVolume, "/", u"Macintosh HD"}};
};

System &TheSystem() {
    static System *system = new System;
    return *system;
}

bool LiesOn(std::string_view path, std::string_view root) {
    return path == root || root == "/" || (path.starts_with(root) && path[root.size()] == '/');
}

} // namespace

void Reset() { TheSystem() = {}; }

void SetFindFolderResult(OSErr result) { TheSystem().findFolderResult = result; }
OSErr FindFolderResult() { return TheSystem().findFolderResult; }

void SetFrameworkExists(bool exists) { TheSystem().frameworkExists = exists; }
void SetFrameworkLoads(bool loads) { TheSystem().frameworkLoads = loads; }
bool FrameworkLoads() { return TheSystem().frameworkLoads; }

void SetExports(std::string_view function, bool exported) {
    TheSystem().exports.insert_or_assign(std::string(function), exported);
}

bool Exports(std::string_view function) {
    auto found = TheSystem().exports.find(function);
    return found != TheSystem().exports.end() && found->second;
}

bool IsMadeUpFolder(std::string_view path) {
    static constexpr std::array<std::string_view, 3> kAlwaysThere{"/System", "/System/Library", kFrameworksFolder};
    if (path == kCoreServicesFramework)
        return TheSystem().frameworkExists;
    return std::find(kAlwaysThere.begin(), kAlwaysThere.end(), path) != kAlwaysThere.end();
}

void AddVolume(std::string_view rootPath, std::u16string_view name) {
    std::vector<Volume> &volumes = TheSystem().volumes;
    const auto number = static_cast<FSVolumeRefNum>(kFirstVolume - static_cast<int>(volumes.size()));
    volumes.push_back({number, std::string(rootPath), std::u16string(name)});
}

Volume VolumeOf(std::string_view path) {
    const std::vector<Volume> &volumes = TheSystem().volumes;
    const Volume *deepest = &volumes.front();
    for (const Volume &volume : volumes)
        if (LiesOn(path, volume.rootPath) && volume.rootPath.size() > deepest->rootPath.size())
            deepest = &volume;
    return *deepest;
}

std::optional<Volume> VolumeWithRoot(std::string_view path) {
    Volume volume = VolumeOf(path);
    return volume.rootPath == path ? std::optional(volume) : std::nullopt;
}

} // namespace sim::macos::environment
