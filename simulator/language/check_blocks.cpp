// Statements that choose and repeat.
#include "simulator/language/checker.h"
#include "simulator/language/conversions.h"
#include "simulator/language/operators.h"

namespace sim::language {

namespace {

/// What a loop makes of how its body ended.
enum class Turn { kNext, kLeave, kPassOn };

template <Flow exits, Flow continues> Turn TurnAfter(Flow flow) {
    if (flow == Flow::kOn || flow == continues)
        return Turn::kNext;
    return flow == exits ? Turn::kLeave : Turn::kPassOn;
}

} // namespace

Action Checker::Check(const IfStatement &branches, const Location &) {
    struct Branch {
        Evaluation condition;
        Action block;
    };
    std::vector<Branch> checked;
    for (const IfStatement::Branch &branch : branches.branches) {
        Evaluation condition;
        if (branch.condition)
            Collecting([&] { condition = CheckAs(*branch.condition, {Kind::kBoolean}); });
        checked.push_back({condition, CheckBlock(branch.block)});
    }
    return [checked](Frame &frame) {
        for (const Branch &branch : checked)
            if (!branch.condition || branch.condition(frame).As<bool>())
                return branch.block(frame);
        return Flow::kOn;
    };
}

Action Checker::LoopBody(const Block &block, LoopKind kind) {
    context_.loops.push_back(kind);
    Action body = CheckBlock(block);
    context_.loops.pop_back();
    return body;
}

Checker::Target Checker::LoopVariable(const Identifier &name, const std::optional<TypeName> &type) {
    if (type) {
        const Type declared = ResolveType(*type);
        const size_t slot = DeclareVariable(name, declared);
        return {declared, [slot](Frame &frame, host::Value value) { frame.variables[slot] = std::move(value); }};
    }
    bool isGlobal = false;
    if (const Variable *variable = FindVariable(name.word, isGlobal); variable && !variable->constant)
        return VariableTarget(*variable, isGlobal);
    throw WrongProgram(name.where, "there is no variable " + name.text + "; write For " + name.text + " As a type");
}

Action Checker::Check(const ForStatement &loop, const Location &where) {
    const InnerScope scope(*this);
    const Target variable = LoopVariable(loop.variable, loop.type);
    if (!variable.type.IsNumber())
        throw WrongProgram(loop.variable.where, "expected a variable that is a number, found " + variable.type.Name());
    const bool isWhole = variable.type.IsWhole();
    const Type counted{isWhole ? Kind::kInt64 : Kind::kDouble};
    const Evaluation first = CheckAs(*loop.first, counted), last = CheckAs(*loop.last, counted);
    const Evaluation step =
        loop.step ? CheckAs(*loop.step, counted)
                  : Evaluation([isWhole](Frame &) { return isWhole ? host::Value(int64_t{1}) : host::Value(1.0); });
    const Action body = LoopBody(loop.block, LoopKind::kFor);
    const auto run = [store = variable.store, type = variable.type, first, last, step, body, isDown = loop.isDown,
                      where](Frame &frame, auto zero) {
        using Number = decltype(zero);
        Number number = first(frame).As<Number>();
        const Number bound = last(frame).As<Number>();
        const Number by = isDown ? -step(frame).As<Number>() : step(frame).As<Number>();
        if (by == 0)
            frame.execution.Raise("RuntimeException", "a loop that steps by zero never ends", where);
        while (by > 0 ? number <= bound : number >= bound) {
            frame.execution.Step();
            store(frame, Converted(frame.execution, number, type, where));
            const Flow flow = body(frame);
            const Turn turn = TurnAfter<Flow::kExitFor, Flow::kContinueFor>(flow);
            if (turn != Turn::kNext)
                return turn == Turn::kLeave ? Flow::kOn : flow;
            if constexpr (std::is_integral_v<Number>) {
                if (__builtin_add_overflow(number, by, &number))
                    return Flow::kOn;
            } else {
                number += by;
            }
        }
        return Flow::kOn;
    };
    if (isWhole)
        return [run](Frame &frame) { return run(frame, int64_t{0}); };
    return [run](Frame &frame) { return run(frame, 0.0); };
}

Action Checker::Check(const ForEachStatement &loop, const Location &) {
    const InnerScope scope(*this);
    Checked elements = CheckValue(*loop.elements);
    const Target variable = LoopVariable(loop.variable, loop.type);
    if (elements.type.Is(Kind::kVariant)) {
        const Type array = variable.type.Array();
        elements = {array, ConvertedTo(elements, array), elements.where};
    }
    if (!elements.type.isArray)
        throw WrongProgram(elements.where, "expected an array, found " + elements.type.Name());
    const Type element = elements.type.Element();
    if (!Distance(element, variable.type))
        throw WrongProgram(loop.variable.where,
                           "expected a variable of type " + element.Name() + ", found " + variable.type.Name());
    const Action body = LoopBody(loop.block, LoopKind::kFor);
    return [array = elements.value, element, type = variable.type, store = variable.store, body,
            where = elements.where](Frame &frame) {
        host::Object keeper;
        const host::Object &object = RequireObject(array(frame), frame.execution, where, keeper);
        // The bound is asked each time: the body may change the array.
        for (int32_t index = 0; index <= object.UpperBound(); ++index) {
            frame.execution.Step();
            store(frame, Converted(frame.execution, Tidied(object.At(index), element), type, where));
            const Flow flow = body(frame);
            const Turn turn = TurnAfter<Flow::kExitFor, Flow::kContinueFor>(flow);
            if (turn != Turn::kNext)
                return turn == Turn::kLeave ? Flow::kOn : flow;
        }
        return Flow::kOn;
    };
}

Action Checker::Check(const LoopStatement &loop, const Location &) {
    const Evaluation before = loop.before ? CheckAs(*loop.before, {Kind::kBoolean}) : Evaluation();
    const Evaluation after = loop.after ? CheckAs(*loop.after, {Kind::kBoolean}) : Evaluation();
    const Action body = LoopBody(loop.block, loop.isWhile ? LoopKind::kWhile : LoopKind::kDo);
    return [before, after, body, isWhile = loop.isWhile](Frame &frame) {
        while (!before || before(frame).As<bool>()) {
            frame.execution.Step();
            const Flow flow = body(frame);
            const Turn turn = isWhile ? TurnAfter<Flow::kExitWhile, Flow::kContinueWhile>(flow)
                                      : TurnAfter<Flow::kExitDo, Flow::kContinueDo>(flow);
            if (turn != Turn::kNext)
                return turn == Turn::kLeave ? Flow::kOn : flow;
            if (after && !after(frame).As<bool>())
                return Flow::kOn;
        }
        return Flow::kOn;
    };
}

Evaluation Checker::CaseTest(const SelectStatement::Test &test, size_t subjectSlot, const Type &type) {
    const Checked subject{type, [subjectSlot](Frame &frame) { return frame.variables[subjectSlot]; },
                          test.value->where};
    const Location &where = test.value->where;
    if (!test.upTo)
        return Operate(test.comparison.value_or(BinaryOperator::kEqual), subject, CheckValue(*test.value), where).value;
    const Evaluation from = Operate(BinaryOperator::kGreaterOrEqual, subject, CheckValue(*test.value), where).value;
    const Evaluation upTo = Operate(BinaryOperator::kLessOrEqual, subject, CheckValue(*test.upTo), where).value;
    return [from, upTo](Frame &frame) { return from(frame).As<bool>() && upTo(frame).As<bool>(); };
}

Action Checker::Check(const SelectStatement &select, const Location &) {
    struct Branch {
        std::vector<Evaluation> tests;
        Action block;
    };
    const Checked subject = CheckValue(*select.subject);
    const size_t slot = NewSlot();
    std::vector<Branch> branches;
    for (const SelectStatement::Branch &given : select.branches) {
        Branch branch;
        for (const SelectStatement::Test &test : given.tests)
            Collecting([&] { branch.tests.push_back(CaseTest(test, slot, subject.type)); });
        branch.block = CheckBlock(given.block);
        branches.push_back(std::move(branch));
    }
    return [subject = subject.value, slot, branches](Frame &frame) {
        frame.variables[slot] = subject(frame);
        for (const Branch &branch : branches) {
            bool holds = branch.tests.empty();
            for (const Evaluation &test : branch.tests)
                holds = holds || test(frame).As<bool>();
            if (holds)
                return branch.block(frame);
        }
        return Flow::kOn;
    };
}

Action Checker::Check(const ExitStatement &exit, const Location &where) {
    LoopKind kind = exit.loop;
    if (kind == LoopKind::kInnermost && !context_.loops.empty())
        kind = context_.loops.back();
    bool isInside = false;
    for (const LoopKind around : context_.loops)
        isInside = isInside || around == kind;
    if (!isInside)
        throw WrongProgram(where, "there is no such loop around this");
    Flow flow = Flow::kOn;
    switch (kind) {
    case LoopKind::kFor:
        flow = exit.isContinue ? Flow::kContinueFor : Flow::kExitFor;
        break;
    case LoopKind::kWhile:
        flow = exit.isContinue ? Flow::kContinueWhile : Flow::kExitWhile;
        break;
    default:
        flow = exit.isContinue ? Flow::kContinueDo : Flow::kExitDo;
    }
    return [flow](Frame &) { return flow; };
}

} // namespace sim::language
