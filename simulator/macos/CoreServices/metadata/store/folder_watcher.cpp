// inotify, and the limits that a test may put on it.
#include "simulator/macos/CoreServices/metadata/store/folder_watcher.h"

#include "simulator/macos/CoreServices/metadata/store/scripted_watches.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace sim::macos {

namespace {
int watchLimit = -1;
} // namespace

ScriptedWatchLimit::ScriptedWatchLimit(int count) : previous_(watchLimit) { watchLimit = count; }

ScriptedWatchLimit::~ScriptedWatchLimit() { watchLimit = previous_; }

namespace store {

namespace {

constexpr std::uint32_t kNames = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr std::uint32_t kContents = kNames | IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE | IN_EXCL_UNLINK;

} // namespace

FolderWatcher::FolderWatcher() : descriptor_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

FolderWatcher::~FolderWatcher() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

FolderWatcher::Outcome FolderWatcher::WatchContents(const std::string &folder, int &watch) {
    return Watch(folder, kContents | IN_ONLYDIR, watch);
}

FolderWatcher::Outcome FolderWatcher::WatchNames(const std::string &folder, int &watch) {
    return Watch(folder, kNames | IN_ONLYDIR, watch);
}

FolderWatcher::Outcome FolderWatcher::Watch(const std::string &folder, std::uint32_t what, int &watch) {
    watch = -1;
    if (descriptor_ < 0 || (watchLimit >= 0 && static_cast<int>(watches_.size()) >= watchLimit))
        return Outcome::kRefused;
    watch = inotify_add_watch(descriptor_, folder.c_str(), what | IN_MASK_ADD);
    if (watch >= 0) {
        watches_.insert(watch);
        return Outcome::kWatched;
    }
    return errno == ENOSPC || errno == ENOMEM ? Outcome::kRefused : Outcome::kGone;
}

void FolderWatcher::Forget(int watch) {
    watches_.erase(watch);
    inotify_rm_watch(descriptor_, watch);
}

bool FolderWatcher::Read(std::vector<Message> &messages) {
    bool complete = true;
    alignas(inotify_event) char buffer[65536];
    for (;;) {
        const ssize_t length = read(descriptor_, buffer, sizeof buffer);
        if (length <= 0)
            return complete;
        for (std::size_t at = 0; at < static_cast<std::size_t>(length);) {
            const auto *event = reinterpret_cast<const inotify_event *>(buffer + at);
            at += sizeof(inotify_event) + event->len;
            if ((event->mask & IN_Q_OVERFLOW) != 0) {
                complete = false;
                continue;
            }
            if ((event->mask & IN_IGNORED) != 0)
                watches_.erase(event->wd);
            messages.push_back({event->wd, event->mask, event->len > 0 ? std::string(event->name) : std::string()});
        }
    }
}

} // namespace store

} // namespace sim::macos
