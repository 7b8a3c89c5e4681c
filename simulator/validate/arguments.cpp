#include "simulator/validate/arguments.h"

namespace sim::validate {
namespace {

using host::Object;
using host::Type;
using host::TypeKind;
using host::Value;

Value AnyText(Program &program) {
    static const char *const kTexts[] = {"kMDItemFSName",
                                         "kMDItemTitle",
                                         "kMDItemFSSize",
                                         "kMDItemAuthors",
                                         "kMDItemWhereFroms",
                                         "kMDItemContentCreationDate",
                                         "kMDItemNoSuchAttribute",
                                         "kMDItemFSName == '*'",
                                         "kMDItemFSSize > 100",
                                         "kMDItemTitle == 'caf\xC3\xA9*'cd",
                                         "kMDItemFSName == ",
                                         "kMDQueryScopeHome",
                                         "kMDQueryScopeComputer",
                                         "\xF0\x9F\x8E\x88",
                                         "a"};
    if (program.Random()() % 12 == 0)
        return nullptr;
    if (program.Random()() % 12 == 0)
        return host::Text{"\xC0\xAF", host::kUTF8};
    return OneOf(program, kTexts);
}

int32_t AnyInteger(Program &program) {
    constexpr int32_t kIntegers[] = {0, 1, 2, 3, 4, 5, 7, 100, -1, -2, INT32_MAX, INT32_MIN};
    return OneOf(program, kIntegers);
}

Object AnyFolderItem(Program &program) {
    constexpr const char *kPaths[] = {"", "/", "/usr", "/files", "/no/such/place"};
    return program.Host().NewFolderItem(OneOf(program, kPaths));
}

Value AnyObject(Program &program, const std::string &name) {
    if (program.Random()() % 6 == 0)
        return nullptr;
    if (name == "folderitem")
        return AnyFolderItem(program);
    Object object = program.Host().Create(name);
    if (object && name == "MDItemQTX" && program.Random()() % 2 == 0)
        object.CallWith("Constructor", {program.Host().NewFolderItem("/usr")});
    if (object && name == "MDQueryQTX" && program.Random()() % 2 == 0)
        object.CallWith("Constructor", {Value("kMDItemFSName == '*'")});
    return object;
}

Value AnyArray(Program &program, const Type &type) {
    if (program.Random()() % 8 == 0)
        return nullptr;
    Type element = type;
    element.isArray = false;
    Object array = program.Host().NewArray(type.name);
    for (uint32_t left = program.Random()() % 4; left > 0; left--)
        array.Append(AnyOf(program, element));
    return array;
}

Value AnyVariant(Program &program) {
    switch (program.Random()() % 5) {
    case 0:
        return AnyText(program);
    case 1:
        return AnyInteger(program);
    case 2:
        return program.Random()() % 2 == 0;
    case 3:
        return program.Host().NewDate({2014, 6, 30, 12, 30, 15});
    default:
        return 2.5;
    }
}

} // namespace

Value AnyOf(Program &program, const Type &type) {
    if (type.isArray)
        return AnyArray(program, type);
    switch (type.kind) {
    case TypeKind::kString:
        return AnyText(program);
    case TypeKind::kBoolean:
        return program.Random()() % 2 == 0;
    case TypeKind::kInt32:
        return AnyInteger(program);
    case TypeKind::kUInt32:
        return static_cast<uint32_t>(AnyInteger(program));
    case TypeKind::kInt64:
        return int64_t{AnyInteger(program)} << 20;
    case TypeKind::kVariant:
        return AnyVariant(program);
    case TypeKind::kObject:
        return AnyObject(program, type.name);
    default:
        throw std::logic_error("no arguments are made of type " + type.Describe());
    }
}

std::vector<Value> AnyArguments(Program &program, const host::Declaration &declaration) {
    std::vector<Value> arguments;
    for (const host::Parameter &parameter : declaration.parameters)
        arguments.push_back(AnyOf(program, parameter.type));
    return arguments;
}

} // namespace sim::validate
