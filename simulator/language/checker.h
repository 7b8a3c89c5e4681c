// Finds out what every name of a program means and whether types fit, before anything runs. Each function checks one
// construct and gives what was made of it: an Evaluation for an expression, an Action for a statement. So a program
// that was checked consists of functions that need to ask nothing anymore, and nothing can run that was not checked.
#pragma once

#include "simulator/language/execution.h"
#include "simulator/language/mistake.h"
#include "simulator/language/syntax_tree.h"

#include <span>

namespace sim::language {

/// A program that can be run, once, with symbols that outlive it.
struct CheckedProgram {
    /// Its global variables, by their types.
    std::vector<Type> globals;
    /// Everything up to the end of Sub Main, or of the statements outside any sub.
    std::function<void(Execution &execution, const std::vector<std::string> &arguments)> run;
};

/// The texts of a program, the first of which has its beginning. Adds the program's classes to the symbols. Throws
/// WrongProgram with all mistakes. The syntax must outlive the call only.
CheckedProgram Check(std::span<const ProgramSyntax> texts, Symbols &symbols);

/// An expression that was checked.
struct Checked {
    Type type;
    Evaluation value;
    Location where;
    /// How an argument was written, where it was.
    const Expression *written = nullptr;
};

class Checker {
public:
    explicit Checker(Symbols &symbols) : symbols_(symbols) {}

    CheckedProgram Program(std::span<const ProgramSyntax> texts);

private:
    struct Variable {
        Type type;
        size_t slot = 0;
        std::optional<host::Value> constant = {};
    };
    using Scope = std::map<std::string, Variable>;
    /// A routine's statements, once they are checked.
    struct Body {
        Action action;
        size_t slots = 0;
    };
    using BodyPointer = std::shared_ptr<Body>;
    /// The routine that is being checked.
    struct Context {
        const ClassSymbol *itsClass = nullptr;
        bool hasSelf = false;
        bool isOutside = false;
        Type result = {};
        std::vector<Scope> scopes = {};
        size_t slots = 0;
        std::vector<LoopKind> loops = {};
    };
    struct PendingBody {
        const RoutineSyntax *syntax;
        Context context;
        BodyPointer body;
    };
    using Store = std::function<void(Frame &frame, host::Value value)>;
    struct Target {
        Type type;
        Store store;
    };

    // Declarations: check_program.cpp, check_classes.cpp.
    void DeclareClassNames(const ProgramSyntax &text);
    void ResolveSuper(const ClassSyntax &syntax);
    void GiveHostClass(ClassSymbol &itsClass);
    void DeclareMembers(const ClassSyntax &syntax);
    void DeclareProperty(const PropertySyntax &syntax, ClassSymbol &itsClass);
    void DeclareConstant(const ConstStatement &syntax, ClassSymbol &itsClass);
    void DeclareEventHandler(const RoutineSyntax &syntax, const ClassSymbol &itsClass);
    void DeclareGlobals(const ProgramSyntax &text, bool isFirst);
    void DeclareGlobal(const Identifier &name, const Type &type, std::optional<host::Value> constant);
    /// All that were collected, in the order of the text.
    void ThrowMistakes();
    const Routine *FindMain(const ProgramSyntax &text);
    Routine DeclareRoutine(const RoutineSyntax &syntax, const ClassSymbol *itsClass);
    std::vector<Parameter> Parameters(const RoutineSyntax &syntax);
    /// An event that a class handles does not reach its subclasses.
    void RefuseSecondHandlers(const ClassSyntax &syntax);
    void CheckInitialValues(const ClassSyntax &syntax);
    void CheckBody(PendingBody &pending);
    BodyPointer CheckOutside(const ProgramSyntax &text);
    void SetPrepare(const ClassSyntax &syntax);
    /// Runs the check and keeps its mistakes, so that the next construct can be looked at too.
    template <class Check> void Collecting(Check check) {
        try {
            check();
        } catch (const WrongProgram &wrong) {
            mistakes_.insert(mistakes_.end(), wrong.Mistakes().begin(), wrong.Mistakes().end());
        }
    }

    // Statements: check_statements.cpp, check_blocks.cpp.
    Action CheckBlock(const Block &block);
    Action CheckStatement(const Statement &statement);
    Action Check(const DimStatement &dim, const Location &where);
    Action Check(const ConstStatement &constant, const Location &where);
    Action Check(const AssignStatement &assign, const Location &where);
    Action Check(const CallStatement &call, const Location &where);
    Action Check(const PrintStatement &print, const Location &where);
    Action Check(const IfStatement &branches, const Location &where);
    Action Check(const ForStatement &loop, const Location &where);
    Action Check(const ForEachStatement &loop, const Location &where);
    Action Check(const LoopStatement &loop, const Location &where);
    Action Check(const SelectStatement &select, const Location &where);
    Action Check(const ExitStatement &exit, const Location &where);
    Action Check(const ReturnStatement &statement, const Location &where);
    Action Check(const TryStatement &statement, const Location &where);
    Action Check(const RaiseStatement &raise, const Location &where);
    Action Check(const HandlerStatement &handler, const Location &where);
    Action Check(const RedimStatement &redim, const Location &where);
    Evaluation InitialValue(const DimStatement &dim, const Type &type);
    Action LoopBody(const Block &block, LoopKind kind);
    Target LoopVariable(const Identifier &name, const std::optional<TypeName> &type);
    Evaluation CaseTest(const SelectStatement::Test &test, size_t subjectSlot, const Type &subject);

