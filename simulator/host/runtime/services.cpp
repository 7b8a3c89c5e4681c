#include "simulator/host/runtime/services.h"

#include "simulator/host/entities/array_entity.h"
#include "simulator/host/entities/string_entity.h"
#include "simulator/host/entities/variant_entity.h"
#include "simulator/host/ground/stop.h"
#include "simulator/host/runtime/runtime.h"

#include <algorithm>

namespace sim::host {

namespace {

/// Whether a service is what a declaration names, for an object of that class.
bool IsObjectMethod(const ServiceRow &row, const Class &itsClass, std::string_view declaration) {
    if (row.reach != Reach::kObjectMethod)
        return false;
    std::string_view name = row.name;
    size_t dot = name.find('.');
    return itsClass.name == name.substr(0, dot) && SameDeclaration(name.substr(dot + 1), declaration);
}

std::string InQuotes(const char *text) { return text ? std::string("\"") + text + "\"" : "null"; }

bool TellsApart() {
    const CallListener *listener = Runtime::Current().heap.places.listener;
    return listener && listener->TellsApart();
}

std::string DescribeNumber(int64_t number) {
    constexpr int64_t kLeastCode = 0x08000000; // encodings and the identifiers of events
    if (number < kLeastCode || number > UINT32_MAX || !TellsApart())
        return std::to_string(number);
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(number));
    return text;
}

/// What a handle stands for: the text of a string, the class of an array and how many elements it has, the class of an
/// object; "..." for what is no handle.
std::string DescribeHandle(const void *handle) {
    Heap &heap = Runtime::Current().heap;
    if (!handle)
        return "null";
    if (!heap.IsLive(handle))
        return "...";
    Entity &entity = heap.At(handle, "an argument");
    if (const auto *string = dynamic_cast<const StringEntity *>(&entity))
        return "\"" + ToUTF8(string->GetText()) + "\"";
    if (const auto *variant = dynamic_cast<const VariantEntity *>(&entity); variant && TellsApart())
        return "variant " + variant->Held().Describe();
    const std::string number = TellsApart() ? " #" + std::to_string(entity.number) : "";
    if (const auto *array = dynamic_cast<const ArrayEntity *>(&entity))
        return array->ClassName() + number + '[' + std::to_string(array->Count()) + ']';
    return entity.ClassName() + number;
}

std::string Described(const Argument &argument) {
    if (const auto *text = std::get_if<const char *>(&argument))
        return InQuotes(*text);
    if (const auto *handle = std::get_if<const void *>(&argument))
        return DescribeHandle(*handle);
    if (const auto *number = std::get_if<double>(&argument))
        return std::to_string(*number);
    if (const auto *truth = std::get_if<bool>(&argument))
        return *truth ? "true" : "false";
    const auto *small = std::get_if<int32_t>(&argument);
    return DescribeNumber(small ? *small : std::get<int64_t>(argument));
}

/// The arguments as a listener hears them, or only the texts and the numbers that are noted with a call.
std::string ListOf(std::initializer_list<Argument> arguments, bool notedOnly) {
    std::string list;
    for (const Argument &argument : arguments) {
        const bool isNoted =
            std::holds_alternative<const char *>(argument) || std::holds_alternative<int32_t>(argument);
        if (isNoted || !notedOnly)
            list += (list.empty() ? "" : ", ") + Described(argument);
    }
    return list;
}

/// Stops unless that method was loaded on that very object.
void RequireLoaded(const Argument &object, const char *name) {
    auto &instance =
        Runtime::Current().heap.Require<Instance>(std::get<const void *>(object), "the object of a loaded method");
    if (!instance.loadedMethods.contains(name))
        Stop(std::string(name) + " was called on " + instance.Describe() + ", but was not loaded on it");
}

} // namespace

int IndexOfService(const char *name) { return Runtime::Current().services.IndexOf(name); }

Passage::Passage(int index, std::initializer_list<Argument> arguments)
    : heard_(Runtime::Current().heap.places.listener, Callee::kService,
             [&] { return Runtime::Current().services.Row(index).name + ("(" + ListOf(arguments, false) + ")"); }) {
    Runtime &runtime = Runtime::Current();
    const ServiceRow &row = runtime.services.Row(index);
    if (row.reach == Reach::kObjectMethod)
        RequireLoaded(*arguments.begin(), row.name);
    const bool isNoted = runtime.options.recordCalls;
    const std::string noted = isNoted ? ListOf(arguments, true) : std::string();
    proceeds_ = runtime.services.Enter(index, isNoted ? &noted : nullptr);
}

void Passage::Gives(const Argument &result) {
    heard_.Gives([&] { return Described(result); });
}

Passage::~Passage() { Runtime::Current().services.Leave(); }

