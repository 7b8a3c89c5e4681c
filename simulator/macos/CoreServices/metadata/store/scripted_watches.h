// A machine that refuses to watch folders. Live queries must then look for themselves, again and again.
#pragma once

namespace sim::macos {

/// While it lives, each live query can watch at most so many folders.
class ScriptedWatchLimit {
public:
    explicit ScriptedWatchLimit(int count);
    ~ScriptedWatchLimit();
    ScriptedWatchLimit(const ScriptedWatchLimit &) = delete;
    ScriptedWatchLimit &operator=(const ScriptedWatchLimit &) = delete;

private:
    int previous_;
};

} // namespace sim::macos
