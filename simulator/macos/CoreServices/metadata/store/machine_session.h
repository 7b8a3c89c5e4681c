// A query's view of the files of this machine. Folders are read entry by entry; when the query is live each folder is
// watched before it is read, so nothing can happen in between unseen.
//
// Whatever message comes, the answer is the same: look at the name it speaks of and note how it stands. That makes
// order, repetition and age of messages indifferent, and a rescan after lost messages nothing special.
//
// Not modelled: changes through a mapping of a file into memory, of which the system sends no message; names that begin
// with a dot, which the metadata store does not list, and names that are no UTF-8, which the real file system has not.
#pragma once

#include "simulator/macos/CoreServices/metadata/store/alarm.h"
#include "simulator/macos/CoreServices/metadata/store/folder_tree.h"
#include "simulator/macos/CoreServices/metadata/store/folder_watcher.h"
#include "simulator/macos/CoreServices/metadata/store/open_folder.h"

#include <optional>
#include <set>

namespace sim::macos::store {

class MachineSession final : public Session {
public:
    MachineSession(const Scope &scope, bool live);

    Step Next(FileEvent &event) override;
    bool Gathered() const override { return gathered_; }

    /// Becomes readable when an idle session has work again; -1 when the session is not live.
    int Descriptor() const { return alarm_ ? alarm_->Descriptor() : -1; }

private:
    struct Root {
        std::string path;
        std::shared_ptr<KnownFolder> folder; // null while there is none at the path
    };

    /// A folder to be read. A deep reading goes on to the folders in it.
    struct Scan {
        std::shared_ptr<KnownFolder> folder;
        bool deep = true;
        bool afterLoss = false; // messages about what is in it may have been lost
        std::unique_ptr<OpenFolder> open;
        std::optional<std::vector<std::string>> names;
        std::size_t next = 0;
    };

    /// A name to be looked at.
    struct Dirty {
        std::shared_ptr<KnownFolder> folder;
        std::string name;
        FileTime since = 0; // when a message spoke of it first; 0 when none did
        FileTime due = 0;
    };

    struct Watch {
        std::shared_ptr<KnownFolder> folder;
        std::set<std::pair<std::size_t, std::string>> wayTo; // root, and the name on the way to it
    };

    bool IsLive() const { return watcher_.has_value(); }

    void LookAtRoot(std::size_t index);
    void WatchWayTo(std::size_t index);
    void QueueScan(const std::shared_ptr<KnownFolder> &folder, bool deep, bool afterLoss);
    void RescanAll();
    void RescanUnwatched();

    bool ReadMessages();
    void Take(const FolderWatcher::Message &message);
    void MarkDirty(const std::shared_ptr<KnownFolder> &folder, const std::string &name);
    bool LookAtDirty();
    bool ContinueScan();
    void StartScan(Scan &scan);
    void ReadNames(Scan &scan);
    void LookAt(const Dirty &name, const OpenFolder &open, const Scan *scan);
    bool Postpone(const Dirty &name, const FileState &state, FileTime now);
    bool BuryUnlinked();
    bool StartWatching(const std::shared_ptr<KnownFolder> &folder, const OpenFolder &open);
    void StopWatching(KnownFolder &folder);
    void SetAlarm();

    std::vector<Root> roots_;
    std::optional<FolderWatcher> watcher_; // of a live session
    std::optional<Alarm> alarm_;           // of a live session
    FolderTree tree_;
    std::map<int, Watch> watches_;
    std::deque<Scan> scans_;
    std::deque<Dirty> dirty_;
    std::deque<Dirty> postponed_; // earlier ones first
    std::set<std::pair<const KnownFolder *, std::string>> dirtyNames_;
    std::vector<std::weak_ptr<KnownFolder>> unwatched_; // to be read again and again
    FileTime rescanAt_ = 0;                             // 0: never
    FileTime buryAt_ = 0;                               // 0: nothing to bury
    int stepsSinceMessages_ = 0;
    bool gathered_ = false;
};

} // namespace sim::macos::store
