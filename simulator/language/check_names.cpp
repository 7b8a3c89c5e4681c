// What a name means where it stands: a variable first, then what the class has, then what is global.
#include "simulator/host/ground/text.h"
#include "simulator/language/checker.h"
#include "simulator/language/program_object.h"

namespace sim::language {

namespace {

/// Calls a property's function, which has no arguments of its own.
host::Value Read(const PropertySymbol &property, Execution &execution, const host::Object &self,
                 const Location &where) {
    std::vector<host::Value> none;
    Call call{execution, self, none, where};
    return property.get(call);
}

std::string NoMember(const std::string &owner, const Identifier &name) { return owner + " has no " + name.text; }

} // namespace

const Checker::Variable *Checker::FindVariable(std::string_view word, bool &isGlobal) const {
    isGlobal = false;
    for (auto scope = context_.scopes.rbegin(); scope != context_.scopes.rend(); ++scope)
        if (const auto found = scope->find(std::string(word)); found != scope->end())
            return &found->second;
    // What a class has comes before what is global.
    const ClassSymbol *itsClass = context_.itsClass;
    if (itsClass && (FindProperty(*itsClass, word) || FindConstant(*itsClass, word)))
        return nullptr;
    isGlobal = true;
    const auto found = globals_.find(std::string(word));
    return found == globals_.end() ? nullptr : &found->second;
}

Checked Checker::ReadVariable(const Variable &variable, bool isGlobal, const Location &where) const {
    if (variable.constant)
        return {variable.type, [value = *variable.constant](Frame &) { return value; }, where};
    if (isGlobal)
        return {variable.type, [slot = variable.slot](Frame &frame) { return frame.execution.globals[slot]; }, where};
    return {variable.type, [slot = variable.slot](Frame &frame) { return frame.variables[slot]; }, where};
}

Evaluation Checker::Self() const {
    return [](Frame &frame) -> host::Value { return frame.self; };
}

Checked Checker::Named(const Identifier &name, const Arguments *arguments, const Location &where) {
    bool isGlobal = false;
    if (const Variable *variable = FindVariable(name.word, isGlobal))
        return WithArguments(ReadVariable(*variable, isGlobal, name.where), arguments, where);
    if (context_.itsClass)
        if (std::optional<Checked> found = NamedInClass(name, arguments, where))
            return *found;
    std::vector<const Routine *> forms;
    for (auto [form, last] = symbols_.globals.equal_range(name.word); form != last; ++form)
        forms.push_back(&form->second);
    if (!forms.empty())
        return CallRoutine(forms, {}, arguments, where);
    if (name.word == "array" && arguments)
        return ArrayOf(*arguments, std::nullopt, where);
    if (name.word == "ubound" && arguments && arguments->size() == 1)
        return UpperBound(CheckValue(*arguments->front()), where);
    if (const ClassSymbol *itsClass = symbols_.Find(name.word); itsClass && arguments)
        return Cast(*itsClass, *arguments, where);
    throw WrongProgram(name.where, "there is nothing named " + name.text);
}

std::optional<Checked> Checker::NamedInClass(const Identifier &name, const Arguments *arguments,
                                             const Location &where) {
    const ClassSymbol &itsClass = *context_.itsClass;
    if (const PropertySymbol *property = FindProperty(itsClass, name.word)) {
        if (!property->isShared && !context_.hasSelf)
            throw WrongProgram(name.where, name.text + " belongs to an object, and here is none");
        const Checked value = ReadProperty(*property, property->isShared ? Evaluation() : Self(), where);
        return WithArguments(value, arguments, where);
    }
    if (const ConstantSymbol *constant = FindConstant(itsClass, name.word))
        return WithArguments({constant->type, [value = constant->value](Frame &) { return value; }, where}, arguments,
                             where);
    const std::vector<const Routine *> forms = FindRoutines(itsClass, name.word);
    if (forms.empty())
        return std::nullopt;
    if (!forms[0]->isShared && !context_.hasSelf)
        throw WrongProgram(name.where, name.text + " belongs to an object, and here is none");
    return CallRoutine(forms, forms[0]->isShared ? Evaluation() : Self(), arguments, where);
}

const ClassSymbol *Checker::ClassMeant(const Expression &expression) const {
    const auto *name = std::get_if<NameExpression>(&expression.node);
    bool isGlobal = false;
    if (!name || FindVariable(name->name.word, isGlobal))
        return nullptr;
    if (context_.itsClass && FindProperty(*context_.itsClass, name->name.word))
        return nullptr;
    return symbols_.Find(name->name.word);
}

Checked Checker::MemberOf(const MemberExpression &member, const Arguments *arguments, const Location &where) {
    if (const ClassSymbol *itsClass = ClassMeant(*member.object))
        return MemberOfClass(*itsClass, member.name, arguments, where);
    if (const auto *self = std::get_if<SelfExpression>(&member.object->node); self && self->isSuper) {
        if (!context_.hasSelf || !context_.itsClass->super)
            throw WrongProgram(member.object->where, "there is no superclass here");
        const ClassSymbol &super = *context_.itsClass->super;
        return MemberOfObject({{Kind::kObject, false, &super}, Self(), member.object->where}, super, member.name,
                              arguments, where, Binding::kNamed);
    }
    const Checked object = CheckValue(*member.object);
    if (object.type.isArray)
        return MemberOfArray(object, member.name, arguments, where);
    if (object.type.Is(Kind::kVariant))
        return MemberOfVariant(object, member.name, arguments, where);
    if (!object.type.Is(Kind::kObject) || !object.type.itsClass)
        throw WrongProgram(member.name.where, NoMember(object.type.Name(), member.name));
    return MemberOfObject(object, *object.type.itsClass, member.name, arguments, where);
}

Checked Checker::MemberOfClass(const ClassSymbol &itsClass, const Identifier &name, const Arguments *arguments,
                               const Location &where) {
    if (const ConstantSymbol *constant = FindConstant(itsClass, name.word))
        return WithArguments({constant->type, [value = constant->value](Frame &) { return value; }, where}, arguments,
                             where);
    if (const PropertySymbol *property = FindProperty(itsClass, name.word)) {
        if (!property->isShared)
            throw WrongProgram(name.where,
                               name.text + " belongs to an object of " + itsClass.name + ", not to the class");
        return WithArguments(ReadProperty(*property, {}, where), arguments, where);
    }
    std::vector<const Routine *> forms = FindRoutines(itsClass, name.word);
    if (forms.empty())
        throw WrongProgram(name.where, NoMember(itsClass.name, name));
    std::erase_if(forms, [](const Routine *form) { return !form->isShared; });
    if (forms.empty())
        throw WrongProgram(name.where, name.text + " belongs to an object of " + itsClass.name + ", not to the class");
    return CallRoutine(forms, {}, arguments, where);
}

Checked Checker::MemberOfObject(const Checked &object, const ClassSymbol &itsClass, const Identifier &name,
                                const Arguments *arguments, const Location &where, Binding binding) {
    if (const PropertySymbol *property = FindProperty(itsClass, name.word); property && !property->isShared)
        return WithArguments(ReadProperty(*property, object.value, where), arguments, where);
    std::vector<const Routine *> forms = FindRoutines(itsClass, name.word);
    const bool isKnown = !forms.empty() || FindProperty(itsClass, name.word) || FindConstant(itsClass, name.word);
    std::erase_if(forms, [](const Routine *form) { return form->isShared; });
    if (!forms.empty())
        return CallRoutine(forms, object.value, arguments, where, binding);
    if (isKnown)
        throw WrongProgram(name.where, name.text + " belongs to the class; write " + itsClass.name + "." + name.text);
    throw WrongProgram(name.where, NoMember(itsClass.name, name));
}

Checked Checker::MemberOfVariant(const Checked &object, const Identifier &name, const Arguments *arguments,
                                 const Location &where) {
    const std::vector<const Routine *> forms = FindRoutines(*symbols_.Find("Variant"), name.word);
    if (forms.empty())
        throw WrongProgram(name.where, NoMember("Variant", name) + "; assign it to a variable of its type first");
    std::vector<Checked> given = CheckArguments(arguments);
    given.insert(given.begin(), object);
    return CallChecked(forms, {}, std::move(given), where);
}

Checked Checker::ReadProperty(const PropertySymbol &property, const Evaluation &self, const Location &where) {
    if (!self)
        return {property.type, [&property, where](Frame &frame) { return Read(property, frame.execution, {}, where); },
                where};
    return {property.type,
            [&property, self, where](Frame &frame) {
                host::Object keeper;
                return Read(property, frame.execution, RequireObject(self(frame), frame.execution, where, keeper),
                            where);
            },
            where};
}

Checked Checker::WithArguments(Checked checked, const Arguments *arguments, const Location &where) {
    if (!arguments)
        return checked;
    if (!checked.type.isArray)
        throw WrongProgram(where, checked.type.Name() + " is no array and takes no index");
    return ElementOf(checked, *arguments, where);
}

Checked Checker::Cast(const ClassSymbol &itsClass, const Arguments &arguments, const Location &where) {
    if (arguments.size() != 1 || !itsClass.hostClass)
        throw WrongProgram(where, "expected one object to take for " + itsClass.name);
    const Checked object = CheckValue(*arguments[0]);
    const Type type{Kind::kObject, false, &itsClass};
    if (!Distance(object.type, type) && !Distance(type, object.type))
        throw WrongProgram(object.where, object.type.Name() + " is never " + itsClass.name);
    const Checked uncertain{{Kind::kVariant}, object.value, object.where};
    return {type, ConvertedTo(uncertain, type), where};
}

Checker::Target Checker::VariableTarget(const Variable &variable, bool isGlobal) const {
    if (isGlobal)
        return {variable.type, [slot = variable.slot](Frame &frame, host::Value value) {
                    frame.execution.globals[slot] = std::move(value);
                }};
    return {variable.type,
            [slot = variable.slot](Frame &frame, host::Value value) { frame.variables[slot] = std::move(value); }};
}

Checker::Target Checker::PropertyTarget(const PropertySymbol &property, const Evaluation &self,
                                        const Location &where) const {
    if (!property.set)
        throw WrongProgram(where, property.name + " can be read but not set");
    return {property.type, [&property, self, where](Frame &frame, host::Value value) {
                host::Object keeper;
                std::vector<host::Value> arguments{std::move(value)};
                Call call{frame.execution, self ? RequireObject(self(frame), frame.execution, where, keeper) : keeper,
                          arguments, where};
                property.set(call);
            }};
}

Checker::Target Checker::TargetOf(const Expression &expression) {
    if (const auto *name = std::get_if<NameExpression>(&expression.node)) {
        bool isGlobal = false;
        if (const Variable *variable = FindVariable(name->name.word, isGlobal); variable && !variable->constant)
            return VariableTarget(*variable, isGlobal);
        const PropertySymbol *property =
            context_.itsClass ? FindProperty(*context_.itsClass, name->name.word) : nullptr;
        if (property && (property->isShared || context_.hasSelf))
            return PropertyTarget(*property, property->isShared ? Evaluation() : Self(), expression.where);
    }
    if (const auto *member = std::get_if<MemberExpression>(&expression.node)) {
        if (const ClassSymbol *itsClass = ClassMeant(*member->object)) {
            if (const PropertySymbol *property = FindProperty(*itsClass, member->name.word);
                property && property->isShared)
                return PropertyTarget(*property, {}, expression.where);
        } else if (const Checked object = CheckValue(*member->object); object.type.itsClass && !object.type.isArray) {
            if (const PropertySymbol *property = FindProperty(*object.type.itsClass, member->name.word))
                return PropertyTarget(*property, object.value, expression.where);
        }
    }
    if (const auto *call = std::get_if<CallExpression>(&expression.node))
        return ElementTarget(CheckValue(*call->callee), call->arguments, expression.where);
    CheckExpression(expression); // says what is wrong with a name that is not known
    throw WrongProgram(expression.where, "nothing can be assigned to this");
}

} // namespace sim::language
