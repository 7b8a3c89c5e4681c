#include "tests/faults/deeds.h"

#include "simulator/host/declarations/declaration.h"
#include "simulator/host/ground/text.h"

#include <algorithm>

namespace tests::faults {

namespace {

using sim::host::ClassRecord;
using sim::host::Declaration;
using sim::host::EventCall;
using sim::host::MethodRecord;
using sim::host::Object;
using sim::host::PropertyRecord;
using sim::host::Type;
using sim::host::TypeKind;
using sim::host::Value;

using Making = std::function<Object(Stage &)>;

struct State {
    const char *name;
    Making make;
};

/// Objects of a class as they can be met: as they are made, and with something behind them.
std::vector<State> StatesOf(const std::string &className) {
    std::vector<State> states = {{"empty", [className](Stage &stage) { return stage.Host().Create(className); }}};
    if (className == "MDItemQTX")
        states.push_back({"of a file", [](Stage &stage) { return stage.NewItem(); }});
    if (className == "MDQueryQTX") {
        states.push_back({"not begun", [](Stage &stage) { return stage.NewQuery(false); }});
        states.push_back({"done", [](Stage &stage) { return stage.NewQuery(true); }});
    }
    return states;
}

/// One value of each kind, for what takes anything.
std::vector<Value> Variants(Stage &stage) {
    auto &host = stage.Host();
    const Value text = "caf\xC3\xA9 1";
    return {text,
            7,
            2.5,
            true,
            nullptr,
            host.NewDate({2014, 6, 30, 15, 4, 5}),
            host.NewMemoryBlock("abc"),
            host.NewFolderItem("/usr"),
            host.Box(stage.Strings({text, nullptr})),
            host.Box(host.NewArray("integer", {1, 2})),
            host.NewDictionary({{text, text}, {1, host.NewDate({})}})};
}

Value ArrayOf(Stage &stage, const Type &type) {
    if (type.name == "string" || type.name == "String")
        return stage.Strings({"kMDItemTitle", "kMDItemFSName"});
    Object array = stage.Host().NewArray(type.name);
    if (sim::host::EqualIgnoringCase(type.name, "FolderItem"))
        for (const char *path : {"/usr", "/"})
            array.Append(stage.Host().NewFolderItem(path));
    return array;
}

Value ObjectOf(Stage &stage, const std::string &name) {
    if (sim::host::EqualIgnoringCase(name, "FolderItem"))
        return stage.Host().NewFolderItem("/usr");
    if (name == "MDItemQTX")
        return stage.NewItem();
    if (name == "MDQueryQTX")
        return stage.NewQuery(true);
    return stage.Host().Create(name);
}

Value ArgumentOf(Stage &stage, const Type &type, const char *text, const Value &variant) {
    if (type.isArray)
        return ArrayOf(stage, type);
    switch (type.kind) {
    case TypeKind::kString:
        return text;
    case TypeKind::kBoolean:
        return true;
    case TypeKind::kInt32:
        return 1;
    case TypeKind::kUInt32:
        return uint32_t{1};
    case TypeKind::kVariant:
        return variant;
    case TypeKind::kObject:
        return ObjectOf(stage, type.name);
    default:
        throw std::logic_error("no arguments are made of type " + type.Describe());
    }
}

using Arguments = std::vector<Value>;

/// As many lists of arguments as say something new: one for each attribute where a text is wanted, one for each kind of
/// value where anything is.
std::vector<Arguments> ArgumentsFor(Stage &stage, const Declaration &declaration) {
    std::vector<const char *> texts = {"kMDItemFSName == '*'"};
    std::vector<Value> variants = {nullptr};
    for (const auto &parameter : declaration.parameters) {
        if (parameter.type.kind == TypeKind::kString && !parameter.type.isArray && declaration.name != "Constructor")
            texts.assign(std::begin(kAttributes), std::end(kAttributes));
        if (parameter.type.kind == TypeKind::kVariant && !parameter.type.isArray)
            variants = Variants(stage);
    }
    if (variants.size() > 1)
        texts = {"kMDItemTitle"};
    std::vector<Arguments> all;
    for (const char *text : texts)
        for (const Value &variant : variants) {
            Arguments &arguments = all.emplace_back();
            for (const auto &parameter : declaration.parameters)
                arguments.push_back(ArgumentOf(stage, parameter.type, text, variant));
        }
    return all;
}

class Collecting {
public:
    explicit Collecting(Stage &stage) : stage_(stage) {}

    std::vector<Deed> TakeAll() {
        for (const ClassRecord &record : stage_.Host().Arrived().classes)
            AddClass(record);
        for (const auto &module : stage_.Host().Arrived().modules)
            for (const MethodRecord &method : module.methods)
                AddGlobal(method);
        for (const MethodRecord &method : stage_.Host().Arrived().globalMethods)
            AddGlobal(method);
        return std::move(deeds_);
    }

private:
    void AddClass(const ClassRecord &record) {
        AddLife(record);
        for (const MethodRecord &method : record.methods)
            AddMethod(record.name, method);
        for (const PropertyRecord &property : record.properties)
            AddProperty(record.name, property);
        for (const auto &event : record.events)
            AddEvent(record.name, sim::host::ParseDeclaration(event.declaration).name);
        for (const MethodRecord &method : record.sharedMethods)
            AddShared(record.name, method);
    }

