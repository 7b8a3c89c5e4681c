// An instance of a class. Of a plugin's or companion's class the block holds the host's own words and, behind them, the
// plugin data; of a built-in class it holds nothing that anybody may look at, and the contents are C++ fields of the
// subclasses in builtin.h. The host's own words must come back as they were when the instance dies.
#pragma once

#include "simulator/host/entities/heap.h"
#include "simulator/host/entities/value.h"

#include <map>
#include <set>

namespace sim::host {

struct Class;

class Instance : public Entity {
public:
    explicit Instance(const Class &itsClass);
    /// Fills the host's own words; called once, when the block is there.
    virtual void LayOut();

    std::string ClassName() const override;
    int32_t TypeCode() const override;
    void VisitHeld(const Visitor &visitor) const override;
    void Die() override;

    const Class &GetClass() const { return class_; }
    std::byte *Data() const { return address + dataOffset_; }
    uint32_t DataSize() const { return static_cast<uint32_t>(size) - static_cast<uint32_t>(dataOffset_); }

    /// The bytes that an instance of the class takes now.
    static size_t SizeFor(const Class &itsClass);

    using EventFunction = std::function<void(Instance &, const std::string &event, std::vector<Value> arguments)>;
    /// Event handlers by the position of the event in its class.
    std::map<size_t, EventFunction> handlers;
    /// Methods that were loaded on this very instance, by their service names.
    std::set<const char *> loadedMethods;

private:
    void CheckHostWords() const;

    const Class &class_;
    int32_t dataOffset_;
};

} // namespace sim::host