Services::Services(std::span<const ServiceRow> rows, const HostOptions &options, Heap &heap)
    : rows_(rows), options_(options), heap_(heap), states_(rows.size()) {
    for (const ServiceRow &row : rows)
        if (!indices_.emplace(row.name, static_cast<int>(indices_.size())).second)
            Stop(std::string("two services are named ") + row.name);
    for (const std::string &name : options.withheld)
        Withhold(name, INT32_MAX);
}

int Services::IndexOf(std::string_view name) const {
    auto found = indices_.find(name);
    return found == indices_.end() ? -1 : found->second;
}

Function Services::Element(const char *name) const {
    int index = IndexOf(name);
    if (index < 0)
        Stop(std::string("there is no service ") + name);
    return Row(index).function;
}

bool Services::IsOffered(const ServiceRow &row) {
    if (options_.secondNamesOnly && row.reach == Reach::kFirstName)
        return false;
    std::string_view name = row.name;
    if (name == "REALGetRBVersion")
        return options_.version.has_value();
    if (name == "REALGetStringCFString")
        return options_.makeCFString && options_.offersCFStrings.value_or(options_.version.value_or(0) >= row.since);
    return options_.version.value_or(0) >= row.since;
}

Function Services::Answer(const std::string &name, const ServiceRow *row) {
    bool answered = row && IsOffered(*row);
    if (auto withheld = withheld_.find(name); withheld != withheld_.end()) {
        answered = false;
        if (withheld->second != INT32_MAX && --withheld->second == 0)
            withheld_.erase(withheld);
    }
    ++requestCounts_[name];
    if (heap_.places.listener)
        heap_.places.listener->Asked(name, answered);
    if (options_.recordCalls)
        requests_.push_back({name, answered, row != nullptr});
    return answered ? row->function : nullptr;
}

Function Services::Resolve(const char *name) {
    if (!name)
        Stop("the resolver was asked for a null name");
    int index = IndexOf(name);
    const ServiceRow *row = index < 0 ? nullptr : &Row(index);
    bool byName = row && (row->reach == Reach::kName || row->reach == Reach::kFirstName);
    return Answer(name, byName ? row : nullptr);
}

Function Services::LoadGlobalMethod(const char *declaration) {
    for (const ServiceRow &row : rows_)
        if (row.reach == Reach::kGlobalMethod && SameDeclaration(row.name, declaration))
            return Answer(row.name, &row);
    return Answer(declaration, nullptr);
}

Function Services::LoadObjectMethod(Instance &object, const char *declaration) {
    for (const ServiceRow &row : rows_) {
        if (!IsObjectMethod(row, object.GetClass(), declaration))
            continue;
        Function function = Answer(row.name, &row);
        if (function)
            object.loadedMethods.insert(row.name);
        return function;
    }
    return Answer(object.ClassName() + "." + declaration, nullptr);
}

bool Services::Enter(int index, const std::string *argumentText) {
    State &state = states_[static_cast<size_t>(index)];
    const char *name = Row(index).name;
    int32_t call = ++state.calls;
    if (argumentText)
        calls_.push_back({name, name + ("(" + *argumentText + ")")});
    bool proceed = true;
    // By position: an action may arm further faults.
    for (size_t position = 0; position < state.faults.size(); ++position) {
        Fault fault = state.faults[position];
        if (call < fault.first || call > fault.last)
            continue;
        if (fault.action)
            fault.action();
        else if (fault.thrower)
            fault.thrower();
        else
            proceed = false;
    }
    heap_.places.Enter(name, static_cast<uint32_t>(call));
    return proceed;
}

Services::State &Services::StateOf(std::string_view name) {
    int index = IndexOf(name);
    if (index < 0)
        throw ProgramError("there is no service " + std::string(name));
    return states_[static_cast<size_t>(index)];
}

void Services::Arm(std::string_view name, Fault fault) {
    State &state = StateOf(name);
    fault.first += state.calls;
    fault.last = fault.last > INT32_MAX - state.calls ? INT32_MAX : fault.last + state.calls;
    state.faults.push_back(std::move(fault));
}

void Services::Mend(std::string_view name) { StateOf(name).faults.clear(); }

void Services::Withhold(std::string_view name, int32_t requests) {
    StateOf(name);
    withheld_[std::string(name)] = requests;
}

void Services::Offer(std::string_view name) {
    StateOf(name);
    if (auto withheld = withheld_.find(name); withheld != withheld_.end())
        withheld_.erase(withheld);
}

int32_t Services::RequestCount(std::string_view name) const {
    auto found = requestCounts_.find(name);
    return found == requestCounts_.end() ? 0 : found->second;
}

int32_t Services::CallCount(std::string_view name) const {
    int index = IndexOf(name);
    if (index < 0)
        throw ProgramError("there is no service " + std::string(name));
    const State &state = states_[static_cast<size_t>(index)];
    return state.calls - state.cleared;
}

void Services::ClearLog() {
    requests_.clear();
    requestCounts_.clear();
    calls_.clear();
    for (State &state : states_)
        state.cleared = state.calls;
}

} // namespace sim::host
