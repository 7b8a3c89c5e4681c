// A program as a whole: first every class by its name, then what the classes and subs are, then their bodies.
#include "simulator/language/checker.h"
#include "simulator/language/conversions.h"

#include <algorithm>
#include <tuple>

namespace sim::language {

namespace {

/// Gives a call back what became of its arguments, however it ends.
struct Parting {
    Call &call;
    Frame &frame;

    ~Parting() { call.arguments = std::move(frame.variables); }
};

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
    eachClass([&](const ClassSyntax &syntax) { RefuseSecondHandlers(syntax); });
    eachClass([&](const ClassSyntax &syntax) { CheckInitialValues(syntax); });
    eachClass([&](const ClassSyntax &syntax) { SetPrepare(syntax); });
    const BodyPointer outside = CheckOutside(texts.front());
    for (PendingBody &pending : bodies_)
        CheckBody(pending);

    const Routine *main = FindMain(texts.front());
    ThrowMistakes();

    return {globalTypes_, [outside, initialisers = initialisers_, main](Execution &execution,
                                                                        const std::vector<std::string> &arguments) {
                Frame frame = NewFrame(execution, {}, {}, outside->slots);
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

std::vector<Parameter> Checker::Parameters(const RoutineSyntax &syntax) {
    std::vector<Parameter> parameters;
    for (const ParameterSyntax &given : syntax.parameters) {
        Parameter parameter{given.name.text, ResolveType(given.type), given.assigns, {}, given.isByReference};
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
        Frame frame = NewFrame(call.execution, call.self, std::move(call.arguments), body->slots);
        const Parting parting{call, frame};
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

Checker::BodyPointer Checker::CheckOutside(const ProgramSyntax &text) {
    BodyPointer outside = std::make_shared<Body>();
    context_ = {};
    context_.isOutside = true;
    outside->action = CheckBlock(text.statements);
    outside->slots = context_.slots;
    return outside;
}

} // namespace sim::language
