// One descriptor that becomes readable when messages wait or a moment has come.
#pragma once

#include "simulator/macos/CoreServices/metadata/store/file_state.h"

namespace sim::macos::store {

class Alarm {
public:
    /// The descriptor of messages is borrowed; -1 for none.
    explicit Alarm(int messages);
    ~Alarm();
    Alarm(const Alarm &) = delete;
    Alarm &operator=(const Alarm &) = delete;

    int Descriptor() const { return poll_; }

    /// Goes off after the given time, in nanoseconds; replaces what was set before.
    void Set(FileTime delay);
    void Clear();

private:
    int poll_;
    int timer_;
};

} // namespace sim::macos::store
