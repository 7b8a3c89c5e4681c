// Sessions on the files of this machine, woken through the run loop; its file systems; and which store is the current
// one.
#include "simulator/macos/CoreServices/metadata/store/machine_store.h"

#include "simulator/macos/CoreFoundation/run_loop.h"
#include "simulator/macos/CoreServices/metadata/store/machine_session.h"

#include <mntent.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace sim::macos::store {

namespace {

/// A session that listens for messages only while it is idle: a descriptor that stays readable would keep the run loop
/// spinning while a notification is being handled.
class ListeningSession final : public Session {
public:
    ListeningSession(const Scope &scope, bool live, std::function<void()> wake)
        : session_(scope, live), loop_(RunLoop::Current()), wake_(std::move(wake)) {}
    ~ListeningSession() override { StopListening(); }

    Step Next(FileEvent &event) override {
        StopListening();
        const Step step = session_.Next(event);
        if (step == Step::kIdle && session_.Descriptor() >= 0) {
            listener_ = loop_.AddDescriptor(session_.Descriptor(), [this] {
                StopListening();
                wake_();
            });
        }
        return step;
    }

    bool Gathered() const override { return session_.Gathered(); }

private:
    void StopListening() {
        if (listener_ != 0)
            loop_.Remove(std::exchange(listener_, 0));
    }

    MachineSession session_;
    RunLoop &loop_;
    std::function<void()> wake_;
    RunLoop::Id listener_ = 0;
};

bool IsNetworkType(const std::string &type) {
    constexpr std::array kTypes{"nfs", "nfs4", "cifs", "smb3", "9p", "afs", "ceph", "fuse.sshfs", "ncpfs", "coda"};
    return std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end();
}

/// File systems without a device of their own show files of others or none at all.
bool IsDiskOrNetwork(const mntent &entry) { return entry.mnt_fsname[0] == '/' || IsNetworkType(entry.mnt_type); }

struct CloseMounts {
    void operator()(FILE *mounts) const { endmntent(mounts); }
};

FileStore *replacement = nullptr;

} // namespace

std::unique_ptr<Session> MachineStore::Open(const Scope &scope, bool live, std::function<void()> wake) {
    return std::make_unique<ListeningSession>(scope, live, std::move(wake));
}

std::vector<std::string> MachineStore::Mounted(bool onNetwork) const {
    std::vector<std::string> folders;
    if (!onNetwork)
        folders.emplace_back("/");
    const std::unique_ptr<FILE, CloseMounts> mounts(setmntent("/proc/self/mounts", "r"));
    while (const mntent *entry = mounts ? getmntent(mounts.get()) : nullptr)
        if (IsDiskOrNetwork(*entry) && IsNetworkType(entry->mnt_type) == onNetwork)
            folders.emplace_back(entry->mnt_dir);
    return folders;
}

FileStore &FileStore::Current() {
    static MachineStore machine;
    return replacement ? *replacement : machine;
}

FileStore *FileStore::Replace(FileStore *store) { return std::exchange(replacement, store); }

} // namespace sim::macos::store
