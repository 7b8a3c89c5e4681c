// Sessions on the files of this machine, woken through the run loop, and which store is the current one.
#include "simulator/macos/CoreServices/metadata/store/machine_store.h"

#include "simulator/macos/CoreFoundation/run_loop.h"
#include "simulator/macos/CoreServices/metadata/store/machine_session.h"

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

FileStore *replacement = nullptr;

} // namespace

std::unique_ptr<Session> MachineStore::Open(const Scope &scope, bool live, std::function<void()> wake) {
    return std::make_unique<ListeningSession>(scope, live, std::move(wake));
}

FileStore &FileStore::Current() {
    static MachineStore machine;
    return replacement ? *replacement : machine;
}

FileStore *FileStore::Replace(FileStore *store) { return std::exchange(replacement, store); }

} // namespace sim::macos::store