    // Expressions: check_expressions.cpp.
    Checked CheckExpression(const Expression &expression);
    /// One that has a value.
    Checked CheckValue(const Expression &expression);
    /// One whose value is wanted as a type.
    Evaluation CheckAs(const Expression &expression, const Type &type);
    Evaluation ConvertedTo(const Checked &checked, const Type &type);
    Checked Check(const Literal &literal, const Expression &whole);
    Checked Check(const NameExpression &name, const Expression &whole);
    Checked Check(const SelfExpression &self, const Expression &whole);
    Checked Check(const MemberExpression &member, const Expression &whole);
    Checked Check(const CallExpression &call, const Expression &whole);
    Checked Check(const NewExpression &made, const Expression &whole);
    Checked Check(const UnaryExpression &unary, const Expression &whole);
    Checked Check(const BinaryExpression &binary, const Expression &whole);
    Checked Check(const IsAExpression &test, const Expression &whole);
    Checked Operate(BinaryOperator op, const Checked &left, const Checked &right, const Location &where);
    host::Value ConstantValue(const Expression &expression);
    Type ResolveType(const TypeName &name);
    const ClassSymbol &ResolveClass(const Identifier &name);

    /// A method of an object means the one of the object's own class; behind Super it is the named one that runs.
    enum class Binding { kObject, kNamed };

    // Names and calls: check_names.cpp, check_calls.cpp. `arguments` is null where none were written.
    Checked Named(const Identifier &name, const Arguments *arguments, const Location &where);
    std::optional<Checked> NamedInClass(const Identifier &name, const Arguments *arguments, const Location &where);
    Checked MemberOf(const MemberExpression &member, const Arguments *arguments, const Location &where);
    Checked MemberOfClass(const ClassSymbol &itsClass, const Identifier &name, const Arguments *arguments,
                          const Location &where);
    Checked MemberOfObject(const Checked &object, const ClassSymbol &itsClass, const Identifier &name,
                           const Arguments *arguments, const Location &where, Binding binding = Binding::kObject);
    Checked MemberOfVariant(const Checked &object, const Identifier &name, const Arguments *arguments,
                            const Location &where);
    Checked ReadProperty(const PropertySymbol &property, const Evaluation &self, const Location &where);
    /// Applies arguments that stand behind something that is no routine: the index of an element.
    Checked WithArguments(Checked checked, const Arguments *arguments, const Location &where);
    Checked Cast(const ClassSymbol &itsClass, const Arguments &arguments, const Location &where);
    const ClassSymbol *ClassMeant(const Expression &expression) const;
    const Variable *FindVariable(std::string_view word, bool &isGlobal) const;
    Checked ReadVariable(const Variable &variable, bool isGlobal, const Location &where) const;
    Evaluation Self() const;
    Target TargetOf(const Expression &expression);
    Target VariableTarget(const Variable &variable, bool isGlobal) const;
    Target PropertyTarget(const PropertySymbol &property, const Evaluation &self, const Location &where) const;
    std::optional<Target> CallTarget(const std::vector<const Routine *> &forms, const Evaluation &self,
                                     const Arguments &arguments, const Location &where, const Type &value);
    Action AssignThroughRoutine(const std::vector<const Routine *> &forms, const Evaluation &self,
                                const Arguments *arguments, const Expression &value, const Location &where);
    Checked CallRoutine(const std::vector<const Routine *> &forms, const Evaluation &self, const Arguments *arguments,
                        const Location &where, Binding binding = Binding::kObject);
    Checked CallChecked(const std::vector<const Routine *> &forms, const Evaluation &self, std::vector<Checked> given,
                        const Location &where, Binding binding = Binding::kObject);
    std::vector<Checked> CheckArguments(const Arguments *arguments);
    /// Where the value of a parameter by reference goes after the call.
    Store ReferenceTo(const Checked &argument, const Parameter &parameter);

    // Arrays: check_arrays.cpp.
    Checked MemberOfArray(const Checked &array, const Identifier &name, const Arguments *arguments,
                          const Location &where);
    Checked ElementOf(const Checked &array, const Arguments &arguments, const Location &where);
    Target ElementTarget(const Checked &array, const Arguments &arguments, const Location &where);
    Checked ArrayOf(const Arguments &arguments, std::optional<Type> element, const Location &where);
    Checked UpperBound(const Checked &array, const Location &where);

    // Scopes.
    /// Where a new name of the innermost block belongs; refuses one that it has already.
    Scope &ScopeFor(const Identifier &name);
    size_t DeclareVariable(const Identifier &name, const Type &type);
    size_t NewSlot() { return context_.slots++; }

    class InnerScope {
    public:
        explicit InnerScope(Checker &checker) : checker_(checker) { checker_.context_.scopes.emplace_back(); }
        ~InnerScope() { checker_.context_.scopes.pop_back(); }
        InnerScope(const InnerScope &) = delete;
        InnerScope &operator=(const InnerScope &) = delete;

    private:
        Checker &checker_;
    };

    Symbols &symbols_;
    std::vector<Mistake> mistakes_;
    std::vector<Type> globalTypes_;
    Scope globals_;
    std::set<std::string> ownGlobals_;
    Context context_;
    std::vector<PendingBody> bodies_;
    std::vector<Action> initialisers_;
    struct EventHandler {
        const EventSymbol *event;
        BodyPointer body;
    };
    std::map<const ClassSymbol *, std::vector<EventHandler>> handlers_;
    std::map<const ClassSymbol *, std::vector<Action>> fieldValues_;
};

} // namespace sim::language
