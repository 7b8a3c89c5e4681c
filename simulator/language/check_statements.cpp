#include "simulator/host/ground/text.h"
#include "simulator/language/checker.h"

namespace sim::language {

Action Checker::CheckBlock(const Block &block) {
    const InnerScope scope(*this);
    std::vector<Action> actions;
    for (const Statement &statement : block)
        Collecting([&] { actions.push_back(CheckStatement(statement)); });
    return [actions = std::move(actions)](Frame &frame) {
        for (const Action &action : actions) {
            frame.execution.Step();
            if (const Flow flow = action(frame); flow != Flow::kOn)
                return flow;
        }
        return Flow::kOn;
    };
}

Action Checker::CheckStatement(const Statement &statement) {
    return std::visit([&](const auto &node) { return Check(node, statement.where); }, statement.node);
}

Checker::Scope &Checker::ScopeFor(const Identifier &name) {
    Scope &scope = context_.scopes.back();
    if (scope.contains(name.word))
        throw WrongProgram(name.where, name.text + " is declared here already");
    return scope;
}

size_t Checker::DeclareVariable(const Identifier &name, const Type &type) {
    const size_t slot = NewSlot();
    ScopeFor(name)[name.word] = {type, slot};
    return slot;
}

Action Checker::Check(const DimStatement &dim, const Location &) {
    // A variable outside any sub is everybody's; it was declared before anything was looked at.
    if (context_.isOutside && context_.scopes.size() == 1) {
        const Variable &variable = globals_.at(dim.name.word);
        const Evaluation value = InitialValue(dim, variable.type);
        return [value, slot = variable.slot](Frame &frame) {
            frame.execution.globals[slot] = value(frame);
            return Flow::kOn;
        };
    }
    Type type{Kind::kVariant};
    Evaluation value;
    // Whatever is wrong with it, its name is known from here on.
    Collecting([&] {
        type = ResolveType(dim.type);
        value = InitialValue(dim, type);
    });
    const size_t slot = DeclareVariable(dim.name, type);
    return [value, slot](Frame &frame) {
        frame.variables[slot] = value(frame);
        return Flow::kOn;
    };
}

Action Checker::Check(const ConstStatement &constant, const Location &) {
    if (context_.isOutside && context_.scopes.size() == 1)
        return [](Frame &) { return Flow::kOn; };
    const host::Value value = ConstantValue(*constant.value);
    const Type type = CheckValue(*constant.value).type;
    ScopeFor(constant.name)[constant.name.word] = {type, 0, value};
    return [](Frame &) { return Flow::kOn; };
}

Action Checker::Check(const CallStatement &statement, const Location &where) {
    const Expression &call = *statement.call;
    const bool isCall = std::holds_alternative<CallExpression>(call.node) ||
                        std::holds_alternative<MemberExpression>(call.node) ||
                        std::holds_alternative<NameExpression>(call.node);
    if (!isCall)
        throw WrongProgram(where, "expected a statement, found a value");
    const Checked checked = CheckExpression(call);
    // What a call gives may be left alone; what is no call must be used.
    if (checked.type.kind != Kind::kNothing && !std::holds_alternative<CallExpression>(call.node))
        throw WrongProgram(call.where, "this " + checked.type.Name() + " is not used for anything");
    return [evaluate = checked.value](Frame &frame) {
        evaluate(frame);
        return Flow::kOn;
    };
}

Action Checker::Check(const PrintStatement &print, const Location &) {
    if (!print.text)
        return [](Frame &frame) {
            frame.execution.Print("");
            return Flow::kOn;
        };
    return [text = CheckAs(*print.text, {Kind::kString})](Frame &frame) {
        frame.execution.Print(text(frame).As<std::string>());
        return Flow::kOn;
    };
}

Action Checker::Check(const ReturnStatement &statement, const Location &where) {
    const bool isWanted = context_.result.kind != Kind::kNothing;
    if (isWanted && !statement.value)
        throw WrongProgram(where, "expected a value of type " + context_.result.Name() + " behind Return");
    if (!isWanted && statement.value)
        throw WrongProgram(statement.value->where, "a sub returns no value");
    if (!isWanted)
        return [](Frame &) { return Flow::kReturn; };
    return [value = CheckAs(*statement.value, context_.result)](Frame &frame) {
        frame.result = value(frame);
        return Flow::kReturn;
    };
}

Action Checker::Check(const RaiseStatement &raise, const Location &where) {
    const Type wanted{Kind::kObject, false, symbols_.Find("RuntimeException")};
    return [exception = CheckAs(*raise.exception, wanted), where](Frame &frame) -> Flow {
        host::Object keeper;
        RequireObject(exception(frame), frame.execution, where, keeper);
        throw Thrown{keeper, where};
    };
}

Action Checker::Check(const TryStatement &statement, const Location &) {
    struct Clause {
        const ClassSymbol *itsClass;
        std::optional<size_t> slot;
        Action block;
    };
    const Action block = CheckBlock(statement.block);
    std::vector<Clause> clauses;
    for (const TryStatement::Catch &given : statement.catches) {
        const InnerScope scope(*this);
        Clause clause{symbols_.Find("RuntimeException"), std::nullopt, {}};
        if (given.type)
            clause.itsClass = &ResolveClass(given.type->name);
        if (!clause.itsClass->IsA(*symbols_.Find("RuntimeException")))
            throw WrongProgram(given.type->name.where, given.type->name.text + " is no exception");
        if (given.variable)
            clause.slot = DeclareVariable(*given.variable, {Kind::kObject, false, clause.itsClass});
        clause.block = CheckBlock(given.block);
        clauses.push_back(std::move(clause));
    }
    const Action finally = statement.finally ? CheckBlock(*statement.finally) : Action();
    Action guarded = [block, clauses](Frame &frame) {
        // The clause runs when the exception's own C++ object is gone, so that it can raise another.
        const Clause *chosen = nullptr;
        try {
            return block(frame);
        } catch (const Thrown &thrown) {
            const ClassSymbol *itsClass = frame.execution.ClassOf(thrown.exception);
            for (const Clause &clause : clauses)
                if (!chosen && itsClass && itsClass->IsA(*clause.itsClass))
                    chosen = &clause;
            if (!chosen)
                throw;
            if (chosen->slot)
                frame.variables[*chosen->slot] = thrown.exception;
        }
        return chosen->block(frame);
    };
    if (!finally)
        return guarded;
    return [guarded, finally](Frame &frame) {
        Flow flow = Flow::kOn;
        std::optional<Thrown> pending;
        try {
            flow = guarded(frame);
        } catch (const Thrown &thrown) {
            pending = thrown;
        }
        if (const Flow last = finally(frame); last != Flow::kOn)
            return last;
        if (pending)
            throw Thrown(*pending);
        return flow;
    };
}

Action Checker::Check(const HandlerStatement &handler, const Location &) {
    const Checked object = CheckValue(*handler.object);
    const EventSymbol *event = object.type.Is(Kind::kObject) && object.type.itsClass
                                   ? FindEvent(*object.type.itsClass, handler.event.word)
                                   : nullptr;
    if (!event)
        throw WrongProgram(handler.event.where, object.type.Name() + " has no event " + handler.event.text);

    // The routine takes the sender, then what the event brings.
    const Expression &named = *handler.routine;
    std::vector<const Routine *> forms;
    Evaluation self;
    if (const auto *name = std::get_if<NameExpression>(&named.node)) {
        if (context_.itsClass)
            forms = FindRoutines(*context_.itsClass, name->name.word);
        if (!forms.empty() && !forms[0]->isShared && context_.hasSelf)
            self = Self();
        if (forms.empty())
            for (auto [form, last] = symbols_.globals.equal_range(name->name.word); form != last; ++form)
                forms.push_back(&form->second);
    } else if (const auto *member = std::get_if<MemberExpression>(&named.node)) {
        if (const ClassSymbol *itsClass = ClassMeant(*member->object)) {
            forms = FindRoutines(*itsClass, member->name.word);
        } else if (const Checked owner = CheckValue(*member->object); owner.type.itsClass) {
            forms = FindRoutines(*owner.type.itsClass, member->name.word);
            self = owner.value;
        }
    }
    const auto fits = [&](const Routine &form) {
        if (form.parameters.size() != event->parameters.size() + 1 || !Distance(object.type, form.parameters[0].type))
            return false;
        for (size_t index = 0; index < event->parameters.size(); ++index)
            if (event->parameters[index].type != form.parameters[index + 1].type ||
                form.parameters[index + 1].isByReference)
                return false;
        return form.isShared || self || !context_.itsClass || FindRoutines(*context_.itsClass, form.name).empty();
    };
    const Routine *chosen = nullptr;
    for (const Routine *form : forms)
        if (!chosen && fits(*form))
            chosen = form;
    if (!chosen) {
        std::string wanted = object.type.Name();
        for (const Parameter &parameter : event->parameters)
            wanted += ", " + parameter.type.Name();
        throw WrongProgram(named.where, "expected a sub that takes (" + wanted + ")");
    }
    return
        [value = object.value, event, chosen, self, isRemoval = handler.isRemoval, where = named.where](Frame &frame) {
            host::Object keeper;
            const host::Object &sender = RequireObject(value(frame), frame.execution, where, keeper);
            if (isRemoval) {
                event->install(sender, {});
                return Flow::kOn;
            }
            const host::Object owner = self ? self(frame).As<host::Object>() : host::Object();
            event->install(sender, [&execution = frame.execution, chosen, owner,
                                    where](const host::Object &from, std::vector<host::Value> arguments) {
                arguments.insert(arguments.begin(), from);
                Call call{execution, owner, arguments, where};
                chosen->function(call);
            });
            return Flow::kOn;
        };
}

} // namespace sim::language
