// The classes of a program: what they inherit, and what their instances have before anything of them runs.
#include "simulator/host/ground/text.h"
#include "simulator/language/checker.h"
#include "simulator/language/program_object.h"

namespace sim::language {

namespace {

/// Whether instances of the program's class can stand in the host as instances of this one.
bool IsPluginClass(const ClassSymbol &itsClass) {
    return !itsClass.isProgram && itsClass.hostClass && itsClass.hostClass->kind == host::ClassKind::kPlugin &&
           !itsClass.ownHostClass;
}

/// Gives a new object its fields, those of its superclasses first.
void MakeFields(ProgramPart &part) {
    if (!part.fields.empty())
        return;
    for (const ClassSymbol *itsClass = &part.itsClass; itsClass; itsClass = itsClass->super) {
        std::vector<host::Value> own;
        for (const Type &type : itsClass->fields)
            own.push_back(DefaultOf(type));
        part.fields.insert(part.fields.begin(), own.begin(), own.end());
    }
}

} // namespace

void Checker::DeclareClassNames(const ProgramSyntax &text) {
    for (const ClassSyntax &syntax : text.classes) {
        Collecting([&] {
            if (symbols_.Find(syntax.name.word) || KindNamed(syntax.name.word))
                throw WrongProgram(syntax.name.where, "there is a " + syntax.name.text + " already");
            ClassSymbol &added = symbols_.Add(syntax.name.text);
            added.isModule = syntax.isModule;
            added.isProgram = true;
        });
    }
}

void Checker::ResolveSuper(const ClassSyntax &syntax) {
    if (!syntax.super)
        return;
    ClassSymbol &itsClass = *symbols_.Find(syntax.name.word);
    const ClassSymbol &super = ResolveClass(*syntax.super);
    if (super.IsA(itsClass))
        throw WrongProgram(syntax.super->where, itsClass.name + " would inherit from itself");
    if (!super.isProgram && !super.hostClass)
        throw WrongProgram(syntax.super->where, "nothing can inherit from " + super.name);
    itsClass.super = &super;
}

/// Superclasses come first, wherever they stand.
void Checker::GiveHostClass(ClassSymbol &itsClass) {
    if (itsClass.isModule || itsClass.hostClass)
        return;
    if (!itsClass.super) {
        itsClass.make = MakeInstance<host::Instance>;
    } else {
        GiveHostClass(*symbols_.Find(itsClass.super->name));
        if (IsPluginClass(*itsClass.super) || (itsClass.super->isProgram && !itsClass.super->ownHostClass)) {
            itsClass.hostClass = itsClass.super->hostClass;
            return;
        }
    }
    itsClass.ownHostClass = HostClassFor(itsClass.name, itsClass.super ? itsClass.super->hostClass : nullptr);
    itsClass.hostClass = itsClass.ownHostClass.get();
}

void Checker::DeclareMembers(const ClassSyntax &syntax) {
    ClassSymbol &itsClass = *symbols_.Find(syntax.name.word);
    context_ = {};
    context_.itsClass = &itsClass;
    for (const ConstStatement &constant : syntax.constants)
        Collecting([&] { DeclareConstant(constant, itsClass); });
    for (const PropertySyntax &property : syntax.properties)
        Collecting([&] { DeclareProperty(property, itsClass); });
    for (const RoutineSyntax &routine : syntax.routines)
        Collecting([&] {
            if (routine.kind == RoutineKind::kEvent)
                return DeclareEventHandler(routine, itsClass);
            if (routine.name.word == "destructor")
                throw WrongProgram(routine.name.where,
                                   "destructors are not known here; call a method before the object "
                                   "is let go");
            itsClass.routines.push_back(DeclareRoutine(routine, &itsClass));
        });
}

void Checker::DeclareConstant(const ConstStatement &syntax, ClassSymbol &itsClass) {
    const host::Value value = ConstantValue(*syntax.value);
    itsClass.constants.push_back({syntax.name.text, CheckValue(*syntax.value).type, value});
}

void Checker::DeclareProperty(const PropertySyntax &syntax, ClassSymbol &itsClass) {
    const Identifier &name = syntax.declaration.name;
    for (const PropertySymbol &other : itsClass.properties)
        if (host::EqualIgnoringCase(other.name, name.text))
            throw WrongProgram(name.where, name.text + " is declared here already");
    const Type type = ResolveType(syntax.declaration.type);
    PropertySymbol property{name.text, type, syntax.isShared, {}, {}};
    if (syntax.isShared) {
        const size_t slot = globalTypes_.size();
        globalTypes_.push_back(type);
        property.get = [slot](Call &call) { return call.execution.globals[slot]; };
        property.set = [slot](Call &call) { return call.execution.globals[slot] = call.arguments[0]; };
    } else {
        // Where the field is shows when the fields of superclasses are counted, which SetPrepare does.
        const size_t slot = itsClass.fields.size();
        itsClass.fields.push_back(type);
        const auto field = [&itsClass, slot](const Call &call) -> host::Value & {
            size_t before = 0;
            for (const ClassSymbol *super = itsClass.super; super; super = super->super)
                before += super->fields.size();
            return PartOf(call.self).fields[before + slot];
        };
        property.get = [field](Call &call) { return field(call); };
        property.set = [field](Call &call) { return field(call) = call.arguments[0]; };
    }
    itsClass.properties.push_back(std::move(property));
}

void Checker::DeclareEventHandler(const RoutineSyntax &syntax, const ClassSymbol &itsClass) {
    const EventSymbol *event = FindEvent(itsClass, syntax.name.word);
    if (!event)
        throw WrongProgram(syntax.name.where, itsClass.name + " has no event " + syntax.name.text +
                                                  ", and a program declares none of its own here");
    const std::vector<Parameter> parameters = Parameters(syntax);
    if (!SameTypes(parameters, event->parameters))
        throw WrongProgram(syntax.name.where,
                           "expected " + event->name + TypesOf(event->parameters) + ", found " + TypesOf(parameters));
    Context context;
    context.itsClass = &itsClass;
    context.hasSelf = true;
    const BodyPointer body = std::make_shared<Body>();
    bodies_.push_back({&syntax, std::move(context), body});
    handlers_[&itsClass].push_back({event, body});
}

void Checker::RefuseSecondHandlers(const ClassSyntax &syntax) {
    const ClassSymbol &itsClass = *symbols_.Find(syntax.name.word);
    for (const RoutineSyntax &routine : syntax.routines) {
        const EventSymbol *event =
            routine.kind == RoutineKind::kEvent ? FindEvent(itsClass, routine.name.word) : nullptr;
        for (const ClassSymbol *super = itsClass.super; event && super; super = super->super)
            for (const EventHandler &handler : handlers_[super])
                if (handler.event == event)
                    throw WrongProgram(routine.name.where, super->name + " handles " + event->name +
                                                               " already, so its subclasses do not get it");
    }
}

void Checker::CheckInitialValues(const ClassSyntax &syntax) {
    ClassSymbol &itsClass = *symbols_.Find(syntax.name.word);
    for (const PropertySyntax &property : syntax.properties) {
        const PropertySymbol *symbol = FindProperty(itsClass, property.declaration.name.word);
        if (!symbol)
            continue; // its declaration was wrong
        context_ = {};
        context_.itsClass = &itsClass;
        context_.hasSelf = !property.isShared;
        context_.scopes.emplace_back();
        Collecting([&] {
            const Evaluation value = InitialValue(property.declaration, symbol->type);
            const Target target =
                PropertyTarget(*symbol, property.isShared ? Evaluation() : Self(), property.declaration.name.where);
            (property.isShared ? initialisers_ : fieldValues_[&itsClass])
                .push_back([value, store = target.store, slots = context_.slots](Frame &frame) {
                    Frame own = NewFrame(frame.execution, frame.self, {}, slots);
                    store(own, value(own));
                    return Flow::kOn;
                });
        });
    }
}

void Checker::SetPrepare(const ClassSyntax &syntax) {
    ClassSymbol &itsClass = *symbols_.Find(syntax.name.word);
    itsClass.prepare = [&itsClass, values = fieldValues_[&itsClass],
                        handlers = handlers_[&itsClass]](Execution &execution, const host::Object &self) {
        MakeFields(PartOf(self));
        if (itsClass.super && itsClass.super->prepare)
            itsClass.super->prepare(execution, self);
        Frame frame{execution, self, {}};
        for (const Action &value : values)
            value(frame);
        for (const EventHandler &handler : handlers)
            handler.event->install(self, [&execution, body = handler.body](const host::Object &sender,
                                                                           std::vector<host::Value> arguments) {
                execution.CheckStack({});
                Frame own = NewFrame(execution, sender, std::move(arguments), body->slots);
                body->action(own);
            });
    };
}

} // namespace sim::language
