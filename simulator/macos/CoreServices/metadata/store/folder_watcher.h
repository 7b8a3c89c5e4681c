// Messages of the file system about folders: inotify, taken in until its queue is empty and with everything that was
// said of one name put together, because what counts is how the name stands afterwards.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace sim::macos::store {

class FolderWatcher {
public:
    enum class Outcome { kWatched, kGone, kRefused };

    struct Message {
        int watch;
        std::uint32_t what; // inotify's bits
        std::string name;   // empty when it is about the folder itself
    };

    FolderWatcher();
    ~FolderWatcher();
    FolderWatcher(const FolderWatcher &) = delete;
    FolderWatcher &operator=(const FolderWatcher &) = delete;

    /// Becomes readable when there are messages; -1 when the system has none of its kind left, and then every folder is
    /// refused.
    int Descriptor() const { return descriptor_; }

    /// Watches what happens to everything in a folder. The number is that of an earlier watch when it is the same
    /// folder under another name. Refused when there are too many watches.
    Outcome WatchContents(const std::string &folder, int &watch);

    /// Watches only names that come and go in a folder, on the way to another one.
    Outcome WatchNames(const std::string &folder, int &watch);

    void Forget(int watch);

    /// Appends all that has come in. False when messages were lost.
    bool Read(std::vector<Message> &messages);

private:
    Outcome Watch(const std::string &folder, std::uint32_t what, int &watch);

    int descriptor_ = -1;
    std::set<int> watches_;
};

} // namespace sim::macos::store
