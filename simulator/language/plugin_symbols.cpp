#include "simulator/language/plugin_symbols.h"

#include "simulator/host/ground/text.h"
#include "simulator/host/program/calls.h"
#include "simulator/host/program/property_access.h"
#include "simulator/host/runtime/runtime.h"
#include "simulator/language/conversions.h"
#include "simulator/language/program_object.h"

namespace sim::language {

namespace {

/// What the plugin gives, once what it raised is on its way to the program.
host::Value Passed(Call &call, host::Value value, const Type &type) {
    call.execution.PassOnRaised(call.where);
    return Tidied(std::move(value), type);
}

/// `method` is the host's own record, which lives as long as the host.
Routine RoutineFor(const Symbols &symbols, const std::string &owner, const host::Method &method, bool isShared) {
    Routine routine = symbols.Declared(method.declaration);
    routine.isShared = isShared;
    routine.function = [owner, &method, type = routine.result](Call &call) {
        return Passed(call, host::CallMethod(owner, method, call.self.Get(), call.arguments), type);
    };
    return routine;
}

/// A method without arguments whose second half sets: to programs, a property.
PropertySymbol PairFor(const Symbols &symbols, const std::string &owner, const host::Method &method) {
    const Type type = symbols.TypeOf(method.declaration.result);
    return {method.declaration.name, type, false,
            [owner, &method, type](Call &call) {
                return Passed(call, host::CallMethod(owner, method, call.self.Get(), {}), type);
            },
            [owner, &method, type](Call &call) {
                host::CallSetter(owner, method, call.self.Get(), call.arguments[0]);
                return Passed(call, {}, type);
            }};
}

PropertySymbol PropertyFor(const Symbols &symbols, const host::Property &property) {
    const Type type = symbols.TypeOf(property.type);
    PropertySymbol symbol{property.name,
                          type,
                          false,
                          [&property, type](Call &call) {
                              auto &instance = dynamic_cast<host::Instance &>(*call.self.Get());
                              return Passed(call, host::GetProperty(property, instance), type);
                          },
                          {}};
    if (property.setter)
        symbol.set = [&property, type](Call &call) {
            host::SetProperty(property, dynamic_cast<host::Instance &>(*call.self.Get()), call.arguments[0]);
            return Passed(call, {}, type);
        };
    return symbol;
}

EventSymbol EventFor(const Symbols &symbols, const host::Event &event) {
    const Routine declared = symbols.Declared(event.declaration);
    return {declared.name, declared.parameters, [name = declared.name](const host::Object &object, Handler handler) {
                if (!handler)
                    return object.RemoveEvent(name);
                object.OnEvent(name, [handler = std::move(handler)](const host::EventCall &call) {
                    handler(call.object, call.arguments);
                });
            }};
}

void AddMembers(const Symbols &symbols, const host::Class &hostClass, ClassSymbol &itsClass) {
    for (const host::Method &method : hostClass.methods) {
        if (method.setterFunction && method.declaration.parameters.empty())
            itsClass.properties.push_back(PairFor(symbols, hostClass.name, method));
        else
            itsClass.routines.push_back(RoutineFor(symbols, hostClass.name, method, false));
    }
    for (const host::Method &method : hostClass.sharedMethods)
        itsClass.routines.push_back(RoutineFor(symbols, hostClass.name, method, true));
    for (const host::Property &property : hostClass.properties)
        itsClass.properties.push_back(PropertyFor(symbols, property));
    for (const host::Event &event : hostClass.events)
        itsClass.events.push_back(EventFor(symbols, event));
    for (const host::ConstantDeclaration &constant : hostClass.constants) {
        const Kind kind = constant.value.Is<std::string>() ? Kind::kString : Kind::kInteger;
        itsClass.constants.push_back({constant.name, {kind}, constant.value});
    }
}

} // namespace

void AddPluginSymbols(host::Host &host, Symbols &symbols) {
    const host::Runtime &runtime = host::Runtime::Current();
    for (const host::ClassRecord &record : host.Arrived().classes) {
        ClassSymbol &itsClass = symbols.Add(record.name);
        itsClass.hostClass = runtime.classes.Find(record.name);
        itsClass.make = MakeInstance<host::Instance>;
    }
    for (const host::ClassRecord &record : host.Arrived().classes)
        AddMembers(symbols, *runtime.classes.Find(record.name), *symbols.Find(record.name));
    for (const host::Method &method : runtime.globalMethods)
        symbols.globals.emplace(host::LowerCase(method.declaration.name), RoutineFor(symbols, "global", method, true));
}

} // namespace sim::language
