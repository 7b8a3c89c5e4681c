#include "simulator/macos/CoreServices/metadata/store/scripted_session.h"

#include "simulator/macos/CoreServices/metadata/store/scripted_store.h"

#include <algorithm>
#include <utility>

namespace sim::macos {

using store::FileEvent;

ScriptedSession::ScriptedSession(ScriptedStore &store, store::Scope scope, bool live, std::function<void()> wake)
    : store_(&store), scope_(std::move(scope)), live_(live), wake_(std::move(wake)), loop_(RunLoop::Current()) {
    for (const auto &[number, file] : store.files_) {
        if (IsInScope(file->Path()))
            there_.push_back({FileEvent::Kind::kFound, file->Identity(), file});
    }
    store.sessions_.push_back(this);
}

ScriptedSession::~ScriptedSession() {
    loop_.Remove(pause_);
    if (store_)
        std::erase(store_->sessions_, this);
}

bool ScriptedSession::IsInScope(const std::string &path) const {
    return std::any_of(scope_.folders.begin(), scope_.folders.end(), [&](const std::string &folder) {
        return path.starts_with(folder == "/" ? folder : folder + "/");
    });
}

void ScriptedSession::Tell(const FileEvent &event) {
    const auto waiting =
        std::find_if(there_.begin(), there_.end(), [&](const FileEvent &there) { return there.file == event.file; });
    if (waiting == there_.end()) {
        if (live_)
            happened_.push_back(event);
    } else if (event.kind == FileEvent::Kind::kLost) {
        there_.erase(waiting); // gone before it was found
    }
    wake_();
}

store::Session::Step ScriptedSession::Next(FileEvent &event) {
    if (IsHeld())
        return Step::kIdle;
    const bool fromThere = !there_.empty() && !WaitsForPace();
    std::deque<FileEvent> &queue = fromThere ? there_ : happened_;
    if (queue.empty())
        return Step::kIdle;
    event = std::move(queue.front());
    queue.pop_front();
    foundSincePause_ += fromThere;
    return Step::kEvent;
}

bool ScriptedSession::IsHeld() const { return !store_ || store_->held_; }

bool ScriptedSession::WaitsForPace() {
    if (pause_ != 0)
        return true;
    if (store_->paceFiles_ == 0 || foundSincePause_ < store_->paceFiles_)
        return false;
    pause_ = loop_.AddTimer(CurrentClock().Now() + store_->paceMilliseconds_ / 1000, 0, [this] {
        pause_ = 0;
        foundSincePause_ = 0;
        wake_();
    });
    return true;
}

} // namespace sim::macos
