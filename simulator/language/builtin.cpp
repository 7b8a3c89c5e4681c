#include "simulator/language/builtin.h"

#include "simulator/host/ground/text.h"
#include "simulator/host/runtime/runtime.h"
#include "simulator/language/builtin_timer.h"
#include "simulator/language/program_object.h"

namespace sim::language {

namespace {

void AddName(Symbols &symbols, const BuiltInClass &given) {
    ClassSymbol &added = symbols.Add(given.name);
    if (given.super)
        added.super = symbols.Find(given.super);
    if (!given.make)
        return;
    added.make = given.make;
    added.hostClass = host::Runtime::Current().classes.Find(given.name);
    if (added.hostClass)
        return;
    added.ownHostClass = HostClassFor(given.name, added.super ? added.super->hostClass : nullptr);
    added.hostClass = added.ownHostClass.get();
}

Routine RoutineFrom(const Symbols &symbols, const FunctionRow &row) {
    Routine routine = symbols.Declared(host::ParseDeclaration(row.declaration));
    routine.isShared = row.isShared;
    routine.function = row.function;
    return routine;
}

void AddMembers(Symbols &symbols, const BuiltInClass &given) {
    ClassSymbol &itsClass = *symbols.Find(given.name);
    for (const FunctionRow &row : given.functions)
        itsClass.routines.push_back(RoutineFrom(symbols, row));
    for (const PropertyRow &row : given.properties) {
        const Routine declared = symbols.Declared(host::ParseDeclaration(row.declaration));
        itsClass.properties.push_back({declared.name, declared.result, row.isShared, row.get, row.set});
    }
    for (const char *constant : given.constants) {
        const host::ConstantDeclaration declared = host::ParseConstant(constant);
        itsClass.constants.push_back({declared.name, {Kind::kInteger}, declared.value});
    }
}

} // namespace

void AddBuiltIns(Symbols &symbols) {
    std::vector<const BuiltInClass *> classes;
    for (const BuiltInClass &exception : ExceptionClasses())
        classes.push_back(&exception);
    for (const BuiltInClass *itsClass : {&DateClass(), &DictionaryClass(), &MemoryBlockClass(), &FolderItemClass(),
                                         &SpecialFolderClass(), &TimerClass(), &VariantMembers()})
        classes.push_back(itsClass);
    for (const BuiltInClass &stream : StreamClasses())
        classes.push_back(&stream);
    for (const BuiltInClass *itsClass : classes)
        AddName(symbols, *itsClass);
    for (const BuiltInClass *itsClass : classes)
        AddMembers(symbols, *itsClass);
    symbols.Find("Timer")->events.push_back(TimerAction());
    for (const std::span<const FunctionRow> rows : {TextFunctions(), NumberFunctions()})
        for (const FunctionRow &row : rows) {
            Routine routine = RoutineFrom(symbols, row);
            std::string name = host::LowerCase(routine.name);
            symbols.globals.emplace(std::move(name), std::move(routine));
        }
}

std::string TextAt(const Call &call, size_t index) { return call.arguments[index].As<std::string>(); }

int32_t IntegerAt(const Call &call, size_t index) { return call.arguments[index].As<int32_t>(); }

} // namespace sim::language
