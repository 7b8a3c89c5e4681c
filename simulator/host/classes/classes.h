// The classes that a host knows: its own, the companions', and those that plugins registered. A class reference is the
// address of the Class.
#pragma once

#include "simulator/host/declarations/declaration.h"
#include "simulator/host/declarations/records.h"
#include "simulator/host/ground/options.h"

#include <memory>
#include <optional>

namespace sim::host {

enum class ClassKind { kPlugin, kCompanion, kDate, kDictionary, kMemoryBlock, kFolderItem, kException };

struct Method {
    Declaration declaration;
    Word function = 0;
    Word setterFunction = 0;
};

struct Property {
    std::string name;
    Type type;
    Word getter = 0;
    Word setter = 0;
    int32_t param = 0;
};

struct Event {
    Declaration declaration;
    Word identifier = 0;
};

struct Class {
    std::string name;
    const Class *super = nullptr;
    ClassKind kind = ClassKind::kPlugin;
    int32_t dataOffset = 0;
    uint32_t dataSize = 0;
    // A plugin's class.
    Word *recordAddress = nullptr;
    Word constructor = 0;
    Word destructor = 0;
    std::vector<Property> properties;
    std::vector<Method> methods;
    std::vector<Method> sharedMethods;
    std::vector<Event> events;
    std::vector<ConstantDeclaration> constants;
    // A companion's class.
    std::optional<CompanionClass> companion;

    bool IsA(const Class &other) const;
    bool HasData() const { return kind == ClassKind::kPlugin || kind == ClassKind::kCompanion; }
    /// Standard accessors reach a reference there that the instance's data holds: a Variant, a String, an object.
    bool HoldsReference(const Property &property) const;
};

class Classes {
public:
    explicit Classes(const HostOptions &options);

    /// Names ignore case. Null when the host has no such class.
    Class *Find(std::string_view name);
    const Class *Find(std::string_view name) const;
    /// The class behind a class reference that the host handed out; anything else stops the host.
    const Class &Behind(const void *reference) const;
    /// Takes a registered class in, and writes what the host owns in its records: forSystemUse, and the identifiers of
    /// the events.
    Class &Register(ClassRecord &record);
    void SetForSystemUse(Class &changed, int32_t offset);

private:
    Class &Add(std::string name, ClassKind kind);

    int32_t rootDataOffset_;
    Word lastIdentifier_ = 0xE7E00000;
    std::vector<std::unique_ptr<Class>> classes_;
};

Method ParseMethod(const MethodRecord &record);

} // namespace sim::host
