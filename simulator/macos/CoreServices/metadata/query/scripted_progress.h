// Progress notifications that carry the items added since the last one. The real system leaves them out, to save the
// making of result objects; a program must nevertheless know what to do with them.
#pragma once

namespace sim::macos {

/// While it lives, progress notifications carry added items.
class ProgressWithAddedItems {
public:
    ProgressWithAddedItems();
    ~ProgressWithAddedItems();
    ProgressWithAddedItems(const ProgressWithAddedItems &) = delete;
    ProgressWithAddedItems &operator=(const ProgressWithAddedItems &) = delete;

private:
    bool previous_;
};

} // namespace sim::macos
