// Folder items between paths and the File Manager's records. A folder item is a path and nothing else; whether anything
// is there is asked each time. The File Manager's names use a slash where a path has a colon, and the other way round.
#include "simulator/host/ground/text.h"
#include "simulator/host/runtime/runtime.h"
#include "simulator/host/services/table.h"
#include "simulator/host/services/truth.h"

#include <algorithm>
#include <cstring>

namespace sim::host {

namespace {

constexpr size_t kLongestName = 255;

/// A counted UTF-16 name without a terminator.
struct UnicodeName {
    uint16_t length;
    char16_t units[kLongestName];
};
static_assert(sizeof(UnicodeName) == 512);

std::u16string SwapSeparators(std::u16string name) {
    for (char16_t &unit : name)
        unit = unit == u'/' ? u':' : unit == u':' ? u'/' : unit;
    return name;
}

/// Nothing for "/" and for no path.
std::optional<std::pair<std::string, std::string>> ParentAndName(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    size_t slash = path.rfind('/');
    if (slash == std::string::npos || slash + 1 == path.size())
        return std::nullopt;
    return std::pair(path.substr(0, std::max<size_t>(slash, 1)), path.substr(slash + 1));
}

bool MakeReference(const std::string &path, void *reference) {
    FileManager *files = Runtime::Current().options.files;
    FileReference made = {};
    if (!files || path.empty() || !files->MakeReference(path, made))
        return false;
    std::memcpy(reference, made.data(), made.size());
    return true;
}

Truth ReferenceFromItem(const void *item, void *reference, UnicodeName *name) {
    auto &folderItem = Runtime::Current().heap.Require<FolderItemInstance>(item, "a folder item");
    if (!name)
        return TruthOf(MakeReference(folderItem.path, reference));
    auto parts = ParentAndName(folderItem.path);
    if (!parts)
        return TruthOf(false);
    std::u16string units = folderItem.name.value_or(SwapSeparators(ToUTF16(parts->second)));
    if (units.size() > kLongestName || !MakeReference(parts->first, reference))
        return TruthOf(false);
    name->length = static_cast<uint16_t>(units.size());
    std::copy(units.begin(), units.end(), name->units);
    return TruthOf(true);
}

void *ItemAt(std::string path) {
    auto *item = Runtime::Current().NewBuiltIn<FolderItemInstance>("FolderItem");
    if (!item)
        return nullptr;
    item->path = std::move(path);
    return item->address;
}

void *ItemFromParent(const void *parent, const UnicodeName *name) {
    FileManager *files = Runtime::Current().options.files;
    if (!files || !parent || !name || name->length == 0 || name->length > kLongestName)
        return nullptr;
    FileReference reference;
    std::memcpy(reference.data(), parent, reference.size());
    std::optional<std::string> folder = files->PathOf(reference);
    if (!folder)
        return nullptr;
    std::string leaf = ToUTF8(std::u16string_view(SwapSeparators({name->units, name->length})));
    return ItemAt(*folder + (folder->ends_with('/') ? "" : "/") + leaf);
}

void *ItemFromSpec(const void *spec) {
    FileManager *files = Runtime::Current().options.files;
    std::optional<std::string> path = files && spec ? files->PathOfSpec(spec) : std::nullopt;
    return path ? ItemAt(*path) : nullptr;
}

} // namespace

std::span<const ServiceRow> FolderItemServices() {
    static const ServiceRow rows[] = {
        Service<"REALFSRefFromFolderItem", ReferenceFromItem>(),
        Service<"REALFolderItemFromParentFSRef", ItemFromParent>(),
        Service<"FolderItemFromFSSpec", ItemFromSpec>(),
    };
    return rows;
}

} // namespace sim::host
