// Keeping names and files apart and in step.
#include "simulator/macos/CoreServices/metadata/store/folder_tree.h"

#include "simulator/macos/CoreServices/metadata/items/file_source.h"

#include <utility>

namespace sim::macos::store {

namespace {

/// A path has no more parts than this. While folders move about faster than they are looked at, what is known of them
/// can be a ring; then no path is the right answer.
constexpr int kMostParts = 4096;

/// The path of a name, in the name of which folders lead to it now; empty when none do.
std::string PathOf(const KnownLink &link) {
    std::string path = "/" + link.name;
    const KnownFolder *folder = link.folder;
    for (int parts = 0; folder->self; ++parts) {
        if (folder->self->links.empty() || parts == kMostParts)
            return {};
        const KnownLink &parent = folder->self->links.front();
        path.insert(0, "/" + parent.name);
        folder = parent.folder;
    }
    return folder->rootPath == "/" ? path : folder->rootPath + path;
}

} // namespace

std::string KnownFolder::Path() const { return self ? self->Path() : rootPath; }

std::string KnownFile::Path() const {
    for (const KnownLink &link : links) {
        std::string path = PathOf(link);
        if (!path.empty())
            return path;
    }
    return {};
}

KnownFile *FolderTree::At(const KnownFolder &folder, const std::string &name) const {
    const auto found = folder.entries.find(name);
    return found == folder.entries.end() ? nullptr : found->second;
}

KnownFile *FolderTree::WithIdentity(const FileIdentity &identity) const {
    const auto found = files_.find(identity);
    return found == files_.end() ? nullptr : found->second.get();
}

KnownFile &FolderTree::Link(KnownFolder &folder, const std::string &name, const FileState &state) {
    std::unique_ptr<KnownFile> &place = files_[state.identity];
    if (!place) {
        place = std::make_unique<KnownFile>();
        place->state = state;
    }
    SetKind(*place, state.isFolder);
    if (state.isFolder) {
        // A folder has one name; an earlier one is out of date.
        for (const KnownLink &link : place->links)
            link.folder->entries.erase(link.name);
        place->links.clear();
    }
    folder.entries[name] = place.get();
    place->links.push_back({&folder, name});
    return *place;
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
    folder.entries.erase(found);
    std::erase_if(file.links, [&](const KnownLink &link) { return link.folder == &folder && link.name == name; });
    if (file.links.empty())
        unlinked_.push_back(file.state.identity);
    else if (file.told)
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
    const std::string path = file.Path();
    if (path.empty())
        return; // a folder on the way to it is being moved
    const bool known = file.told != nullptr;
    const bool moved = known && file.told->Path() != path;
    if (known && !changed && !moved)
        return;
    if (!known || moved)
        file.told = std::make_shared<FileSource>(path, file.state.identity);
    const auto kind = known ? FileEvent::Kind::kChanged : FileEvent::Kind::kFound;
    events_.push_back({kind, file.state.identity, file.told});
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
        if (found == files_.end() || !found->second->links.empty())
            continue;
        const std::unique_ptr<KnownFile> file = std::move(found->second);
        files_.erase(found);
        if (file->told)
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
