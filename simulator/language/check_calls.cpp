// Which form of a routine a call means, and how its arguments get there.
#include "simulator/host/ground/text.h"
#include "simulator/language/checker.h"

#include <algorithm>

namespace sim::language {

namespace {

std::string TypesOf(const std::vector<Checked> &given) {
    std::string text;
    for (const Checked &argument : given)
        text += (text.empty() ? "" : ", ") + argument.type.Name();
    return "(" + text + ")";
}

/// The sum of all distances; nothing when the form does not take these arguments.
std::optional<int> CallDistance(const Routine &form, const std::vector<Checked> &given) {
    if (given.size() < form.RequiredArguments() || given.size() > form.parameters.size())
        return std::nullopt;
    int sum = 0;
    for (size_t index = 0; index < given.size(); ++index) {
        const Parameter &parameter = form.parameters[index];
        const std::optional<int> distance = Distance(given[index].type, parameter.type);
        if (!distance || (parameter.isByReference && *distance > 0))
            return std::nullopt;
        sum += *distance;
    }
    return sum;
}

std::string CountOf(const Routine &form) {
    const size_t least = form.RequiredArguments(), most = form.parameters.size();
    if (most == 0)
        return "no arguments";
    const std::string last = std::to_string(most) + (most == 1 ? " argument" : " arguments");
    return least == most ? last : std::to_string(least) + " to " + last;
}

[[noreturn]] void Refuse(const std::vector<const Routine *> &forms, const std::vector<Checked> &given,
                         const Location &where) {
    if (forms.size() > 1) {
        std::string all;
        for (const Routine *form : forms)
            all += (all.empty() ? "" : " or ") + form->Describe();
        throw WrongProgram(where, "expected " + all + ", found " + TypesOf(given));
    }
    const Routine &form = *forms[0];
    if (given.size() < form.RequiredArguments() || given.size() > form.parameters.size())
        throw WrongProgram(where, form.name + " takes " + CountOf(form) + ", found " + std::to_string(given.size()));
    for (size_t index = 0; index < given.size(); ++index)
        if (!CallDistance({"", {form.parameters[index]}, {}, true, {}}, {given[index]}))
            throw WrongProgram(given[index].where, "expected " + form.parameters[index].type.Name() + ", found " +
                                                       given[index].type.Name());
    throw WrongProgram(where, "expected " + form.Describe());
}

const Routine &Choose(const std::vector<const Routine *> &forms, const std::vector<Checked> &given,
                      const Location &where) {
    const Routine *best = nullptr;
    int bestDistance = 0;
    for (const Routine *form : forms) {
        const std::optional<int> distance = CallDistance(*form, given);
        if (distance && (!best || *distance < bestDistance)) {
            best = form;
            bestDistance = *distance;
        }
    }
    if (!best)
        Refuse(forms, given, where);
    return *best;
}

/// The method as the object's own class has it, where the program declares that class.
const Routine &Overriding(const Routine &named, const Execution &execution, const host::Object &object) {
    const ClassSymbol *itsClass = execution.ClassOf(object);
    for (; itsClass && itsClass->isProgram; itsClass = itsClass->super)
        for (const Routine &form : itsClass->routines)
            if (host::EqualIgnoringCase(form.name, named.name) && SameTypes(form.parameters, named.parameters) &&
                form.result == named.result)
                return form;
    return named;
}

std::vector<const Routine *> Forms(std::vector<const Routine *> forms, bool assigning) {
    std::erase_if(forms, [assigning](const Routine *form) { return form->Assigns() != assigning; });
    return forms;
}

} // namespace

std::vector<Checked> Checker::CheckArguments(const Arguments *arguments) {
    std::vector<Checked> checked;
    if (arguments)
        for (const ExpressionPointer &argument : *arguments)
            checked.emplace_back(CheckValue(*argument)).written = argument.get();
    return checked;
}

Checker::Store Checker::ReferenceTo(const Checked &argument, const Parameter &parameter) {
    if (!argument.written || !std::holds_alternative<NameExpression>(argument.written->node))
        throw WrongProgram(argument.where, "expected a variable, since " + parameter.name + " is passed by reference");
    return TargetOf(*argument.written).store;
}

Checked Checker::CallRoutine(const std::vector<const Routine *> &forms, const Evaluation &self,
                             const Arguments *arguments, const Location &where, Binding binding) {
    const std::vector<const Routine *> callable = Forms(forms, false);
    if (callable.empty())
        throw WrongProgram(where, forms[0]->name + " can be set but not read");
    return CallChecked(callable, self, CheckArguments(arguments), where, binding);
}

Checked Checker::CallChecked(const std::vector<const Routine *> &forms, const Evaluation &self,
                             std::vector<Checked> given, const Location &where, Binding binding) {
    const Routine &chosen = Choose(forms, given, where);
    std::vector<Evaluation> arguments;
    std::map<size_t, Store> references;
    for (size_t index = 0; index < chosen.parameters.size(); ++index) {
        const Parameter &parameter = chosen.parameters[index];
        if (parameter.isByReference)
            references[index] = ReferenceTo(given[index], parameter);
        if (index < given.size())
            arguments.push_back(ConvertedTo(given[index], parameter.type));
        else
            arguments.push_back([value = *parameter.preset](Frame &) { return value; });
    }
    return {chosen.result,
            [&chosen, self, arguments = std::move(arguments), references, where, binding](Frame &frame) {
                host::Object keeper;
                const host::Object &object = self ? RequireObject(self(frame), frame.execution, where, keeper) : keeper;
                std::vector<host::Value> values;
                values.reserve(arguments.size());
                for (const Evaluation &argument : arguments)
                    values.push_back(argument(frame));
                Call call{frame.execution, object, values, where};
                const bool isFixed = !self || binding == Binding::kNamed;
                const Routine &routine = isFixed ? chosen : Overriding(chosen, frame.execution, object);
                const auto giveBack = [&] {
                    for (const auto &[index, store] : references)
                        store(frame, std::move(values[index]));
                };
                try {
                    host::Value result = routine.function(call);
                    giveBack();
                    return result;
                } catch (const Thrown &) {
                    giveBack();
                    throw;
                }
            },
            where};
}

/// object.Name(arguments) = value, where a routine takes the value as its last argument.
Action Checker::AssignThroughRoutine(const std::vector<const Routine *> &forms, const Evaluation &self,
                                     const Arguments *arguments, const Expression &value, const Location &where) {
    std::vector<Checked> given = CheckArguments(arguments);
    given.push_back(CheckValue(value));
    const Evaluation call = CallChecked(Forms(forms, true), self, std::move(given), where).value;
    return [call](Frame &frame) {
        call(frame);
        return Flow::kOn;
    };
}

Action Checker::Check(const AssignStatement &assign, const Location &where) {
    const Expression *callee = assign.target.get();
    const Arguments *arguments = nullptr;
    if (const auto *call = std::get_if<CallExpression>(&callee->node)) {
        callee = call->callee.get();
        arguments = &call->arguments;
    }
    std::vector<const Routine *> forms;
    Evaluation self;
    if (const auto *member = std::get_if<MemberExpression>(&callee->node)) {
        if (const ClassSymbol *itsClass = ClassMeant(*member->object)) {
            forms = FindRoutines(*itsClass, member->name.word);
        } else if (const Checked object = CheckValue(*member->object); object.type.itsClass && !object.type.isArray) {
            forms = FindRoutines(*object.type.itsClass, member->name.word);
            self = object.value;
        }
    }
    if (!Forms(forms, true).empty())
        return AssignThroughRoutine(forms, self, arguments, *assign.value, where);
    const Target target = TargetOf(*assign.target);
    const Evaluation value = CheckAs(*assign.value, target.type);
    return [store = target.store, value](Frame &frame) {
        store(frame, value(frame));
        return Flow::kOn;
    };
}

} // namespace sim::language