    void AddLife(const ClassRecord &record) {
        const std::string name = record.name;
        const bool hasTag =
            std::ranges::find(record.properties, "Tag", &PropertyRecord::name) != record.properties.end();
        deeds_.push_back(
            {name + " made", name + ".Constructor", name, [name](Stage &stage, const Around &around, Leaves &leaves) {
                 around.begin();
                 const Object made = stage.Host().Create(name);
                 around.end();
                 AddLeaves(leaves, made);
             }});
        for (const State &state : StatesOf(name))
            deeds_.push_back({name + " " + state.name + " dropped", name, name,
                              [make = state.make, hasTag](Stage &stage, const Around &around, Leaves &) {
                                  Object object = make(stage);
                                  if (hasTag)
                                      object.Set("Tag", "a tag");
                                  around.begin();
                                  object = {};
                                  around.end();
                              },
                              false});
    }

    void AddMethod(const std::string &className, const MethodRecord &record) {
        const Declaration declaration = sim::host::ParseDeclaration(record.declaration);
        const std::string member = className + "." + declaration.name;
        const bool isConstructor = declaration.name == "Constructor";
        for (const State &state : StatesOf(className)) {
            if (isConstructor && std::string_view(state.name) != "empty")
                continue; // it runs once in an object's life
            deeds_.push_back(
                {member + ", " + state.name, member, className,
                 [declaration, make = state.make, isConstructor](Stage &stage, const Around &around, Leaves &leaves) {
                     const Object object = make(stage);
                     const auto all = ArgumentsFor(stage, declaration);
                     around.begin();
                     for (const Arguments &arguments : all)
                         AddLeaves(leaves,
                                   object.CallWith(isConstructor ? declaration.text : declaration.name, arguments));
                     around.end();
                     if (isConstructor)
                         leaves.push_back(object.Get<int32_t>("Handle") ? "a handle" : "0");
                 }});
            if (record.setterFunction)
                deeds_.push_back({member + " assigned, " + state.name, member, className,
                                  [declaration, make = state.make](Stage &stage, const Around &around, Leaves &) {
                                      const Object object = make(stage);
                                      const Value value = ArgumentOf(stage, declaration.result, "text", nullptr);
                                      around.begin();
                                      object.Set(declaration.name, value);
                                      around.end();
                                  }});
        }
    }

    void AddProperty(const std::string &className, const PropertyRecord &record) {
        const std::string member = className + "." + record.name;
        // A handle is a number to the host, and whoever sets one answers for it.
        const bool isSet = record.setter && record.name != "Handle";
        const Type type = sim::host::ParseType(record.type);
        for (const State &state : StatesOf(className))
            deeds_.push_back({member + ", " + state.name, member, className,
                              [name = record.name, make = state.make, isSet, type](Stage &stage, const Around &around,
                                                                                   Leaves &leaves) {
                                  const Object object = make(stage);
                                  const Value value = isSet ? ArgumentOf(stage, type, "text", "a tag") : Value();
                                  around.begin();
                                  if (isSet)
                                      object.Set(name, value);
                                  const Value read = object.GetValue(name);
                                  around.end();
                                  // What a handle's number is differs from run to run.
                                  if (name != "Handle")
                                      AddLeaves(leaves, read);
                              }});
    }

    void AddEvent(const std::string &className, const std::string &event) {
        deeds_.push_back({className + "." + event + " arriving", className + "." + event, className,
                          [event](Stage &stage, const Around &around, Leaves &leaves) {
                              Object query = stage.NewQuery(false);
                              // Where none could be made none runs, and no event comes.
                              if (!query || !query.Get<int32_t>("Handle"))
                                  return;
                              query.OnEvent(event, [&](const EventCall &call) {
                                  leaves.push_back("arrived");
                                  for (const Value &argument : call.arguments)
                                      AddLeaves(leaves, argument);
                              });
                              stage.store.SetPace(1, 50);
                              around.begin();
                              query.CallWith("Execute", {4});
                              stage.store.Run(2000);
                              const auto file = stage.store.Add("/files/new");
                              stage.store.Run(2000);
                              stage.store.Touch(file);
                              stage.store.Run(2000);
                              stage.store.Remove(file);
                              stage.store.Run(2000);
                              around.end();
                              stage.store.SetPace(0, 0);
                          },
                          false});
    }

    void AddShared(const std::string &className, const MethodRecord &record) {
        const Declaration declaration = sim::host::ParseDeclaration(record.declaration);
        deeds_.push_back({className + "." + declaration.name, className + "." + declaration.name, className,
                          [className, declaration](Stage &stage, const Around &around, Leaves &leaves) {
                              const auto all = ArgumentsFor(stage, declaration);
                              around.begin();
                              for (const Arguments &arguments : all)
                                  AddLeaves(leaves, stage.Host().SharedWith(className, declaration.name, arguments));
                              around.end();
                          }});
    }

    void AddGlobal(const MethodRecord &record) {
        const Declaration declaration = sim::host::ParseDeclaration(record.declaration);
        deeds_.push_back(
            {declaration.name, declaration.name, "", [declaration](Stage &stage, const Around &around, Leaves &leaves) {
                 around.begin();
                 AddLeaves(leaves, stage.Host().GlobalWith(declaration.name, {"caf\xC3\xA9"}));
                 around.end();
             }});
    }

    Stage &stage_;
    std::vector<Deed> deeds_;
};

} // namespace

std::vector<Deed> DeedsOf(Stage &stage) { return Collecting(stage).TakeAll(); }

} // namespace tests::faults
