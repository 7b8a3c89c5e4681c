#include "fuzz/everything/hostile_program.h"

#include "fuzz/values/made_values.h"
#include "simulator/host/ground/text.h"

#include <algorithm>
#include <array>

namespace fuzz {

namespace {

using sim::host::ClassRecord;
using sim::host::Declaration;
using sim::host::EventCall;
using sim::host::MethodRecord;
using sim::host::Object;
using sim::host::ParseDeclaration;
using sim::host::Type;
using sim::host::TypeKind;
using sim::host::Value;

constexpr size_t kMostObjects = 8;
constexpr int kDeepest = 4;

constexpr const char *kTexts[] = {
    "kMDItemFSName == '*'", "kMDItemAltitude > 5", "kMDItemTitle == 'caf*'", "nonsense ==", "",        "kMDItemTitle",
    "kMDItemInformation",   "kMDItemNoSuch",       "kMDQueryScopeHome",      "/files/1",    "\xFF\xFE"};
constexpr int32_t kNumbers[] = {0, 1, 2, 3, 4, 7, 10, 100, -1, -2, INT32_MAX, INT32_MIN};

std::vector<Declaration> MethodsOf(const ClassRecord &record, bool constructors) {
    std::vector<Declaration> methods;
    for (const MethodRecord &method : record.methods)
        if (Declaration declaration = ParseDeclaration(method.declaration);
            (declaration.name == "Constructor") == constructors)
            methods.push_back(std::move(declaration));
    return methods;
}

/// What the program's own mistakes throw, such as calling what a class does not have, is part of the game.
template <class Action> void Attempt(const Action &action) {
    try {
        action();
    } catch (const sim::host::ProgramError &) {
    }
}

} // namespace

bool MayFail(const std::string &service) {
    return !service.ends_with("ockObject") && !service.ends_with("ockString") && service != "RuntimeUBound";
}

HostileProgram::HostileProgram(Input &input, tests::faults::Stage &stage) : input_(input), stage_(stage) {}

void HostileProgram::Run() {
    while (!input_.Rest().empty() && stepsLeft_ > 0)
        Step();
}

void HostileProgram::End() {
    for (const std::string &service : broken_)
        stage_.Host().Mend(service);
    sim::macos::faults::Reset();
    objects_.clear();
    for (const auto file : files_)
        stage_.store.Remove(file);
    stage_.store.Run(1000);
    stage_.Host().TakeRaised();
    Attempt([&] { stage_.Host().RethrowFromHandlers(); });
}

void HostileProgram::Step() {
    if (--stepsLeft_ < 0)
        return;
    Attempt([&] {
        switch (input_.Take<uint8_t>() % 16) {
        case 0:
        case 1:
            return Make();
        case 2:
            return Drop();
        case 3:
        case 4:
        case 5:
        case 6:
            return CallMethod();
        case 7:
            return CallShared();
        case 8:
        case 9:
            return UseProperty();
        case 10:
            return Attach();
        case 11:
        case 12:
            return ChangeFile();
        case 13:
            return stage_.store.Run(input_.Take<uint8_t>() * 20);
        case 14:
            return BreakService();
        default:
            return Interrupt();
        }
    });
}

/// What a handler does, or a service that is being called.
void HostileProgram::StepsInside() {
    if (depth_ == kDeepest)
        return;
    depth_++;
    for (int left = input_.Take<uint8_t>() % 4; left > 0; left--)
        Step();
    depth_--;
}

Object HostileProgram::ChooseObject() {
    return objects_.empty() ? Object() : objects_[input_.Take<uint8_t>() % objects_.size()];
}

void HostileProgram::Make() {
    if (objects_.size() == kMostObjects)
        return Drop();
    if (!stage_.Has("MDItemQTX"))
        return;
    Object made;
    switch (input_.Take<uint8_t>() % 5) {
    case 0:
        made = stage_.NewItem();
        break;
    case 1:
        made = stage_.NewQuery(false);
        break;
    case 2:
        made = stage_.NewQuery(true);
        break;
    default: {
        const auto &classes = stage_.Host().Arrived().classes;
        if (!classes.empty())
            made = Constructed(input_.Choose(classes));
    }
    }
    if (made)
        objects_.push_back(std::move(made));
}

/// With one of the class's constructors, or with none. It runs once in an object's life.
Object HostileProgram::Constructed(const ClassRecord &record) {
    Object made = stage_.Host().Create(record.name);
    const auto constructors = MethodsOf(record, true);
    const size_t chosen = input_.Take<uint8_t>() % (constructors.size() + 1);
    if (made && chosen < constructors.size())
        made.CallWith(constructors[chosen].text, ArgumentsFor(constructors[chosen]));
    return made;
}

void HostileProgram::Drop() {
    if (!objects_.empty())
        objects_.erase(objects_.begin() + static_cast<ptrdiff_t>(input_.Take<uint8_t>() % objects_.size()));
}

void HostileProgram::CallMethod() {
    const Object object = ChooseObject();
    for (const ClassRecord &record : stage_.Host().Arrived().classes) {
        if (!object || record.name != object.ClassName())
            continue;
        const auto methods = MethodsOf(record, false);
        if (methods.empty())
            return;
        const Declaration &declaration = input_.Choose(methods);
        if (declaration.parameters.empty() && declaration.result.kind != TypeKind::kNone && input_.Take<uint8_t>() % 2)
            object.Set(declaration.name, ArgumentOf(declaration.result));
        else
            object.CallWith(declaration.text, ArgumentsFor(declaration));
        return;
    }
}

void HostileProgram::CallShared() {
    const sim::host::Arrivals &arrived = stage_.Host().Arrived();
    if (arrived.classes.empty() || input_.Take<uint8_t>() % 4 == 0) {
        stage_.Host().GlobalWith("MDItemGetAttributeDescription", {input_.Choose(kTexts)});
        return;
    }
    const ClassRecord &record = input_.Choose(arrived.classes);
    if (record.sharedMethods.empty())
        return;
    const Declaration declaration = ParseDeclaration(input_.Choose(record.sharedMethods).declaration);
    stage_.Host().SharedWith(record.name, declaration.name, ArgumentsFor(declaration));
}

void HostileProgram::UseProperty() {
    const Object object = ChooseObject();
    for (const ClassRecord &record : stage_.Host().Arrived().classes) {
        if (!object || record.name != object.ClassName() || record.properties.empty())
            continue;
        const auto &property = input_.Choose(record.properties);
        // A handle is a number to the host, and whoever sets one answers for it.
        if (property.setter && property.name != "Handle" && input_.Take<uint8_t>() % 2)
            object.Set(property.name, ArgumentOf(sim::host::ParseType(property.type)));
        else
            object.GetValue(property.name);
        return;
    }
}

void HostileProgram::Attach() {
    const Object object = ChooseObject();
    for (const ClassRecord &record : stage_.Host().Arrived().classes) {
        if (!object || record.name != object.ClassName() || record.events.empty())
            continue;
        const std::string event = ParseDeclaration(input_.Choose(record.events).declaration).name;
        if (input_.Take<uint8_t>() % 4 == 0)
            object.RemoveEvent(event);
        else
            object.OnEvent(event, [this](const EventCall &call) {
                if (objects_.size() < kMostObjects && input_.Take<uint8_t>() % 2)
                    for (const Value &list : call.arguments)
                        if (!list.IsNil() && list.As<Object>().UpperBound() >= 0)
                            if (const Value item = list.As<Object>().At(0); !item.IsNil())
                                objects_.push_back(item.As<Object>());
                StepsInside();
            });
        return;
    }
}

void HostileProgram::ChangeFile() {
    const auto kind = input_.Take<uint8_t>();
    if (files_.size() < 4 || kind % 4 == 0) {
        files_.push_back(stage_.store.Add((kind & 4 ? "/files/" : "/elsewhere/") + MakeName(input_)));
        return;
    }
    const size_t index = input_.Take<uint8_t>() % files_.size();
    switch (kind % 4) {
    case 1:
        stage_.store.Remove(files_[index]);
        files_.erase(files_.begin() + static_cast<ptrdiff_t>(index));
        break;
    case 2:
        stage_.store.Move(files_[index], (kind & 4 ? "/files/" : "/elsewhere/") + MakeName(input_));
        break;
    default: {
        Making making{input_};
        stage_.store.Set(files_[index], input_.Choose(tests::faults::kAttributes), MakeCoreValue(making).Get());
    }
    }
}

const std::string &HostileProgram::ChooseService() {
    static const std::vector<std::string> services = [] {
        std::vector<std::string> all = sim::host::Host::ServiceNames();
        std::erase_if(all, [](const std::string &service) { return !MayFail(service); });
        return all;
    }();
    return services[input_.Take<uint16_t>() % services.size()];
}

void HostileProgram::BreakService() {
    const auto kind = input_.Take<uint8_t>();
    const int32_t call = 1 + input_.Take<uint8_t>() % 16;
    if (kind % 4 == 0)
        return sim::macos::faults::FailCall(static_cast<size_t>(call));
    const std::string &service = ChooseService();
    broken_.push_back(service);
    if (kind % 4 == 1)
        stage_.Host().Mend(service);
    else
        stage_.Host().ReturnNothing(service, call, call + input_.Take<uint8_t>() % 4);
}

void HostileProgram::Interrupt() {
    const std::string &service = ChooseService();
    broken_.push_back(service);
    stage_.Host().Before(service, 1 + input_.Take<uint8_t>() % 16, [this] { StepsInside(); });
}

std::vector<Value> HostileProgram::ArgumentsFor(const Declaration &declaration) {
    std::vector<Value> arguments;
    for (const auto &parameter : declaration.parameters)
        arguments.push_back(ArgumentOf(parameter.type));
    return arguments;
}

Value HostileProgram::ArgumentOf(const Type &type) {
    if (type.isArray)
        return input_.Take<uint8_t>() % 8 ? Value(ArrayOf(type.name)) : Value();
    switch (type.kind) {
    case TypeKind::kString:
        return input_.Take<uint8_t>() % 8 ? Value(input_.Choose(kTexts)) : Value();
    case TypeKind::kBoolean:
        return input_.Take<uint8_t>() % 2 != 0;
    case TypeKind::kInt32:
        return input_.Choose(kNumbers);
    case TypeKind::kUInt32:
        return static_cast<uint32_t>(input_.Choose(kNumbers));
    case TypeKind::kVariant: {
        // None of the program's own objects, which could come to hold themselves.
        Making making{input_};
        return MakeHostValue(making, stage_.Host());
    }
    case TypeKind::kObject:
        return input_.Take<uint8_t>() % 8 ? Value(ObjectOf(type.name)) : Value();
    default:
        throw std::logic_error("no arguments are made of type " + type.Describe());
    }
}

Object HostileProgram::ArrayOf(const std::string &type) {
    Object array = stage_.Host().NewArray(type);
    for (int left = input_.Take<uint8_t>() % 4; left > 0; left--) {
        const bool isNil = input_.Take<uint8_t>() % 8 == 0;
        if (sim::host::EqualIgnoringCase(type, "string"))
            array.Append(isNil ? Value() : Value(input_.Choose(kTexts)));
        else
            array.Append(isNil ? Value() : Value(ObjectOf(type)));
    }
    return array;
}

Object HostileProgram::ObjectOf(const std::string &className) {
    if (sim::host::EqualIgnoringCase(className, "FolderItem"))
        return stage_.Host().NewFolderItem(input_.Choose(std::to_array({"", "/", "/usr", "/no/such/place"})));
    for (const Object &object : objects_)
        if (object.ClassName() == className && input_.Take<uint8_t>() % 2)
            return object;
    return stage_.Host().Create(className);
}

} // namespace fuzz
