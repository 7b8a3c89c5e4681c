// Arrays: their elements, what can be done with them, and how they are made.
#include "simulator/language/checker.h"
#include "simulator/language/conversions.h"
#include "simulator/language/operators.h"

#include <algorithm>

namespace sim::language {

namespace {

/// More elements than this process has memory for are not asked for.
constexpr int32_t kMostElements = 1 << 24;

const host::Object &RequireArray(const host::Value &array, Execution &execution, const Location &where,
                                 host::Object &keeper) {
    if (array.IsNil())
        execution.Raise("NilObjectException", "there is no array here, only Nil", where);
    keeper = array.As<host::Object>();
    return keeper;
}

void RequireIndex(const host::Object &array, int32_t index, int32_t last, Execution &execution, const Location &where) {
    if (index < 0 || index > last)
        execution.Raise("OutOfBoundsException",
                        "the array has no element " + std::to_string(index) + ", its last is " +
                            std::to_string(array.UpperBound()),
                        where);
}

void Resize(const host::Object &array, int32_t upperBound, Execution &execution, const Location &where) {
    if (upperBound < -1 || upperBound >= kMostElements)
        execution.Raise("OutOfBoundsException", "no array can have the upper bound " + std::to_string(upperBound),
                        where);
    array.Resize(upperBound);
}

void Insert(const host::Object &array, int32_t index, const host::Value &value) {
    array.Append(value);
    for (int32_t at = array.UpperBound(); at > index; --at) {
        const host::Value moved = array.At(at - 1);
        array.Put(at - 1, array.At(at));
        array.Put(at, moved);
    }
}

void Remove(const host::Object &array, int32_t index) {
    for (int32_t at = index; at < array.UpperBound(); ++at)
        array.Put(at, array.At(at + 1));
    array.Resize(array.UpperBound() - 1);
}

int32_t IndexOf(const host::Object &array, const host::Value &wanted, const Type &element) {
    for (int32_t index = 0; index <= array.UpperBound(); ++index)
        if (AreEqual(Tidied(array.At(index), element), wanted))
            return index;
    return -1;
}

} // namespace

Checked Checker::ElementOf(const Checked &array, const Arguments &arguments, const Location &where) {
    if (arguments.size() != 1)
        throw WrongProgram(where, "an array has one index");
    const Evaluation index = CheckAs(*arguments[0], {Kind::kInteger});
    const Type element = array.type.Element();
    return {element,
            [value = array.value, index, element, where](Frame &frame) {
                host::Object keeper;
                const host::Object &object = RequireArray(value(frame), frame.execution, where, keeper);
                const auto at = index(frame).As<int32_t>();
                RequireIndex(object, at, object.UpperBound(), frame.execution, where);
                return Tidied(object.At(at), element);
            },
            where};
}

Checker::Target Checker::ElementTarget(const Checked &array, const Arguments &arguments, const Location &where) {
    if (!array.type.isArray || arguments.size() != 1)
        throw WrongProgram(where, "nothing can be assigned to this");
    const Evaluation index = CheckAs(*arguments[0], {Kind::kInteger});
    return {array.type.Element(), [value = array.value, index, where](Frame &frame, const host::Value &stored) {
                host::Object keeper;
                const host::Object &object = RequireArray(value(frame), frame.execution, where, keeper);
                const auto at = index(frame).As<int32_t>();
                RequireIndex(object, at, object.UpperBound(), frame.execution, where);
                object.Put(at, stored);
            }};
}

Checked Checker::UpperBound(const Checked &array, const Location &where) {
    if (!array.type.isArray)
        throw WrongProgram(array.where, "expected an array, found " + array.type.Name());
    return {{Kind::kInteger},
            [value = array.value, where](Frame &frame) {
                host::Object keeper;
                return RequireArray(value(frame), frame.execution, where, keeper).UpperBound();
            },
            where};
}

Checked Checker::MemberOfArray(const Checked &array, const Identifier &name, const Arguments *arguments,
                               const Location &where) {
    const Type element = array.type.Element();
    const std::vector<Checked> given = CheckArguments(arguments);
    const auto need = [&](std::initializer_list<Type> types) {
        if (given.size() != types.size())
            throw WrongProgram(where, name.text + " takes " + std::to_string(types.size()) +
                                          (types.size() == 1 ? " argument" : " arguments") + ", found " +
                                          std::to_string(given.size()));
        std::vector<Evaluation> converted;
        for (size_t index = 0; index < given.size(); ++index)
            converted.push_back(ConvertedTo(given[index], types.begin()[index]));
        return converted;
    };
    /// A member that does something with the array and its arguments.
    const auto member = [&](Type result, std::vector<Evaluation> converted, auto action) {
        return Checked{result,
                       [value = array.value, converted = std::move(converted), action, where](Frame &frame) {
                           host::Object keeper;
                           const host::Object &object = RequireArray(value(frame), frame.execution, where, keeper);
                           std::vector<host::Value> values;
                           for (const Evaluation &argument : converted)
                               values.push_back(argument(frame));
                           return host::Value(action(frame.execution, object, values));
                       },
                       where};
    };
    using Values = std::vector<host::Value>;
    if (name.word == "ubound" || name.word == "lastindex") {
        need({});
        return UpperBound(array, where);
    }
    if (name.word == "append")
        return member({}, need({element}), [](Execution &, const host::Object &object, const Values &values) {
            object.Append(values[0]);
            return nullptr;
        });
    if (name.word == "insert")
        return member({}, need({{Kind::kInteger}, element}),
                      [where](Execution &execution, const host::Object &object, const Values &values) {
                          const auto index = values[0].As<int32_t>();
                          RequireIndex(object, index, object.UpperBound() + 1, execution, where);
                          Insert(object, index, values[1]);
                          return nullptr;
                      });
    if (name.word == "remove")
        return member({}, need({{Kind::kInteger}}),
                      [where](Execution &execution, const host::Object &object, const Values &values) {
                          const auto index = values[0].As<int32_t>();
                          RequireIndex(object, index, object.UpperBound(), execution, where);
                          Remove(object, index);
                          return nullptr;
                      });
    if (name.word == "indexof")
        return member({Kind::kInteger}, need({element}),
                      [element](Execution &, const host::Object &object, const Values &values) {
                          return IndexOf(object, values[0], element);
                      });
    if (name.word == "pop")
        return member(element, need({}),
                      [element, where](Execution &execution, const host::Object &object, const Values &) {
                          RequireIndex(object, object.UpperBound(), object.UpperBound(), execution, where);
                          host::Value last = Tidied(object.At(object.UpperBound()), element);
                          object.Resize(object.UpperBound() - 1);
                          return last;
                      });
    if (name.word == "sort") {
        const std::optional<Operation> less = FindOperation(BinaryOperator::kLess, element, element);
        if (!less || element.Is(Kind::kVariant))
            throw WrongProgram(where, "there is no order of " + element.Name());
        return member({}, need({}),
                      [less, element, where](Execution &execution, const host::Object &object, const Values &) {
                          Values elements;
                          for (const host::Value &one : object.Elements())
                              elements.push_back(Tidied(one, element));
                          std::stable_sort(elements.begin(), elements.end(),
                                           [&](const host::Value &left, const host::Value &right) {
                                               return less->apply(execution, left, right, where).As<bool>();
                                           });
                          for (size_t index = 0; index < elements.size(); ++index)
                              object.Put(static_cast<int32_t>(index), elements[index]);
                          return nullptr;
                      });
    }
    throw WrongProgram(name.where, "an array has no " + name.text);
}

Checked Checker::ArrayOf(const Arguments &arguments, std::optional<Type> element, const Location &where) {
    const std::vector<Checked> given = CheckArguments(&arguments);
    if (!element && given.empty())
        throw WrongProgram(where, "what the elements are to be shows neither here nor in where the array is put");
    // Without a type to go by, it is the first that holds all of them.
    for (size_t index = 0; index < given.size() && !element; ++index)
        if (std::all_of(given.begin(), given.end(), [&](const Checked &other) {
                const std::optional<int> distance = Distance(other.type, given[index].type);
                return distance && *distance < 4;
            }))
            element = given[index].type;
    if (!element || element->isArray || element->Is(Kind::kNil))
        throw WrongProgram(where, "the elements of an array are of one type");
    std::vector<Evaluation> elements;
    for (const Checked &one : given)
        elements.push_back(ConvertedTo(one, *element));
    return {element->Array(),
            [elements, name = HostElementName(*element)](Frame &frame) -> host::Value {
                host::Object array = frame.execution.Host().NewArray(name);
                for (const Evaluation &one : elements)
                    array.Append(one(frame));
                return array;
            },
            where};
}

Action Checker::Check(const RedimStatement &redim, const Location &where) {
    const Checked array = CheckValue(*redim.array);
    if (!array.type.isArray)
        throw WrongProgram(array.where, "expected an array, found " + array.type.Name());
    const Evaluation upperBound = CheckAs(*redim.upperBound, {Kind::kInteger});
    return [value = array.value, upperBound, where](Frame &frame) {
        host::Object keeper;
        const host::Object &object = RequireArray(value(frame), frame.execution, where, keeper);
        Resize(object, upperBound(frame).As<int32_t>(), frame.execution, where);
        return Flow::kOn;
    };
}

Evaluation Checker::InitialValue(const DimStatement &dim, const Type &type) {
    if (dim.value)
        return CheckAs(*dim.value, type);
    if (!type.isArray)
        return [value = DefaultOf(type)](Frame &) { return value; };
    const std::string name = HostElementName(type.Element());
    if (!dim.upperBound)
        return [name](Frame &frame) -> host::Value { return frame.execution.Host().NewArray(name); };
    const Evaluation upperBound = CheckAs(*dim.upperBound, {Kind::kInteger});
    return [name, upperBound, where = dim.name.where](Frame &frame) -> host::Value {
        host::Object array = frame.execution.Host().NewArray(name);
        Resize(array, upperBound(frame).As<int32_t>(), frame.execution, where);
        return array;
    };
}

} // namespace sim::language
