// The work of a session, in small steps: names that messages spoke of first, then folders still to be read.
#include "simulator/macos/CoreServices/metadata/store/machine_session.h"

#include "simulator/macos/CoreServices/metadata/store/listing.h"

#include <sys/inotify.h>

#include <algorithm>
#include <utility>

namespace sim::macos::store {

namespace {

/// How long an unsettled file is left alone, so that all that is done to it in one go is told at once.
constexpr FileTime kPatience = 200 * kMillisecond;
/// How long a file without a name may be on its way to another one.
constexpr FileTime kMoveTime = 20 * kMillisecond;
/// How often folders that cannot be watched are read again.
constexpr FileTime kRescanInterval = 500 * kMillisecond;
/// How many steps may pass before waiting messages are taken in.
constexpr int kStepsBetweenMessages = 64;

} // namespace

MachineSession::MachineSession(const Scope &scope, bool live)
    : tree_([this](KnownFolder &folder) { StopWatching(folder); }) {
    if (live) {
        watcher_.emplace();
        alarm_.emplace(watcher_->Descriptor());
    }
    for (const std::string &path : scope.folders)
        roots_.push_back({path, nullptr});
    for (std::size_t index = 0; index < roots_.size(); ++index)
        LookAtRoot(index);
}

Session::Step MachineSession::Next(FileEvent &event) {
    if (tree_.TakeEvent(event))
        return Step::kEvent;
    if (++stepsSinceMessages_ >= kStepsBetweenMessages)
        ReadMessages();
    if (LookAtDirty() || ContinueScan() || ReadMessages() || BuryUnlinked())
        return Step::kBusy;
    if (!gathered_) {
        gathered_ = true;
        return Step::kBusy;
    }
    if (rescanAt_ != 0 && FileTimeNow() >= rescanAt_) {
        RescanUnwatched();
        return Step::kBusy;
    }
    SetAlarm();
    return Step::kIdle;
}

void MachineSession::LookAtRoot(std::size_t index) {
    Root &root = roots_[index];
    if (IsLive())
        WatchWayTo(index);
    auto state = ReadFileState(root.path);
    if (state && !state->isFolder)
        state.reset();
    const bool same = root.folder && state && state->identity == root.folder->identity;
    if (same)
        return;
    if (root.folder) {
        tree_.Clear(*root.folder);
        root.folder = nullptr;
    }
    if (!state)
        return;
    root.folder = std::make_shared<KnownFolder>();
    root.folder->identity = state->identity;
    root.folder->rootPath = root.path;
    QueueScan(root.folder, true, false);
}

/// A folder of the scope can come, go or be replaced through any folder on the way to it.
void MachineSession::WatchWayTo(std::size_t index) {
    const std::string &path = roots_[index].path;
    for (std::size_t slash = 0; slash != std::string::npos && slash + 1 < path.size();) {
        const std::size_t end = path.find('/', slash + 1);
        const std::string parent = slash == 0 ? "/" : path.substr(0, slash);
        const std::string name = path.substr(slash + 1, end == std::string::npos ? end : end - slash - 1);
        int watch = -1;
        if (watcher_->WatchNames(parent, watch) == FolderWatcher::Outcome::kWatched)
            watches_[watch].wayTo.insert({index, name});
        else
            rescanAt_ = rescanAt_ != 0 ? rescanAt_ : FileTimeNow() + kRescanInterval;
        slash = end;
    }
}

void MachineSession::QueueScan(const std::shared_ptr<KnownFolder> &folder, bool deep, bool afterLoss) {
    if (folder->scanQueued) {
        const auto queued = std::find_if(scans_.begin(), scans_.end(),
                                         [&](const Scan &scan) { return scan.folder == folder && !scan.names; });
        queued->deep |= deep;
        queued->afterLoss |= afterLoss;
        return;
    }
    folder->scanQueued = true;
    scans_.push_back({folder, deep, afterLoss, nullptr, std::nullopt, 0});
}

void MachineSession::RescanAll() {
    for (std::size_t index = 0; index < roots_.size(); ++index) {
        LookAtRoot(index);
        if (roots_[index].folder)
            QueueScan(roots_[index].folder, true, true);
    }
}

void MachineSession::RescanUnwatched() {
    rescanAt_ = 0;
    for (std::size_t index = 0; index < roots_.size(); ++index)
        LookAtRoot(index);
    for (const auto &unwatched : std::exchange(unwatched_, {})) {
        if (const auto folder = unwatched.lock(); folder && !folder->gone)
            QueueScan(folder, false, true);
    }
}

bool MachineSession::ReadMessages() {
    stepsSinceMessages_ = 0;
    if (!IsLive())
        return false;
    std::vector<FolderWatcher::Message> messages;
    const bool complete = watcher_->Read(messages);
    for (const FolderWatcher::Message &message : messages)
        Take(message);
    if (!complete)
        RescanAll();
    return !messages.empty() || !complete;
}

void MachineSession::Take(const FolderWatcher::Message &message) {
    const auto found = watches_.find(message.watch);
    if (found == watches_.end())
        return;
    if ((message.what & IN_IGNORED) != 0) {
        if (found->second.folder)
            found->second.folder->watch = -1;
        watches_.erase(found);
        return;
    }
    const Watch watch = found->second;
    if (watch.folder && IsListed(message.name))
        MarkDirty(watch.folder, message.name);
    for (const auto &[index, name] : watch.wayTo) {
        constexpr std::uint32_t kNameChanged = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
        if (name == message.name && (message.what & kNameChanged) != 0)
            LookAtRoot(index);
    }
}

void MachineSession::MarkDirty(const std::shared_ptr<KnownFolder> &folder, const std::string &name) {
    if (dirtyNames_.insert({folder.get(), name}).second)
        dirty_.push_back({folder, name, FileTimeNow(), 0});
}

bool MachineSession::LookAtDirty() {
    const bool due = !postponed_.empty() && FileTimeNow() >= postponed_.front().due;
    std::deque<Dirty> &queue = due ? postponed_ : dirty_;
    if (queue.empty())
        return false;
    const Dirty name = std::move(queue.front());
    queue.pop_front();
    dirtyNames_.erase({name.folder.get(), name.name});
    const OpenFolder open(name.folder->Path(), name.folder->identity);
    if (open) // else it was moved, and when that is noticed all names in it are looked at
        LookAt(name, open, nullptr);
    return true;
}

bool MachineSession::ContinueScan() {
    if (scans_.empty())
        return false;
    Scan &scan = scans_.front();
    if (!scan.names) {
        StartScan(scan);
        return true;
    }
    if (scan.next == scan.names->size()) {
        scans_.pop_front();
        return true;
    }
    const Dirty name{scan.folder, (*scan.names)[scan.next++], 0, 0};
    LookAt(name, *scan.open, &scan);
    return true;
}

/// Reads what names there are and adds those that were known, so that the ones that are gone are looked at too.
void MachineSession::StartScan(Scan &scan) {
    KnownFolder &folder = *scan.folder;
    folder.scanQueued = false;
    scan.names.emplace();
    const std::string path = folder.Path();
    scan.open = std::make_unique<OpenFolder>(path, folder.identity);
    if (!*scan.open)
        return;
    if (IsLive() && !StartWatching(scan.folder, *scan.open)) {
        unwatched_.push_back(scan.folder);
        rescanAt_ = rescanAt_ != 0 ? rescanAt_ : FileTimeNow() + kRescanInterval;
    }
    if (!IsOnPseudoFileSystem(path))
        ReadNames(scan);
    std::erase_if(*scan.names, [](const std::string &name) { return !IsListed(name); });
    for (const auto &[name, file] : folder.entries)
        scan.names->push_back(name);
    std::sort(scan.names->begin(), scan.names->end());
    scan.names->erase(std::unique(scan.names->begin(), scan.names->end()), scan.names->end());
}

/// What cannot be read is counted once, while the query gathers.
void MachineSession::ReadNames(Scan &scan) {
    auto names = scan.open->Names();
    if (!gathered_) {
        Counts().unreadableFolders += !names;
        if (names)
            Counts().unnameable += static_cast<std::size_t>(std::count_if(names->begin(), names->end(), IsUnnameable));
    }
    if (names)
        *scan.names = std::move(*names);
}

/// Brings what is known of a name up to date. A scan is given when it is the reason to look.
void MachineSession::LookAt(const Dirty &name, const OpenFolder &open, const Scan *scan) {
    KnownFolder &folder = *name.folder;
    if (folder.gone || !folder.HasPath())
        return;
    const FileTime now = FileTimeNow();
    const auto state = open.StateOf(name.name);
    if (state && Postpone(name, *state, now))
        return;

    KnownFile *file = tree_.At(folder, name.name);
    if (file && (!state || state->identity != file->state.identity)) {
        tree_.Unlink(folder, name.name);
        buryAt_ = now + kMoveTime;
        file = nullptr;
    }
    if (!state)
        return;
    const bool isNew = !file;
    Counts().files += isNew;
    if (isNew)
        file = &tree_.Link(folder, name.name, *state);
    tree_.Update(*file, *state, now, !scan || scan->afterLoss);
    if (file->contents && (isNew || (scan && scan->deep)))
        QueueScan(file->contents, true, scan && scan->afterLoss);
}

/// After gathering, a file that is being worked on is looked at again when it has settled. One that lost its name must
/// be taken up under the new one at once, before it counts as gone.
bool MachineSession::Postpone(const Dirty &name, const FileState &state, FileTime now) {
    if (!IsLive() || !gathered_ || IsSettled(state, now))
        return false;
    const KnownFile *known = tree_.WithIdentity(state.identity);
    if (known && known->links.empty())
        return false;
    const FileTime since = name.since != 0 ? name.since : now;
    if (now - since >= kPatience)
        return false;
    if (dirtyNames_.insert({name.folder.get(), name.name}).second)
        postponed_.push_back({name.folder, name.name, since, now + kMoveTime});
    return true;
}

bool MachineSession::BuryUnlinked() {
    if (!tree_.HasUnlinked() || FileTimeNow() < buryAt_)
        return false;
    tree_.Bury();
    buryAt_ = 0;
    return true;
}

/// False when the folder has to be read again and again instead.
bool MachineSession::StartWatching(const std::shared_ptr<KnownFolder> &folder, const OpenFolder &open) {
    if (folder->watch >= 0)
        return true;
    int watch = -1;
    const auto outcome = watcher_->WatchContents(open.HeldPath(), watch);
    if (outcome == FolderWatcher::Outcome::kWatched) {
        Watch &entry = watches_[watch];
        if (entry.folder)
            entry.folder->watch = -1; // the same folder, known before it came back
        entry.folder = folder;
        folder->watch = watch;
    }
    return outcome != FolderWatcher::Outcome::kRefused;
}

void MachineSession::StopWatching(KnownFolder &folder) {
    const auto found = watches_.find(folder.watch);
    if (found == watches_.end() || found->second.folder.get() != &folder)
        return;
    found->second.folder = nullptr;
    if (found->second.wayTo.empty()) {
        watcher_->Forget(folder.watch);
        watches_.erase(found);
    }
    folder.watch = -1;
}

void MachineSession::SetAlarm() {
    if (!alarm_)
        return;
    alarm_->Clear();
    FileTime next = rescanAt_;
    const auto consider = [&next](FileTime moment) { next = next == 0 ? moment : std::min(next, moment); };
    if (!postponed_.empty())
        consider(postponed_.front().due);
    if (tree_.HasUnlinked())
        consider(buryAt_);
    if (next != 0)
        alarm_->Set(next - FileTimeNow());
}

} // namespace sim::macos::store
