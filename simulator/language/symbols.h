// What names mean: classes and their members, and what is there without a class. It makes no difference who brought
// something along (the plugin's declarations, the host itself, or the program): a routine is its declaration and a
// function to call.
#pragma once

#include "simulator/host/classes/classes.h"
#include "simulator/host/program/object.h"
#include "simulator/language/source.h"
#include "simulator/language/types.h"

#include <functional>
#include <map>
#include <memory>

namespace sim::language {

class Execution;

/// A call under way. The arguments have the declared types, and none is missing. After the call of a routine of the
/// program's the parameters by reference are in their places among them.
struct Call {
    Execution &execution;
    /// The object whose method or property it is; nil for shared and global ones.
    const host::Object &self;
    std::vector<host::Value> &arguments;
    Location where;
};

using Function = std::function<host::Value(Call &)>;

struct Parameter {
    std::string name;
    Type type;
    bool assigns = false;
    std::optional<host::Value> preset = {};
    /// What the routine makes of it is the argument's value afterwards. The argument is a variable of the very type.
    bool isByReference = false;
};

/// Whether what fits one list of parameters fits the other in the same way.
bool SameTypes(const std::vector<Parameter> &left, const std::vector<Parameter> &right);
/// "(String, ByRef Integer)"
std::string TypesOf(const std::vector<Parameter> &parameters);

struct Routine {
    std::string name;
    std::vector<Parameter> parameters;
    Type result;
    bool isShared = false;
    Function function;

    size_t RequiredArguments() const;
    /// "Left(String, Integer)"
    std::string Describe() const;
    /// Called as an assignment: object.Name(arguments) = value.
    bool Assigns() const { return !parameters.empty() && parameters.back().assigns; }
};

struct PropertySymbol {
    std::string name;
    Type type;
    bool isShared = false;
    Function get;
    Function set; ///< takes the value as its only argument; empty where it cannot be set
};

/// What runs when an event arrives.
using Handler = std::function<void(const host::Object &sender, std::vector<host::Value> arguments)>;

struct EventSymbol {
    std::string name;
    std::vector<Parameter> parameters;
    /// Gives an object its handler, or with an empty one takes it away.
    std::function<void(const host::Object &object, Handler handler)> install;
};

struct ConstantSymbol {
    std::string name;
    Type type;
    host::Value value;
};

/// A class or a module.
struct ClassSymbol {
    std::string name;
    bool isModule = false;
    const ClassSymbol *super = nullptr;
    /// Whether the program declares it.
    bool isProgram = false;
    std::vector<Routine> routines;
    std::vector<PropertySymbol> properties;
    std::vector<EventSymbol> events;
    std::vector<ConstantSymbol> constants;
    /// What its instances are to the host; null for modules and for classes without instances.
    const host::Class *hostClass = nullptr;
    /// Where the host itself has no such class.
    std::unique_ptr<host::Class> ownHostClass = {};
    /// Makes an instance of this class or of a subclass of the program's; empty where the superclass's does.
    std::function<host::Object(Execution &execution, const ClassSymbol &exact)> make;

    // Of a class that the program declares.

    /// The default values of the fields, those of superclasses first.
    std::vector<Type> fields;
    /// Runs on each new instance before its constructor: gives the fields their first values and events their handlers.
    std::function<void(Execution &execution, const host::Object &self)> prepare;

    bool IsA(const ClassSymbol &other) const;
};

class Symbols {
public:
    Symbols() = default;
    Symbols(const Symbols &) = delete;
    Symbols &operator=(const Symbols &) = delete;

    /// Names ignore case. Null when there is no such class or module.
    ClassSymbol *Find(std::string_view name) const;
    ClassSymbol &Add(std::string name);
    /// Routines without a class, by their names in lower case.
    std::multimap<std::string, Routine> globals;

    /// A declaration of the host's as a routine without a function. Stops the host when it names an unknown type.
    Routine Declared(const host::Declaration &declaration) const;
    Type TypeOf(const host::Type &type) const;

private:
    std::map<std::string, std::unique_ptr<ClassSymbol>> classes_;
};

/// The member of that name in the class or its superclasses, or null.
const PropertySymbol *FindProperty(const ClassSymbol &itsClass, std::string_view name);
const ConstantSymbol *FindConstant(const ClassSymbol &itsClass, std::string_view name);
const EventSymbol *FindEvent(const ClassSymbol &itsClass, std::string_view name);
/// Every form of the routine, the class's own first; one of a superclass only where no other has the same types. A
/// class with constructors has no others.
std::vector<const Routine *> FindRoutines(const ClassSymbol &itsClass, std::string_view name);

} // namespace sim::language
