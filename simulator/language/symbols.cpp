#include "simulator/language/symbols.h"

#include "simulator/host/ground/stop.h"
#include "simulator/host/ground/text.h"

#include <algorithm>

namespace sim::language {

namespace {

template <class Member>
const Member *FindMember(const ClassSymbol &first, std::vector<Member> ClassSymbol::*members, std::string_view name) {
    for (const ClassSymbol *itsClass = &first; itsClass; itsClass = itsClass->super)
        for (const Member &member : itsClass->*members)
            if (host::EqualIgnoringCase(member.name, name))
                return &member;
    return nullptr;
}

host::Value PresetOf(const host::Parameter &parameter, const Type &type) {
    const host::Value &preset = *parameter.preset;
    if (type.IsNumber() && preset.Is<int32_t>()) {
        if (type.Is(Kind::kDouble))
            return static_cast<double>(preset.As<int32_t>());
        if (type.Is(Kind::kInt64))
            return static_cast<int64_t>(preset.As<int32_t>());
    }
    return preset;
}

} // namespace

bool SameTypes(const std::vector<Parameter> &left, const std::vector<Parameter> &right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const Parameter &one, const Parameter &other) {
                          return one.type == other.type && one.isByReference == other.isByReference;
                      });
}

std::string TypesOf(const std::vector<Parameter> &parameters) {
    std::string text;
    for (const Parameter &parameter : parameters)
        text += (text.empty() ? "" : ", ") + std::string(parameter.isByReference ? "ByRef " : "") +
                parameter.type.Name() + (parameter.preset ? " (optional)" : "");
    return "(" + text + ")";
}

size_t Routine::RequiredArguments() const {
    size_t required = parameters.size();
    while (required > 0 && parameters[required - 1].preset)
        --required;
    return required;
}

std::string Routine::Describe() const { return name + TypesOf(parameters); }

bool ClassSymbol::IsA(const ClassSymbol &other) const {
    for (const ClassSymbol *itsClass = this; itsClass; itsClass = itsClass->super)
        if (itsClass == &other)
            return true;
    return false;
}

ClassSymbol *Symbols::Find(std::string_view name) const {
    const auto found = classes_.find(host::LowerCase(name));
    return found == classes_.end() ? nullptr : found->second.get();
}

ClassSymbol &Symbols::Add(std::string name) {
    auto &added = classes_[host::LowerCase(name)];
    added = std::make_unique<ClassSymbol>();
    added->name = std::move(name);
    return *added;
}

Type Symbols::TypeOf(const host::Type &type) const {
    if (type.kind == host::TypeKind::kNone)
        return {};
    Type found{Kind::kObject, type.isArray, nullptr};
    if (const std::optional<Kind> kind = KindNamed(type.name))
        found.kind = *kind;
    else if (const ClassSymbol *itsClass = Find(type.name))
        found.itsClass = itsClass;
    else
        host::Stop("a declaration names the type " + type.name + ", which there is not");
    return found;
}

Routine Symbols::Declared(const host::Declaration &declaration) const {
    Routine routine;
    routine.name = declaration.name;
    for (const host::Parameter &given : declaration.parameters) {
        Parameter &parameter = routine.parameters.emplace_back();
        parameter.name = given.name;
        parameter.type = TypeOf(given.type);
        parameter.assigns = given.assigns;
        if (given.preset)
            parameter.preset = PresetOf(given, parameter.type);
    }
    routine.result = TypeOf(declaration.result);
    return routine;
}

const PropertySymbol *FindProperty(const ClassSymbol &itsClass, std::string_view name) {
    return FindMember(itsClass, &ClassSymbol::properties, name);
}

const ConstantSymbol *FindConstant(const ClassSymbol &itsClass, std::string_view name) {
    return FindMember(itsClass, &ClassSymbol::constants, name);
}

const EventSymbol *FindEvent(const ClassSymbol &itsClass, std::string_view name) {
    return FindMember(itsClass, &ClassSymbol::events, name);
}

std::vector<const Routine *> FindRoutines(const ClassSymbol &first, std::string_view name) {
    const bool isConstructor = host::EqualIgnoringCase(name, "Constructor");
    std::vector<const Routine *> found;
    for (const ClassSymbol *itsClass = &first; itsClass; itsClass = itsClass->super) {
        const size_t nearer = found.size();
        for (const Routine &routine : itsClass->routines) {
            const auto isLike = [&](const Routine *other) { return SameTypes(other->parameters, routine.parameters); };
            if (host::EqualIgnoringCase(routine.name, name) &&
                std::none_of(found.data(), found.data() + nearer, isLike))
                found.push_back(&routine);
        }
        if (isConstructor && !found.empty())
            break;
    }
    return found;
}

} // namespace sim::language
