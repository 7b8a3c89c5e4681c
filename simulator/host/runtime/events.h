// Event handlers as C functions. A plugin gets one function per declared event, the same for every object of the class;
// the object, always its first argument, decides which handler runs. The functions come from a fixed pool, because a C
// function has no other room for knowing which event it is.
#pragma once

#include "simulator/host/declarations/declaration.h"
#include "simulator/host/declarations/records.h"

#include <exception>

namespace sim::host {

struct Class;
class Instance;

class Events {
public:
    /// The function for the event with that identifier, or null when the object has no handler for it. An identifier
    /// that no event of the object's class has stops the host.
    Function HandlerFor(Instance &object, uint32_t identifier);

    /// Runs the handler of the event in a slot of the pool; `words` are the declared arguments.
    void Deliver(size_t slot, void *object, const uint32_t *words);

    void RethrowFailure();

private:
    struct Slot {
        const Class *itsClass;
        size_t event;
    };

    std::vector<Slot> slots_;
    std::exception_ptr failure_;
};

} // namespace sim::host
