// Instances of the classes that a program declares. To the host, and so to the plugin, such an object is an instance of
// the class that it inherits from; the fields that the program adds are kept beside.
#pragma once

#include "simulator/host/runtime/runtime.h"
#include "simulator/language/execution.h"

namespace sim::language {

struct ProgramPart {
    explicit ProgramPart(const ClassSymbol &exact) : itsClass(exact) {}
    ProgramPart(const ProgramPart &) = delete;
    ProgramPart &operator=(const ProgramPart &) = delete;
    virtual ~ProgramPart() = default;

    const ClassSymbol &itsClass;
    std::vector<host::Value> fields;
};

/// The fields of an object whose class the program declares.
ProgramPart &PartOf(const host::Object &object);

template <class Base> class ProgramInstance final : public Base, public ProgramPart {
public:
    explicit ProgramInstance(const ClassSymbol &exact) : Base(*exact.hostClass), ProgramPart(exact) {}

    std::string ClassName() const override { return itsClass.name; }
    void Die() override {
        fields.clear();
        Base::Die();
    }
};

/// A new instance whose place in the host is a Base; what ClassSymbol::make does for each kind of class.
template <class Base> host::Object MakeInstance(Execution &execution, const ClassSymbol &exact) {
    const host::Class &hostClass = *exact.hostClass;
    host::Heap &heap = host::Runtime::Current().heap;
    const size_t size = host::Instance::SizeFor(hostClass);
    Base &instance = exact.isProgram ? heap.Make<ProgramInstance<Base>>(size, exact) : heap.Make<Base>(size, hostClass);
    host::Object object = host::Object::Adopt(&instance);
    instance.LayOut();
    // The plugin asks for event handlers when its constructor runs, so they must be there by then.
    if (exact.prepare)
        exact.prepare(execution, object);
    if (hostClass.constructor)
        reinterpret_cast<void (*)(void *)>(static_cast<uintptr_t>(hostClass.constructor))(instance.address);
    return object;
}

/// A class of its own for instances that the host does not know, or knows by their superclass only.
std::unique_ptr<host::Class> HostClassFor(const std::string &name, const host::Class *super);

} // namespace sim::language
