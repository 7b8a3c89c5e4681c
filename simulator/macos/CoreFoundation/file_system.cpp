// Path look-up and the table behind file references.
#include "simulator/macos/CoreFoundation/file_system.h"

#include "simulator/macos/CoreFoundation/normalization.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/control/environment.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

namespace sim::macos {

namespace {

using Identity = std::pair<dev_t, ino_t>;

struct Entry {
    std::string path;
    Identity identity;
};

struct Table {
    std::vector<Entry> entries;
    std::map<std::tuple<Identity, std::string>, std::uint32_t> numbers;
    std::map<Identity, UInt32> nodeIds;
};

constexpr char kMagic[8] = {'i', 't', 'e', 'm', ' ', 'r', 'e', 'f'};
constexpr std::uint32_t kRootParent = 0xffffffff;

// What the bytes of a reference hold; the rest is zero.
struct Content {
    char magic[sizeof kMagic];
    std::uint32_t number;
};

Table &TheTable() {
    static Table *table = new Table;
    return *table;
}

std::string Join(const std::string &folder, std::string_view name) {
    return (folder == "/" ? "" : folder) + "/" + std::string(name);
}

std::optional<Identity> IdentityOf(const std::string &path) {
    struct stat status;
    if (lstat(path.c_str(), &status) == 0)
        return Identity{status.st_dev, status.st_ino};
    if (environment::IsMadeUpFolder(path))
        return Identity{static_cast<dev_t>(-1), static_cast<ino_t>(std::hash<std::string>()(path))};
    return std::nullopt;
}

std::optional<std::string> FirstInFolder(const std::string &folder,
                                         const std::function<bool(const std::string &name)> &isWanted) {
    std::unique_ptr<DIR, int (*)(DIR *)> listing(opendir(folder.c_str()), closedir);
    while (listing) {
        const dirent *entry = readdir(listing.get());
        if (!entry)
            break;
        const std::string name = entry->d_name;
        if (name != "." && name != ".." && isWanted(name))
            return Join(folder, name);
    }
    return std::nullopt;
}

std::optional<std::string> LookUp(const std::string &folder, std::string_view name) {
    const std::string direct = Join(folder, name);
    if (IdentityOf(direct))
        return direct;
    const std::u16string wanted = Normalized(Utf16(name), kCFStringNormalizationFormD);
    return FirstInFolder(folder, [&](const std::string &candidate) {
        return Normalized(Utf16(candidate), kCFStringNormalizationFormD) == wanted;
    });
}

std::string WithoutLinks(const std::string &path) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode))
        return path;
    std::unique_ptr<char, void (*)(void *)> target(realpath(path.c_str(), nullptr), free);
    return target ? target.get() : path;
}

// Where an entry's item is now. It may have another name in its folder; failing that, whatever has its path is it.
std::optional<std::string> Find(Entry &entry) {
    const std::optional<Identity> there = IdentityOf(entry.path);
    if (there == entry.identity)
        return entry.path;
    const std::string folder = ParentOf(entry.path);
    std::optional<std::string> renamed = FirstInFolder(
        folder, [&](const std::string &name) { return IdentityOf(Join(folder, name)) == entry.identity; });
    if (renamed) {
        entry.path = *renamed;
        return renamed;
    }
    if (!there)
        return std::nullopt;
    entry.identity = *there;
    return entry.path;
}

FSRef ReferenceWithNumber(std::uint32_t number) {
    Content content{};
    std::memcpy(content.magic, kMagic, sizeof kMagic);
    content.number = number;
    FSRef reference{};
    std::memcpy(reference.hidden, &content, sizeof content);
    return reference;
}

} // namespace

std::optional<std::string> ExistingPath(std::string_view path) {
    if (path.empty() || path.front() != '/' || path.find('\0') != std::string_view::npos)
        return std::nullopt;
    std::string reached = "/";
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view name = path.substr(start, end - start);
        start = end + 1;
        if (name.empty() || name == ".")
            continue;
        reached = WithoutLinks(reached);
        if (name == "..") {
            reached = ParentOf(reached);
            continue;
        }
        std::optional<std::string> next = LookUp(reached, name);
        if (!next)
            return std::nullopt;
        reached = *next;
    }
    return reached;
}

bool IsDirectory(const std::string &existingPath) {
    struct stat status;
    if (lstat(existingPath.c_str(), &status) == 0)
        return S_ISDIR(status.st_mode);
    return environment::IsMadeUpFolder(existingPath);
}

std::string ParentOf(std::string_view path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == 0 || slash == std::string_view::npos ? "/" : std::string(path.substr(0, slash));
}

std::string LeafOf(std::string_view path) {
    return path == "/" ? "/" : std::string(path.substr(path.find_last_of('/') + 1));
}

FSRef ReferenceTo(const std::string &existingPath) {
    Table &table = TheTable();
    const Identity identity = IdentityOf(existingPath).value_or(Identity{});
    const auto next = static_cast<std::uint32_t>(table.entries.size());
    auto [place, isNew] = table.numbers.try_emplace({identity, existingPath}, next);
    if (isNew)
        table.entries.push_back({existingPath, identity});
    else
        table.entries[place->second] = {existingPath, identity};
    return ReferenceWithNumber(place->second);
}

FSRef ReferenceToRootParent() { return ReferenceWithNumber(kRootParent); }

ReferencedItem ItemOf(const FSRef &reference) {
    const FSRef zeros{};
    if (std::memcmp(&reference, &zeros, sizeof zeros) == 0)
        return {nsvErr, false, {}};
    Content content;
    std::memcpy(&content, reference.hidden, sizeof content);
    const FSRef rebuilt = ReferenceWithNumber(content.number);
    if (std::memcmp(&reference, &rebuilt, sizeof rebuilt) != 0)
        return {paramErr, false, {}};
    if (content.number == kRootParent)
        return {noErr, true, {}};
    Table &table = TheTable();
    if (content.number >= table.entries.size())
        return {paramErr, false, {}};
    std::optional<std::string> path = Find(table.entries[content.number]);
    if (!path)
        return {fnfErr, false, {}};
    return {noErr, false, *path};
}

UInt32 NodeIdOf(const std::string &existingPath) {
    constexpr UInt32 kFirstOfFiles = 16; // the file system keeps the numbers below to itself
    if (environment::VolumeWithRoot(existingPath))
        return fsRtDirID;
    Table &table = TheTable();
    const Identity identity = IdentityOf(existingPath).value_or(Identity{});
    const auto next = static_cast<UInt32>(kFirstOfFiles + table.nodeIds.size());
    return table.nodeIds.try_emplace(identity, next).first->second;
}

} // namespace sim::macos
