// The declarations of a program: first every class by its name, then what the classes and subs are, then their bodies.
#include "simulator/host/ground/text.h"
#include "simulator/language/checker.h"
#include "simulator/language/conversions.h"
#include "simulator/language/program_object.h"

#include <algorithm>
#include <tuple>

namespace sim::language {

namespace {

/// Whether instances of the program's class can stand in the host as instances of this one.
bool IsPluginClass(const ClassSymbol &itsClass) {
    return !itsClass.isProgram && itsClass.hostClass && itsClass.hostClass->kind == host::ClassKind::kPlugin &&
           !itsClass.ownHostClass;
}

bool SameTypes(const std::vector<Parameter> &left, const std::vector<Parameter> &right) {
    if (left.size() != right.size())
        return false;
    for (size_t index = 0; index < left.size(); ++index)
        if (left[index].type != right[index].type)
            return false;
    return true;
}

std::string TypesOf(const std::vector<Parameter> &parameters) {
    std::string text;
    for (const Parameter &parameter : parameters)
        text += (text.empty() ? "" : ", ") + parameter.type.Name();
    return "(" + text + ")";
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

std::vector<host::Value> FrameVariables(std::vector<host::Value> arguments, size_t slots) {
    arguments.resize(std::max(slots, arguments.size()));
    return arguments;
}

} // namespace

CheckedProgram Check(std::span<const ProgramSyntax> texts, Symbols &symbols) { return Checker(symbols).Program(texts); }

CheckedProgram Checker::Program(std::span<const ProgramSyntax> texts) {
    for (const ProgramSyntax &text : texts)
        DeclareClassNames(text);
    const auto eachClass = [&](auto action) {
        for (const ProgramSyntax &text : texts)
            for (const ClassSyntax &syntax : text.classes)
                Collecting([&] { action(syntax); });
    };
    eachClass([&](const ClassSyntax &syntax) { ResolveSuper(syntax); });
    ThrowMistakes();
    eachClass([&](const ClassSyntax &syntax) { GiveHostClass(*symbols_.Find(syntax.name.word)); });
    eachClass([&](const ClassSyntax &syntax) { DeclareMembers(syntax); });
    for (const ProgramSyntax &text : texts)
        DeclareGlobals(text, &text == texts.data());
    eachClass([&](const ClassSyntax &syntax) { CheckInitialValues(syntax); });
    eachClass([&](const ClassSyntax &syntax) { SetPrepare(syntax); });
    const BodyPointer outside = CheckOutside(texts.front());
    for (PendingBody &pending : bodies_)
        CheckBody(pending);

    const Routine *main = FindMain(texts.front());
    ThrowMistakes();

    return {globalTypes_, [outside, initialisers = initialisers_, main](Execution &execution,
                                                                        const std::vector<std::string> &arguments) {
                Frame frame{execution, {}, FrameVariables({}, outside->slots)};
                for (const Action &initialiser : initialisers)
                    initialiser(frame);
                outside->action(frame);
                if (!main)
                    return;
                std::vector<host::Value> values;
                if (!main->parameters.empty()) {
                    host::Object array = execution.Host().NewArray("string");
                    for (const std::string &argument : arguments)
                        array.Append(argument);
                    values.emplace_back(std::move(array));
                }
                Call call{execution, {}, values, {}};
                main->function(call);
            }};
}

void Checker::ThrowMistakes() {
    if (mistakes_.empty())
        return;
    std::stable_sort(mistakes_.begin(), mistakes_.end(), [](const Mistake &left, const Mistake &right) {
        return std::tie(left.where.source->name, left.where.line, left.where.column) <
               std::tie(right.where.source->name, right.where.line, right.where.column);
    });
    throw WrongProgram(mistakes_);
}

const Routine *Checker::FindMain(const ProgramSyntax &text) {
    const auto found = symbols_.globals.find("main");
    if (found == symbols_.globals.end())
        return nullptr;
    const std::vector<Parameter> &parameters = found->second.parameters;
    const Type texts{Kind::kString, true, nullptr};
    if (parameters.size() > 1 || (parameters.size() == 1 && parameters[0].type != texts))
        for (const RoutineSyntax &routine : text.routines)
            if (routine.name.word == "main")
                mistakes_.push_back({routine.name.where, "Main takes (args() As String)"});
    for (const Statement &statement : text.statements)
        if (!std::holds_alternative<DimStatement>(statement.node) &&
            !std::holds_alternative<ConstStatement>(statement.node))
            mistakes_.push_back({statement.where, "beside Sub Main only Dim and Const stand outside subs"});
    return &found->second;
}

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
                throw WrongProgram(routine.name.where, "destructors are not known here");
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
        throw WrongProgram(syntax.name.where, itsClass.name + " has no event " + syntax.name.text);
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

std::vector<Parameter> Checker::Parameters(const RoutineSyntax &syntax) {
    std::vector<Parameter> parameters;
    for (const ParameterSyntax &given : syntax.parameters) {
        Parameter parameter{given.name.text, ResolveType(given.type), given.assigns, {}};
        if (given.preset) {
            CheckAs(*given.preset, parameter.type);
            const host::Value value = ConstantValue(*given.preset);
            parameter.preset = parameter.type.IsNumber() ? NumberAs(value, parameter.type.kind) : value;
        }
        parameters.push_back(std::move(parameter));
    }
    return parameters;
}

Routine Checker::DeclareRoutine(const RoutineSyntax &syntax, const ClassSymbol *itsClass) {
    Routine routine;
    routine.name = syntax.name.text;
    routine.parameters = Parameters(syntax);
    routine.isShared = !itsClass || syntax.isShared;
    if (syntax.result)
        routine.result = ResolveType(*syntax.result);
    const BodyPointer body = std::make_shared<Body>();
    routine.function = [body, result = routine.result](Call &call) {
        call.execution.CheckStack(call.where);
        Frame frame{call.execution, call.self, FrameVariables(std::move(call.arguments), body->slots)};
        frame.result = DefaultOf(result);
        body->action(frame);
        return std::move(frame.result);
    };
    Context context;
    context.itsClass = itsClass;
    context.hasSelf = !routine.isShared;
    context.result = routine.result;
    bodies_.push_back({&syntax, std::move(context), body});
    return routine;
}

void Checker::CheckBody(PendingBody &pending) {
    context_ = std::move(pending.context);
    context_.scopes.emplace_back();
    Collecting([&] {
        for (const ParameterSyntax &parameter : pending.syntax->parameters)
            DeclareVariable(parameter.name, ResolveType(parameter.type));
        pending.body->action = CheckBlock(pending.syntax->block);
    });
    pending.body->slots = context_.slots;
}
void Checker::DeclareGlobals(const ProgramSyntax &text, bool isFirst) {
    context_ = {};
    for (const RoutineSyntax &syntax : text.routines)
        Collecting([&] {
            if (symbols_.globals.contains(syntax.name.word) && !ownGlobals_.contains(syntax.name.word))
                throw WrongProgram(syntax.name.where, "the host has a " + syntax.name.text + " already");
            ownGlobals_.insert(syntax.name.word);
            symbols_.globals.emplace(syntax.name.word, DeclareRoutine(syntax, nullptr));
        });
    for (const Statement &statement : text.statements)
        Collecting([&] {
            if (!isFirst)
                throw WrongProgram(statement.where, "beside the program, files have classes, modules and subs only");
            if (const auto *dim = std::get_if<DimStatement>(&statement.node)) {
                // Whatever is wrong with its type, its name is known from here on.
                Type type{Kind::kVariant};
                Collecting([&] { type = ResolveType(dim->type); });
                DeclareGlobal(dim->name, type, std::nullopt);
            }
            if (const auto *constant = std::get_if<ConstStatement>(&statement.node)) {
                const host::Value value = ConstantValue(*constant->value);
                DeclareGlobal(constant->name, CheckValue(*constant->value).type, value);
            }
        });
}

void Checker::DeclareGlobal(const Identifier &name, const Type &type, std::optional<host::Value> constant) {
    if (globals_.contains(name.word))
        throw WrongProgram(name.where, name.text + " is declared already");
    globals_[name.word] = {type, globalTypes_.size(), std::move(constant)};
    globalTypes_.push_back(type);
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
                    Frame own{frame.execution, frame.self, FrameVariables({}, slots)};
                    store(own, value(own));
                    return Flow::kOn;
                });
        });
    }
}

Checker::BodyPointer Checker::CheckOutside(const ProgramSyntax &text) {
    BodyPointer outside = std::make_shared<Body>();
    context_ = {};
    context_.isOutside = true;
    outside->action = CheckBlock(text.statements);
    outside->slots = context_.slots;
    return outside;
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
                Frame own{execution, sender, FrameVariables(std::move(arguments), body->slots)};
                body->action(own);
            });
    };
}

} // namespace sim::language
