// The files below the folders of a scope, as they were last seen: which names lead to which file, and what was told of
// it. Files are known by identity, so a rename, a move of a whole folder or a second hard link is seen as what it is.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/identity_hash.h"
#include "simulator/macos/CoreServices/metadata/store/file_state.h"
#include "simulator/macos/CoreServices/metadata/store/session.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace sim::macos::store {

struct KnownFile;

/// A folder and the names in it. Held by whoever still has work to do in it, also when it is in the tree no longer.
struct KnownFolder {
    FileIdentity identity;
    std::string rootPath;      // of a folder of the scope itself; empty for others
    KnownFile *self = nullptr; // null for a folder of the scope itself
    std::map<std::string, KnownFile *> entries;
    std::shared_ptr<const std::string> toldPath; // under which files in it were told of last
    std::uint64_t toldAt = 0;                    // how often folders had moved by then
    int watch = -1;
    bool scanQueued = false;
    bool gone = false;

    /// Empty when no name leads to it at the moment.
    std::string Path() const;
    bool HasPath() const;
};

struct KnownLink {
    KnownFolder *folder;
    const std::string *name; // the folder's own
};

/// There are as many of these as files, whether anybody looks for them or not.
struct KnownFile {
    FileState state;
    bool settled = false; // whether any later change shows in the times of the state
    std::vector<KnownLink> links;
    /// The path of the folder under which it was told of last, as the first of its links; null until then. One that is
    /// nobody's when that link is gone.
    std::shared_ptr<const std::string> toldIn;
    std::shared_ptr<KnownFolder> contents; // of a folder

    std::string Path() const;
};

class FolderTree {
public:
    /// Told of every folder that leaves the tree, while it is still whole.
    using FolderLeaves = std::function<void(KnownFolder &)>;
    explicit FolderTree(FolderLeaves folderLeaves) : folderLeaves_(std::move(folderLeaves)) {}

    KnownFile *At(const KnownFolder &folder, const std::string &name) const;
    /// Null when there is no such file, or none that a name leads to or led to a moment ago.
    KnownFile *WithIdentity(const FileIdentity &identity) const;

    /// Makes a name lead to the file of that state; the name must be free.
    KnownFile &Link(KnownFolder &folder, const std::string &name, const FileState &state);

    /// Frees a name. A file that another name leads to goes on under that one. A file that none leads to any more is
    /// kept, contents and all, until Bury: it may have been moved.
    void Unlink(KnownFolder &folder, const std::string &name);

    /// Notes how a file stands and queues what there is to tell of it. A file that was looked at while its times could
    /// not show every change yet counts as changed when something happened to it since.
    void Update(KnownFile &file, const FileState &state, FileTime readAt, bool somethingHappened);

    bool HasUnlinked() const { return !unlinked_.empty(); }
    /// Gives up the files that no name leads to.
    void Bury();

    /// Frees all names in a folder of the scope, which is in the tree no longer.
    void Clear(KnownFolder &folder);

    /// The next thing to tell. False when there is none.
    bool TakeEvent(FileEvent &event);

private:
    struct Hash : IdentityHash {
        using is_transparent = void;
        using IdentityHash::operator();
        std::size_t operator()(const std::unique_ptr<KnownFile> &file) const { return (*this)(file->state.identity); }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(const std::unique_ptr<KnownFile> &one, const std::unique_ptr<KnownFile> &other) const {
            return one->state.identity == other->state.identity;
        }
        bool operator()(const FileIdentity &identity, const std::unique_ptr<KnownFile> &file) const {
            return identity == file->state.identity;
        }
        bool operator()(const std::unique_ptr<KnownFile> &file, const FileIdentity &identity) const {
            return identity == file->state.identity;
        }
    };

    /// What a path in the folder begins with, written once for all that is told of files in it; null when no name leads
    /// to it at the moment.
    std::shared_ptr<const std::string> SharedPath(KnownFolder &folder) const;
    void SetKind(KnownFile &file, bool isFolder);
    void Tell(KnownFile &file, bool changed);
    void Remove(const FileIdentity &identity);

    FolderLeaves folderLeaves_;
    std::unordered_set<std::unique_ptr<KnownFile>, Hash, Equal> files_;
    /// Counts the names of folders that came and went: whenever it stands still, so do all paths.
    std::uint64_t folderMoves_ = 1;
    std::vector<FileIdentity> unlinked_;
    std::deque<FileEvent> events_;
};

} // namespace sim::macos::store
