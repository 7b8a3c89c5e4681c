#include "simulator/host/host.h"

#include "simulator/host/classes/overloads.h"
#include "simulator/host/ground/stop.h"
#include "simulator/host/ground/text.h"
#include "simulator/host/program/balance.h"
#include "simulator/host/program/calls.h"
#include "simulator/host/runtime/runtime.h"
#include "simulator/host/services/table.h"

#include <utility>

namespace sim::host {

namespace {

Host::Function Resolve(const char *name) { return Runtime::Current().services.Resolve(name); }

template <class T> T &RequireClass(T *itsClass, std::string_view name) {
    if (!itsClass)
        throw ProgramError("the host has no class " + std::string(name));
    return *itsClass;
}

template <class T> T &RequireBuiltIn(Runtime &runtime, const char *name) {
    return RequireClass(runtime.NewBuiltIn<T>(name), name);
}

} // namespace

Host::Host(HostOptions options) : runtime_(std::make_unique<Runtime>(std::move(options), AllServices())) {}

Host::~Host() = default;

void Host::Start(EntryPoint entryPoint) {
    Places::During during(runtime_->heap.places, "the plugin's start");
    const HeardCall heard(runtime_->heap.places.listener, Callee::kPlugin,
                          [] { return "REALPluginMain(the resolver)"; });
    entryPoint(GetResolver());
}

Host::Resolver Host::GetResolver() { return Resolve; }

const HostOptions &Host::Options() const { return runtime_->options; }
const Arrivals &Host::Arrived() const { return runtime_->arrivals; }

const std::vector<Request> &Host::Requests() const { return runtime_->services.Requests(); }
int32_t Host::RequestCount(std::string_view name) const { return runtime_->services.RequestCount(name); }
const std::vector<ServiceCall> &Host::Calls() const { return runtime_->services.Calls(); }
int32_t Host::CallCount(std::string_view name) const { return runtime_->services.CallCount(name); }
void Host::ClearLog() { runtime_->services.ClearLog(); }

void Host::Listen(CallListener *listener) { runtime_->heap.places.listener = listener; }

std::vector<std::string> Host::CallNames(bool withArguments) const {
    std::vector<std::string> names;
    for (const ServiceCall &call : Calls())
        names.push_back(withArguments ? call.text : call.name);
    return names;
}

std::vector<std::string> Host::ServiceNames() {
    std::vector<std::string> names;
    for (const ServiceRow &row : AllServices())
        names.emplace_back(row.name);
    return names;
}

void Host::Withhold(std::string_view name) { runtime_->services.Withhold(name, INT32_MAX); }
void Host::WithholdFirst(std::string_view name, int32_t requests) { runtime_->services.Withhold(name, requests); }
void Host::Offer(std::string_view name) { runtime_->services.Offer(name); }
void Host::Mend(std::string_view name) { runtime_->services.Mend(name); }

void Host::ReturnNothing(std::string_view name, int32_t first, int32_t last) {
    runtime_->services.Arm(name, {first, last, {}, {}});
}

void Host::Throw(std::string_view name, std::function<void()> thrower, int32_t first, int32_t last) {
    runtime_->services.Arm(name, {first, last, std::move(thrower), {}});
}

void Host::Before(std::string_view name, int32_t call, std::function<void()> action) {
    runtime_->services.Arm(name, {call, call, {}, std::move(action)});
}

Object Host::Create(std::string_view className) { return Object::Adopt(runtime_->NewInstanceNamed(className)); }

Value Host::SharedWith(std::string_view className, std::string_view method, std::vector<Value> arguments) {
    const Class &itsClass = RequireClass(runtime_->classes.Find(className), className);
    const Method &chosen = ChooseMethod(itsClass.name, itsClass.sharedMethods, method, arguments);
    return CallMethod(itsClass.name, chosen, nullptr, std::move(arguments));
}

Value Host::GlobalWith(std::string_view method, std::vector<Value> arguments) {
    const Method &chosen = ChooseMethod("global", runtime_->globalMethods, method, arguments);
    return CallMethod("global", chosen, nullptr, std::move(arguments));
}

Value Host::Constant(std::string_view className, std::string_view name) {
    for (const ConstantDeclaration &constant : RequireClass(runtime_->classes.Find(className), className).constants)
        if (EqualIgnoringCase(constant.name, name))
            return constant.value;
    throw ProgramError(std::string(className) + " has no constant " + std::string(name));
}

void Host::SetForSystemUse(std::string_view className, int32_t offset) {
    Class &changed = RequireClass(runtime_->classes.Find(className), className);
    if (changed.kind != ClassKind::kPlugin)
        throw ProgramError(changed.name + " is no class of a plugin");
    runtime_->classes.SetForSystemUse(changed, offset);
    for (ClassRecord &record : runtime_->arrivals.classes)
        if (record.address == changed.recordAddress)
            record.forSystemUse = offset;
}

void Host::RethrowFromHandlers() { runtime_->events.RethrowFailure(); }

Object Host::NewArray(std::string_view type, const std::vector<Value> &elements) {
    Object array = Object::Adopt(&runtime_->NewArray(std::string(type)));
    for (const Value &element : elements)
        array.Append(element);
    return array;
}

Object Host::NewDate(const DateFields &fields) {
    auto &date = RequireBuiltIn<DateInstance>(*runtime_, "Date");
    date.fields = fields;
    return Object::Adopt(&date);
}

Object Host::NewDictionary(const std::vector<std::pair<Value, Value>> &entries) {
    Object dictionary = Object::Adopt(&RequireBuiltIn<DictionaryInstance>(*runtime_, "Dictionary"));
    for (const auto &[key, value] : entries)
        dictionary.Store(key, value);
    return dictionary;
}

Object Host::NewMemoryBlock(std::string_view bytes) {
    auto &block = RequireBuiltIn<MemoryBlockInstance>(*runtime_, "MemoryBlock");
    auto *start = reinterpret_cast<const std::byte *>(bytes.data());
    block.bytes.assign(start, start + bytes.size());
    return Object::Adopt(&block);
}

Object Host::NewFolderItem(std::string_view path) {
    auto &item = RequireBuiltIn<FolderItemInstance>(*runtime_, "FolderItem");
    item.path = path;
    return Object::Adopt(&item);
}

Object Host::NewFolderItem(std::string_view folder, std::u16string_view name) {
    auto &item = RequireBuiltIn<FolderItemInstance>(*runtime_, "FolderItem");
    item.path = std::string(folder) + "/" + ToUTF8(name);
    item.name = name;
    return Object::Adopt(&item);
}

Object Host::NewVariant(int32_t typeCode, const Value &held) {
    if (held.Is<Object>())
        throw ProgramError("an object is its own variant");
    auto &variant = runtime_->heap.Make<VariantEntity>(VariantEntity::kHandleSize, typeCode, held);
    ForbidAccess(variant.address, variant.size);
    return Object::Adopt(&variant);
}

Object Host::Box(const Value &value) { return Object::Adopt(runtime_->Box(value)); }
Value Host::Unbox(const Object &variant) { return runtime_->Unbox(variant.Get()); }

Object Host::Adopt(void *handle) {
    return handle ? Object::Adopt(&runtime_->heap.At(handle, "a thing to adopt")) : Object();
}
void *Host::NewString(const Text &text) { return runtime_->NewString(text).address; }
Text Host::ReadString(const void *string) const {
    return runtime_->heap.Require<StringEntity>(string, "a string").GetText();
}

const std::vector<RaisedException> &Host::Raised() const { return runtime_->raised; }
std::vector<RaisedException> Host::TakeRaised() { return std::exchange(runtime_->raised, {}); }

std::vector<std::string> Host::Balance() const { return Audit(*runtime_); }
std::vector<std::string> Host::NewlyOutOfBalance() { return AuditAnew(*runtime_); }
void Host::ExpectLeft(std::string_view kind, int32_t count) { runtime_->expectedLeft[std::string(kind)] = count; }
int32_t Host::Alive(std::string_view kind) const { return CountAlive(*runtime_, kind); }
void Host::FreeUnused() { runtime_->heap.FreeUnused(); }

} // namespace sim::host
