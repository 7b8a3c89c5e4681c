#include "simulator/host/classes/classes.h"

#include "simulator/host/ground/stop.h"
#include "simulator/host/ground/text.h"

#include <algorithm>
#include <utility>

namespace sim::host {

namespace {

struct BuiltInRow {
    const char *name;
    const char *superName;
    ClassKind kind;
};

/// Superclasses stand before their subclasses.
constexpr BuiltInRow kBuiltIns[] = {
    {"Date", "", ClassKind::kDate},
    {"Dictionary", "", ClassKind::kDictionary},
    {"MemoryBlock", "", ClassKind::kMemoryBlock},
    {"FolderItem", "", ClassKind::kFolderItem},
    {"RuntimeException", "", ClassKind::kException},
    {"NilObjectException", "RuntimeException", ClassKind::kException},
    {"OutOfBoundsException", "RuntimeException", ClassKind::kException},
    {"OutOfMemoryException", "RuntimeException", ClassKind::kException},
    {"IllegalCastException", "RuntimeException", ClassKind::kException},
    {"TypeMismatchException", "RuntimeException", ClassKind::kException},
    {"KeyNotFoundException", "RuntimeException", ClassKind::kException},
};

void RefuseUnmodelled(const ClassRecord &record) {
    if (record.name.empty())
        Stop("a class was registered without a name");
    if (!record.superName.empty() || record.words[13] || record.words[15] || record.words[16])
        Stop("the class " + record.name +
             " has a superclass, event instances, interfaces or bind descriptions, which are not modelled");
    if (!record.sharedProperties.empty())
        Stop("the class " + record.name + " has shared properties, which are not modelled");
}

} // namespace

bool Class::IsA(const Class &other) const {
    for (const Class *itsClass = this; itsClass; itsClass = itsClass->super)
        if (itsClass == &other)
            return true;
    return false;
}

bool Class::HoldsReference(const Property &property) const {
    return kind == ClassKind::kPlugin && property.getter == 0xFFFFFFFF && property.type.IsCounted();
}

Classes::Classes(const HostOptions &options) : rootDataOffset_(options.rootDataOffset) {
    if (rootDataOffset_ < 8)
        Stop("instances begin with at least eight bytes of the host's own");
    for (const BuiltInRow &row : kBuiltIns) {
        if (options.missingClasses.contains(row.name))
            continue;
        const Class *super = Find(row.superName);
        Add(row.name, row.kind).super = super;
    }
    for (const CompanionClass &companion : options.companions) {
        const Class *super = Find(companion.superName);
        Class &added = Add(companion.name, ClassKind::kCompanion);
        added.super = super;
        added.dataSize = companion.dataSize;
        added.companion = companion;
    }
}

Class &Classes::Add(std::string name, ClassKind kind) {
    if (Find(name))
        Stop("there are two classes named " + name);
    auto &added = *classes_.emplace_back(std::make_unique<Class>());
    added.name = std::move(name);
    added.kind = kind;
    added.dataOffset = rootDataOffset_;
    return added;
}

const Class *Classes::Find(std::string_view name) const {
    for (const auto &itsClass : classes_)
        if (EqualIgnoringCase(itsClass->name, name))
            return itsClass.get();
    return nullptr;
}

Class *Classes::Find(std::string_view name) { return const_cast<Class *>(std::as_const(*this).Find(name)); }

const Class &Classes::Behind(const void *reference) const {
    for (const auto &itsClass : classes_)
        if (itsClass.get() == reference)
            return *itsClass;
    Stop("something that is no class reference was given as one");
}

Class &Classes::Register(ClassRecord &record) {
    RefuseUnmodelled(record);
    Class &added = Add(record.name, ClassKind::kPlugin);
    added.dataSize = record.dataSize;
    added.recordAddress = record.address;
    added.constructor = record.constructor;
    added.destructor = record.destructor;
    for (const PropertyRecord &property : record.properties)
        added.properties.push_back(
            {property.name, ParseType(property.type), property.getter, property.setter, property.param});
    for (const MethodRecord &method : record.methods)
        added.methods.push_back(ParseMethod(method));
    for (const MethodRecord &method : record.sharedMethods)
        added.sharedMethods.push_back(ParseMethod(method));
    for (const ConstantRecord &constant : record.constants)
        added.constants.push_back(ParseConstant(constant.declaration));
    for (EventRecord &event : record.events) {
        event.identifier = lastIdentifier_ += 16;
        event.address[1] = event.identifier;
        added.events.push_back({ParseDeclaration(event.declaration), event.identifier});
    }
    SetForSystemUse(added, rootDataOffset_);
    record.forSystemUse = rootDataOffset_;
    return added;
}

void Classes::SetForSystemUse(Class &changed, int32_t offset) {
    if (offset < 8)
        Stop("instances begin with at least eight bytes of the host's own");
    changed.dataOffset = offset;
    changed.recordAddress[4] = static_cast<Word>(offset);
}

Method ParseMethod(const MethodRecord &record) {
    if (!record.function)
        Stop("the method " + record.declaration + " has no function");
    return {ParseDeclaration(record.declaration), record.function, record.setterFunction};
}

} // namespace sim::host
