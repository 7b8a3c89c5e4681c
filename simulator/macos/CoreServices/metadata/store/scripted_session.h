// A query's view of scripted files: those that were there when it began, at the pace that the script sets, and what
// happened to any of them since, in the order in which it happened.
#pragma once

#include "simulator/macos/CoreFoundation/run_loop.h"
#include "simulator/macos/CoreServices/metadata/store/session.h"

#include <deque>

namespace sim::macos {

class ScriptedStore;

class ScriptedSession final : public store::Session {
public:
    ScriptedSession(ScriptedStore &store, store::Scope scope, bool live, std::function<void()> wake);
    ~ScriptedSession() override;

    Step Next(store::FileEvent &event) override;
    bool Gathered() const override { return !store_ || (there_.empty() && !IsHeld()); }

    bool IsInScope(const std::string &path) const;
    void Tell(const store::FileEvent &event);
    void Wake() { wake_(); }
    void StoreIsGone() { store_ = nullptr; }

private:
    bool IsHeld() const;
    bool WaitsForPace();

    ScriptedStore *store_;
    store::Scope scope_;
    bool live_;
    std::function<void()> wake_;
    RunLoop &loop_;
    RunLoop::Id pause_ = 0;
    std::size_t foundSincePause_ = 0;
    std::deque<store::FileEvent> there_;
    std::deque<store::FileEvent> happened_;
};

} // namespace sim::macos
