// Ctrl-C and its kin, noticed instead of obeyed: the program ends when it has given everything back.
#pragma once

namespace sim::cli {

/// While it lives, SIGINT, SIGTERM and SIGHUP only set a mark. A second one ends the program at once.
class InterruptWatch {
public:
    InterruptWatch();
    InterruptWatch(const InterruptWatch &) = delete;
    InterruptWatch &operator=(const InterruptWatch &) = delete;
    ~InterruptWatch();

    bool IsInterrupted() const { return Signal() != 0; }
    /// The number of the signal that came, 0 for none.
    int Signal() const;
};

} // namespace sim::cli
