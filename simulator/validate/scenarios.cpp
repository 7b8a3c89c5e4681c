#include "simulator/validate/scenarios.h"

#include "simulator/macos/CoreFoundation/array.h"
#include "simulator/macos/CoreFoundation/data.h"
#include "simulator/macos/CoreFoundation/dictionary.h"
#include "simulator/macos/CoreFoundation/instances.h"
#include "simulator/macos/CoreFoundation/number.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/validate/arguments.h"

namespace sim::validate {
namespace {

using host::EventCall;
using host::Object;
using host::Value;
using macos::CFRef;

constexpr const char *kItem = "MDItemQTX";
constexpr const char *kQuery = "MDQueryQTX";
constexpr const char *kBatches = "MDQueryBatchingParamsQTX";
constexpr const char *kAttributes[] = {"kMDItemFSName",
                                       "kMDItemTitle",
                                       "kMDItemFSSize",
                                       "kMDItemAuthors",
                                       "kMDItemWhereFroms",
                                       "kMDItemContentCreationDate",
                                       "kMDItemIsLikelyJunk",
                                       "kMDItemCoverage",
                                       "kMDItemInformation",
                                       "kMDItemLabelIcon",
                                       "kMDItemAltitude",
                                       "kMDItemNoSuchAttribute",
                                       ""};

Object Strings(Program &program, const std::vector<Value> &texts) { return program.Host().NewArray("string", texts); }

/// The host-side item object of a scripted file; the item's reference goes over to it.
Object ItemOf(Program &program, macos::ScriptedStore::File file) {
    Object item = program.Host().Create(kItem);
    item.Set("Handle", static_cast<int32_t>(reinterpret_cast<intptr_t>(program.Store().CopyItem(file))));
    return item;
}

/// Calls a declared method with what arguments there are.
void TryMethod(Program &program, const Object &object, const host::Declaration &declaration,
               const std::vector<Value> &arguments) {
    program.Try(declaration.text, [&] { return object.CallWith(declaration.text, arguments); });
}

/// The methods that the library declared for a class, constructors left out.
std::vector<host::Declaration> MethodsOf(Program &program, std::string_view className) {
    std::vector<host::Declaration> methods;
    for (const host::MethodRecord &record : program.Host().Arrived().Class(className).methods)
        if (host::Declaration declaration = host::ParseDeclaration(record.declaration);
            declaration.name != "Constructor")
            methods.push_back(std::move(declaration));
    return methods;
}

void WatchEvents(Program &program, const Object &query) {
    for (const host::EventRecord &record : program.Host().Arrived().Class(kQuery).events)
        query.OnEvent(host::ParseDeclaration(record.declaration).name, [&program](const EventCall &call) {
            std::string text = "event " + call.name;
            for (const Value &argument : call.arguments)
                text += " " + program.TextOf(argument);
            program.Say(text);
        });
}

void SetBatches(Program &program, const Object &query, int32_t number, int32_t milliseconds) {
    const Object batches = program.Host().Create(kBatches);
    for (const char *property : {"firstMaxNum", "progressMaxNum", "updateMaxNum"})
        batches.Set(property, number);
    for (const char *property : {"firstMaxMS", "progressMaxMS", "updateMaxMS"})
        batches.Set(property, milliseconds);
    query.Set("BatchingParameters", batches);
}

void ReadBatches(Program &program, const Object &query) {
    program.Try("reads the batches", [&]() -> Value {
        const auto batches = query.Get<Object>("BatchingParameters");
        if (!batches)
            return nullptr;
        std::string text;
        for (const host::PropertyRecord &property : program.Host().Arrived().Class(kBatches).properties)
            text += " " + batches.GetValue(property.name).Describe();
        return text;
    });
}

std::string HandleText(const Object &object) { return object.Get<int32_t>("Handle") ? "a handle" : "no handle"; }

} // namespace

void AddFiles(Program &program) {
    macos::ScriptedStore &store = program.Store();
    const auto text = [](const char *words) { return macos::MakeString(words); };
    for (int number = 0; number < 6; number++) {
        const auto file = store.Add("/files/file " + std::to_string(number) + ".txt");
        store.SetText(file, "kMDItemTitle", number % 2 ? "caf\xC3\xA9 \xF0\x9F\x8E\x88" : "plain title");
        store.SetNumber(file, "kMDItemFSSize", 90 + number * 7);
        store.Set(file, "kMDItemAltitude", macos::MakeNumber(12.5 * number).Get());
        store.Set(file, "kMDItemIsLikelyJunk", number % 2 ? kCFBooleanTrue : kCFBooleanFalse);
        const auto date = CFRef<CFDateRef>::Adopt(CFDateCreate(nullptr, 425833445.25 + number * 86400));
        store.Set(file, "kMDItemContentCreationDate", date.Get());
        const auto first = text("Anna"), second = text("\xE5\xA4\xA7");
        const CFTypeRef authors[] = {first.Get(), second.Get()};
        store.Set(file, "kMDItemAuthors", macos::MakeArray(authors).Get());
        const UInt8 bytes[] = {0, 1, 0xFE, 0xFF};
        store.Set(file, "kMDItemCoverage", macos::MakeData(bytes).Get());
        const auto key = text("key");
        const CFTypeRef mixed[] = {first.Get(), kCFNull, kCFBooleanTrue, date.Get()};
        const auto list = macos::MakeArray(mixed);
        const std::pair<CFTypeRef, CFTypeRef> pairs[] = {{key.Get(), list.Get()}, {kCFBooleanTrue, key.Get()}};
        store.Set(file, "kMDItemInformation", macos::MakeDictionary(pairs).Get());
        const auto url =
            CFRef<CFURLRef>::Adopt(CFURLCreateWithString(nullptr, text("http://example.org/x?y").Get(), nullptr));
        store.Set(file, "kMDItemWhereFroms", url.Get());
        const auto image = CFRef<CFTypeRef>::Adopt(macos::MakeInstance("CGImage"));
        store.Set(file, "kMDItemLabelIcon", image.Get());
    }
}

void AskForKeysAndSchema(Program &program) {
    for (const host::MethodRecord &record : program.Host().Arrived().Class(kItem).sharedMethods) {
        const host::Declaration declaration = host::ParseDeclaration(record.declaration);
        const auto ask = [&](const std::vector<Value> &arguments) {
            program.Try(declaration.text,
                        [&] { return program.Host().SharedWith(kItem, declaration.text, arguments); });
        };
        if (declaration.parameters.empty())
            ask({});
        else
            for (const char *attribute : kAttributes)
                ask({attribute});
    }
}

void ReadItems(Program &program) {
    AddFiles(program);
    for (const auto file : {1, 2}) {
        const Object item = ItemOf(program, static_cast<macos::ScriptedStore::File>(file));
        for (const host::PropertyRecord &property : program.Host().Arrived().Class(kItem).properties)
            if (property.name != "Handle")
                program.Try(property.name, [&] { return item.GetValue(property.name); });
        item.Set("Tag", "a tag");
        program.Try("Tag", [&] { return item.GetValue("Tag"); });
        for (const host::Declaration &method : MethodsOf(program, kItem)) {
            if (method.parameters.empty())
                TryMethod(program, item, method, {});
            else if (method.parameters.front().type.isArray)
                TryMethod(program, item, method,
                          {Strings(program, std::vector<Value>(std::begin(kAttributes), std::end(kAttributes)))});
            else
                for (const char *attribute : kAttributes)
                    TryMethod(program, item, method, {attribute});
        }
    }
    for (const char *path : {"/usr", "/no/such/place", ""}) {
        const Object item = program.Host().Create(kItem);
        program.Try("an item for " + std::string(path), [&]() -> Value {
            item.CallWith("Constructor", {program.Host().NewFolderItem(path)});
            return HandleText(item);
        });
    }
}

void LiveThroughQuery(Program &program) {
    AddFiles(program);
    program.Store().SetPace(2, 100);
    const Object query = program.Host().Create(kQuery);
    program.Try("makes a query", [&]() -> Value {
        query.CallWith("Constructor", {Value("kMDItemFSName == '*'"), Strings(program, {"kMDItemTitle"}),
                                       Strings(program, {"kMDItemFSSize"})});
        return HandleText(query);
    });
    SetBatches(program, query, 2, 150);
    ReadBatches(program, query);
    WatchEvents(program, query);
    const Object folders = program.Host().NewArray("folderitem", {program.Host().NewFolderItem("/usr")});
    program.Try("limits it", [&] { return query.CallWith("SetMaxCount", {5}); });
    program.Try("executes it", [&] { return query.CallWith("Execute", {4}); });
    program.Store().Run(2000);

    const Object all = query.CallWith("Results", {-1}).As<Object>();
    const Value first = all && all.UpperBound() >= 0 ? all.At(0) : Value(nullptr);
    for (const host::Declaration &method : MethodsOf(program, kQuery)) {
        if (method.name == "Stop" || method.name == "Execute" || method.name == "SetMaxCount" ||
            method.name == "SetSearchScope" || method.name == "BatchingParameters" || method.name.ends_with("Updates"))
            continue;
        std::vector<Value> arguments;
        for (const host::Parameter &parameter : method.parameters)
            if (parameter.type.isArray)
                arguments.push_back(Strings(program, {"kMDItemTitle"}));
            else if (parameter.type.kind == host::TypeKind::kObject)
                arguments.push_back(first);
            else if (parameter.type.kind == host::TypeKind::kUInt32)
                arguments.push_back(uint32_t{1});
            else if (parameter.type.kind == host::TypeKind::kInt32)
                arguments.push_back(1);
            else
                arguments.push_back(arguments.empty() ? Value("kMDItemTitle") : Value("plain title"));
        TryMethod(program, query, method, arguments);
    }
    program.Say("files change");
    program.Store().Touch(1);
    program.Store().Remove(2);
    program.Store().Add("/files/new");
    program.Store().SetText(3, "kMDItemTitle", "another");
    program.Store().Run(2000);
    program.Try("disables updates", [&] { return query.CallWith("DisableUpdates", {}); });
    program.Store().Remove(3);
    program.Store().Run(2000);
    program.Try("enables updates", [&] { return query.CallWith("EnableUpdates", {}); });
    program.Store().Run(2000);
    program.Try("stops", [&] { return query.CallWith("Stop", {}); });
    program.Try("results", [&] { return query.CallWith("Results", {-1}); });
    const Object inside = program.Host().Create(kQuery);
    program.Try("searches in what was found", [&]() -> Value {
        inside.CallWith("Constructor", {query, Value("kMDItemFSSize > 100")});
        return HandleText(inside);
    });
    program.Try("sets a scope", [&] {
        return inside.CallWith("SetSearchScope", {folders, Strings(program, {"kMDQueryScopeHome"})});
    });
    program.Try("executes it", [&] { return inside.CallWith("Execute", {1}); });
    program.Try("results", [&] { return inside.CallWith("Results", {2}); });
}

void MisuseObjects(Program &program) {
    for (const char *className : {kItem, kQuery}) {
        const Object object = program.Host().Create(className);
        for (const host::PropertyRecord &property : program.Host().Arrived().Class(className).properties)
            program.Try(property.name, [&] { return object.GetValue(property.name); });
        for (const host::Declaration &method : MethodsOf(program, className)) {
            TryMethod(program, object, method, AnyArguments(program, method));
            std::vector<Value> nothing;
            for (const host::Parameter &parameter : method.parameters)
                nothing.push_back(parameter.type.IsCounted() ? Value(nullptr) : AnyOf(program, parameter.type));
            TryMethod(program, object, method, nothing);
        }
    }
    for (const char *text : {"", "kMDItemFSName ==", "(((", "kMDItemFSName == 'x'"})
        for (const Value &list : {Value(nullptr), Value(Strings(program, {nullptr, "", "kMDItemTitle"}))}) {
            const Object query = program.Host().Create(kQuery);
            program.Try("a query " + std::string(text), [&]() -> Value {
                query.CallWith("Constructor", {Value(text), list, list});
                return HandleText(query);
            });
        }
}

void OpenSearchWindow(Program &program) {
    for (const Value &text : {Value("some words"), Value(""), Value(nullptr), Value("\xF0\x9F\x8E\x88")})
        program.Try("opens it", [&] { return program.Host().GlobalWith("ShotlightQTX", {text}); });
}

void DoAnything(Program &program) {
    AddFiles(program);
    std::vector<Object> queries;
    std::vector<Object> items;
    const std::vector<host::Declaration> ofQueries = MethodsOf(program, kQuery), ofItems = MethodsOf(program, kItem);
    macos::ScriptedStore::File last = 6;
    for (int step = 0; step < 150; step++) {
        switch (program.Random()() % 8) {
        case 0: {
            const Object query = program.Host().Create(kQuery);
            const auto &records = program.Host().Arrived().Class(kQuery).methods;
            const auto &record = OneOf(program, records);
            if (const host::Declaration declaration = host::ParseDeclaration(record.declaration);
                declaration.name == "Constructor")
                TryMethod(program, query, declaration, AnyArguments(program, declaration));
            else
                query.CallWith("Constructor", {Value("kMDItemFSName == '*'")});
            WatchEvents(program, query);
            queries.push_back(query);
            break;
        }
        case 1:
            items.push_back(ItemOf(program, 1 + program.Random()() % 6));
            break;
        case 2:
            program.Say("a file comes");
            program.Store().SetNumber(last = program.Store().Add("/files/" + std::to_string(step)), "kMDItemFSSize",
                                      step);
            break;
        case 3:
            program.Say("a file changes");
            program.Store().Touch(last);
            break;
        case 4:
            program.Say("time passes");
            program.Store().Run(static_cast<double>(program.Random()() % 2000));
            break;
        default:
            if (!queries.empty() && program.Random()() % 3) {
                const host::Declaration &method = OneOf(program, ofQueries);
                TryMethod(program, OneOf(program, queries), method, AnyArguments(program, method));
            } else if (!items.empty()) {
                const host::Declaration &method = OneOf(program, ofItems);
                TryMethod(program, OneOf(program, items), method, AnyArguments(program, method));
            }
        }
        if (queries.size() > 3)
            queries.erase(queries.begin());
    }
}

} // namespace sim::validate
