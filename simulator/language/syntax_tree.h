// A program as it is written, before anything is known of what its names mean.
#pragma once

#include "simulator/host/entities/value.h"
#include "simulator/language/source.h"

#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace sim::language {

/// A name and where it stands; `word` is in lower case.
struct Identifier {
    std::string text;
    std::string word;
    Location where;
};

struct TypeName {
    Identifier name;
    bool isArray = false;
};

struct Expression;
using ExpressionPointer = std::unique_ptr<Expression>;
using Arguments = std::vector<ExpressionPointer>;

struct Literal {
    host::Value value;
};
struct NameExpression {
    Identifier name;
};
struct SelfExpression {
    bool isSuper = false;
};
/// object.name
struct MemberExpression {
    ExpressionPointer object;
    Identifier name;
};
/// callee(arguments): a call, an element of an array, or a cast; what it is shows when the callee is known.
struct CallExpression {
    ExpressionPointer callee;
    Arguments arguments;
};
struct NewExpression {
    Identifier className;
    Arguments arguments;
};
enum class UnaryOperator { kMinus, kNot };
struct UnaryExpression {
    UnaryOperator op;
    ExpressionPointer operand;
};
enum class BinaryOperator {
    kAdd,
    kSubtract,
    kMultiply,
    kDivide,
    kDivideWhole,
    kRemainder,
    kPower,
    kEqual,
    kUnequal,
    kLess,
    kLessOrEqual,
    kGreater,
    kGreaterOrEqual,
    kIs,
    kAnd,
    kOr,
    kXor,
};
struct BinaryExpression {
    BinaryOperator op;
    ExpressionPointer left;
    ExpressionPointer right;
};
/// operand IsA Class
struct IsAExpression {
    ExpressionPointer operand;
    Identifier className;
};

struct Expression {
    Location where;
    /// How many expressions stand one inside the other, itself counted.
    int depth;
    std::variant<Literal, NameExpression, SelfExpression, MemberExpression, CallExpression, NewExpression,
                 UnaryExpression, BinaryExpression, IsAExpression>
        node;
};

struct Statement;
using Block = std::vector<Statement>;

/// Dim name As Type = value, Dim name(bound) As Type, Dim name As New Class(arguments). `value` is null for the
/// default.
struct DimStatement {
    Identifier name;
    TypeName type;
    ExpressionPointer value;
    ExpressionPointer upperBound;
};
struct ConstStatement {
    Identifier name;
    ExpressionPointer value;
};
struct AssignStatement {
    ExpressionPointer target;
    ExpressionPointer value;
};
/// A call whose result nobody wants.
struct CallStatement {
    ExpressionPointer call;
};
struct PrintStatement {
    ExpressionPointer text; ///< null for an empty line
};
struct IfStatement {
    struct Branch {
        ExpressionPointer condition; ///< null for Else
        Block block;
    };
    std::vector<Branch> branches;
};
struct ForStatement {
    Identifier variable;
    std::optional<TypeName> type; ///< nothing where the variable is there already
    ExpressionPointer first;
    ExpressionPointer last;
    ExpressionPointer step; ///< null for 1
    bool isDown = false;
    Block block;
};
struct ForEachStatement {
    Identifier variable;
    std::optional<TypeName> type;
    ExpressionPointer elements;
    Block block;
};
/// While … Wend, and Do … Loop with a condition at either end, or none. An Until is a Not.
struct LoopStatement {
    ExpressionPointer before;
    ExpressionPointer after;
    Block block;
    bool isWhile = false;
};
struct SelectStatement {
    struct Test {
        std::optional<BinaryOperator> comparison; ///< Case Is >= 3
        ExpressionPointer value;
        ExpressionPointer upTo; ///< Case 1 To 3
    };
    struct Branch {
        std::vector<Test> tests; ///< none for Case Else
        Block block;
    };
    ExpressionPointer subject;
    std::vector<Branch> branches;
};
enum class LoopKind { kInnermost, kFor, kWhile, kDo };
struct ExitStatement {
    LoopKind loop = LoopKind::kInnermost;
    bool isContinue = false;
};
struct ReturnStatement {
    ExpressionPointer value;
};
struct TryStatement {
    struct Catch {
        std::optional<Identifier> variable;
        std::optional<TypeName> type; ///< any exception without one
        Block block;
    };
    Block block;
    std::vector<Catch> catches;
    std::optional<Block> finally;
};
struct RaiseStatement {
    ExpressionPointer exception;
};
/// AddHandler object.Event, AddressOf routine; RemoveHandler likewise.
struct HandlerStatement {
    ExpressionPointer object;
    Identifier event;
    ExpressionPointer routine; ///< a name or a member
    bool isRemoval = false;
};
struct RedimStatement {
    ExpressionPointer array;
    ExpressionPointer upperBound;
};

struct Statement {
    Location where;
    std::variant<DimStatement, ConstStatement, AssignStatement, CallStatement, PrintStatement, IfStatement,
                 ForStatement, ForEachStatement, LoopStatement, SelectStatement, ExitStatement, ReturnStatement,
                 TryStatement, RaiseStatement, HandlerStatement, RedimStatement>
        node;
};

struct ParameterSyntax {
    Identifier name;
    TypeName type;
    bool isByReference = false;
    bool assigns = false;
    ExpressionPointer preset;
};

enum class RoutineKind { kSub, kFunction, kEvent };

struct RoutineSyntax {
    RoutineKind kind = RoutineKind::kSub;
    Identifier name;
    std::vector<ParameterSyntax> parameters;
    std::optional<TypeName> result;
    bool isShared = false;
    Block block;
};

struct PropertySyntax {
    DimStatement declaration;
    bool isShared = false;
};

/// A class or a module; everything in a module is shared.
struct ClassSyntax {
    Identifier name;
    bool isModule = false;
    std::optional<Identifier> super;
    std::vector<PropertySyntax> properties;
    std::vector<ConstStatement> constants;
    std::vector<RoutineSyntax> routines;
};

/// One text. Its statements stand outside any sub.
struct ProgramSyntax {
    std::vector<ClassSyntax> classes;
    std::vector<RoutineSyntax> routines;
    Block statements;
};

} // namespace sim::language
