// Keeping names and files apart and in step.
#include "simulator/macos/CoreServices/metadata/store/folder_tree.h"

#include "simulator/macos/CoreServices/metadata/items/file_source.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace sim::macos::store {

namespace {

/// A path has no more parts than this. While folders move about faster than they are looked at, what is known of them
/// can be a ring; then no path is the right answer.
constexpr int kMostParts = 4096;

/// The path to which names are appended behind a slash, in the name of which folders lead to it now; nothing when none
/// do.
std::optional<std::string> PathBefore(const KnownFolder &given) {
    std::string path;
    const KnownFolder *folder = &given;
    for (int parts = 0; folder->self; ++parts) {
        if (folder->self->links.empty() || parts == kMostParts)
            return std::nullopt;
        const KnownLink &parent = folder->self->links.front();
        path.insert(0, "/" + *parent.name);
        folder = parent.folder;
    }
    return folder->rootPath == "/" ? path : folder->rootPath + path;
}

/// Where nothing is.
const std::shared_ptr<const std::string> &Nowhere() {
    static const auto nowhere = std::make_shared<const std::string>("nowhere");
    return nowhere;
}

} // namespace

std::string KnownFolder::Path() const { return self ? self->Path() : rootPath; }

bool KnownFolder::HasPath() const {
    const KnownFolder *folder = this;
    for (int parts = 0; folder->self; ++parts) {
        if (folder->self->links.empty() || parts == kMostParts)
            return false;
        folder = folder->self->links.front().folder;
    }
    return true;
}

std::string KnownFile::Path() const {
    for (const KnownLink &link : links)
        if (const auto folder = PathBefore(*link.folder))
            return *folder + "/" + *link.name;
    return {};
}

std::shared_ptr<const std::string> FolderTree::SharedPath(KnownFolder &folder) const {
    if (folder.toldAt == folderMoves_)
        return folder.toldPath;
    auto path = PathBefore(folder);
    if (!path)
        return nullptr;
    if (!folder.toldPath || *folder.toldPath != *path)
        folder.toldPath = std::make_shared<const std::string>(std::move(*path));
    folder.toldAt = folderMoves_;
    return folder.toldPath;
}

KnownFile *FolderTree::At(const KnownFolder &folder, const std::string &name) const {
    const auto found = folder.entries.find(name);
    return found == folder.entries.end() ? nullptr : found->second;
}

KnownFile *FolderTree::WithIdentity(const FileIdentity &identity) const {
    const auto found = files_.find(identity);
    return found == files_.end() ? nullptr : found->get();
}

KnownFile &FolderTree::Link(KnownFolder &folder, const std::string &name, const FileState &state) {
    KnownFile *file = WithIdentity(state.identity);
    if (!file) {
        auto made = std::make_unique<KnownFile>();
        made->state = state;
        file = made.get();
        files_.insert(std::move(made));
    }
    SetKind(*file, state.isFolder);
    folderMoves_ += state.isFolder;
    if (state.isFolder) {
        // A folder has one name; an earlier one is out of date.
        for (const KnownLink &link : file->links)
            link.folder->entries.erase(link.folder->entries.find(*link.name));
        if (file->toldIn)
            file->toldIn = Nowhere();
        file->links.clear();
    }
    const auto [entry, isNew] = folder.entries.insert_or_assign(name, file);
    file->links.push_back({&folder, &entry->first});
    return *file;
}

/// Where a file system keeps no birth times a new folder can be taken for the file whose inode number it got.
void FolderTree::SetKind(KnownFile &file, bool isFolder) {
    if (isFolder == (file.contents != nullptr))
        return;
    if (isFolder) {
        file.contents = std::make_shared<KnownFolder>();
        file.contents->identity = file.state.identity;
        file.contents->self = &file;
    } else {
        Clear(*file.contents);
        file.contents->self = nullptr;
        file.contents = nullptr;
    }
}

void FolderTree::Unlink(KnownFolder &folder, const std::string &name) {
    const auto found = folder.entries.find(name);
    if (found == folder.entries.end())
        return;
    KnownFile &file = *found->second;
    const auto isIt = [&](const KnownLink &link) { return link.name == &found->first; };
    if (file.toldIn && isIt(file.links.front()))
        file.toldIn = Nowhere();
    std::erase_if(file.links, isIt);
    folderMoves_ += file.contents != nullptr;
    folder.entries.erase(found);
    if (file.links.empty())
        unlinked_.push_back(file.state.identity);
    else if (file.toldIn)
        Tell(file, false);
}

void FolderTree::Update(KnownFile &file, const FileState &state, FileTime readAt, bool somethingHappened) {
    const bool mayHaveChanged = somethingHappened && !file.settled;
    const bool changed = state != file.state || mayHaveChanged;
    SetKind(file, state.isFolder);
    file.state = state;
    file.settled = IsSettled(state, readAt);
    Tell(file, changed);
}

void FolderTree::Tell(KnownFile &file, bool changed) {
    std::shared_ptr<const std::string> folder;
    const auto leads = [&](const KnownLink &link) { return (folder = SharedPath(*link.folder)) != nullptr; };
    const auto link = std::find_if(file.links.begin(), file.links.end(), leads);
    if (link == file.links.end())
        return; // a folder on the way to it is being moved
    const bool known = file.toldIn != nullptr;
    const bool moved = known && (link != file.links.begin() || *file.toldIn != *folder);
    std::iter_swap(link, file.links.begin());
    file.toldIn = std::move(folder);
    if (known && !changed && !moved)
        return;
    const KnownLink &first = file.links.front();
    const auto kind = known ? FileEvent::Kind::kChanged : FileEvent::Kind::kFound;
    events_.push_back(
        {kind, file.state.identity, std::make_shared<FileSource>(file.toldIn, *first.name, file.state.identity)});
}

void FolderTree::Bury() {
    for (const FileIdentity &identity : std::exchange(unlinked_, {})) {
        const KnownFile *file = WithIdentity(identity);
        if (file && file->links.empty())
            Remove(identity);
    }
}

void FolderTree::Remove(const FileIdentity &identity) {
    // Contents of contents wait in a list rather than on the stack: folders nest as deep as a path is long.
    std::vector<FileIdentity> waiting{identity};
    while (!waiting.empty()) {
        const auto found = files_.find(waiting.back());
        waiting.pop_back();
        if (found == files_.end() || !(*found)->links.empty())
            continue;
        const std::unique_ptr<KnownFile> file = std::move(files_.extract(found).value());
        if (file->toldIn)
            events_.push_back({FileEvent::Kind::kLost, file->state.identity, nullptr});
        if (file->contents) {
            Clear(*file->contents);
            file->contents->self = nullptr;
            waiting.insert(waiting.end(), unlinked_.begin(), unlinked_.end());
            unlinked_.clear();
        }
    }
}

void FolderTree::Clear(KnownFolder &folder) {
    folderLeaves_(folder);
    folder.gone = true;
    while (!folder.entries.empty())
        Unlink(folder, std::string(folder.entries.begin()->first));
}

bool FolderTree::TakeEvent(FileEvent &event) {
    if (events_.empty())
        return false;
    event = std::move(events_.front());
    events_.pop_front();
    return true;
}

} // namespace sim::macos::store
