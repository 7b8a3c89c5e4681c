// The host: a BASIC-like development environment's runtime of a chosen age, as a plugin meets it. It starts a plugin
// through its entry point, keeps what the plugin registers, hands out its services by name, and lets a test or tool be
// the host program: make objects, call methods by their declarations, handle events, hold values of every kind. It does
// not model compiling, threads, windows, or anything else that a plugin of this kind never sees.
//
// One host can be alive at a time, because a resolver is a plain C function without a context. Everything happens on
// the thread that made it. Objects and values must be gone before their host.
//
// Services. A service is named as the resolver is asked for it. What is loaded by declaration counts as a service too
// and is named by exactly that declaration, with the class before it when it belongs to one:
//   "LenB( s as string ) as integer", "VarType(value As Variant) As Int32",
//   "Dictionary.Value(key As Variant, Assigns _value As Variant)", "FolderItem.TrueItem(Index as integer) as
//   Folderitem".
// An element function that an array service hands out is named after the element: "string array get".
#pragma once

#include "simulator/host/declarations/records.h"
#include "simulator/host/ground/call_listener.h"
#include "simulator/host/ground/options.h"
#include "simulator/host/program/object.h"
#include "simulator/host/runtime/notes.h"

#include <memory>

namespace sim::host {

class Runtime;

class Host {
public:
    using Function = host::Function;
    using Resolver = Function (*)(const char *name);
    using EntryPoint = void (*)(Resolver resolver);

    explicit Host(HostOptions options = {});
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;
    ~Host();

    /// Calls the plugin's entry point with the resolver. The plugin's code must stay loaded for as long as the host
    /// lives.
    void Start(EntryPoint entryPoint);
    /// The resolver itself, for what calls services without a plugin.
    static Resolver GetResolver();

    const HostOptions &Options() const;
    const Arrivals &Arrived() const;

    // What the plugin asked for and called.

    const std::vector<Request> &Requests() const;
    int32_t RequestCount(std::string_view name) const;
    const std::vector<ServiceCall> &Calls() const;
    int32_t CallCount(std::string_view name) const;
    /// The names of the calls since the last ClearLog, in order; with their arguments where `withArguments`.
    std::vector<std::string> CallNames(bool withArguments = false) const;
    void ClearLog();
    /// Tells that listener, which is borrowed, of what passes between host and plugin from now on; null ends it.
    void Listen(CallListener *listener);
    /// Every service of this stand-in, offered or not.
    static std::vector<std::string> ServiceNames();

    // Faults. Counting starts at the call that arms the fault; the first request or call is number 1.

    /// The name is not found from now on.
    void Withhold(std::string_view name);
    /// The name is not found for the next `requests` requests.
    void WithholdFirst(std::string_view name, int32_t requests);
    void Offer(std::string_view name);
    /// Calls number `first` to `last` give zero, false or null and do nothing.
    void ReturnNothing(std::string_view name, int32_t first = 1, int32_t last = INT32_MAX);
    /// Calls number `first` to `last` throw what `thrower` throws.
    void Throw(std::string_view name, std::function<void()> thrower, int32_t first = 1, int32_t last = INT32_MAX);
    template <class Exception> void ThrowFrom(std::string_view name, Exception exception) {
        Throw(name, [exception] { throw exception; });
    }
    /// Runs `action` before call number `call` is carried out.
    void Before(std::string_view name, int32_t call, std::function<void()> action);
    /// Ends every fault armed for that name, other than Withhold.
    void Mend(std::string_view name);

    // The program's part.

    /// A new instance of a class, as `new` in the host language gives it before its constructor method is called. Nil
    /// when the host has no such class.
    Object Create(std::string_view className);
    /// Calls a class's shared method.
    template <class Result = Value, class... Arguments>
    Result Shared(std::string_view className, std::string_view method, Arguments &&...arguments) {
        return SharedWith(className, method, {Value(std::forward<Arguments>(arguments))...}).template As<Result>();
    }
    Value SharedWith(std::string_view className, std::string_view method, std::vector<Value> arguments);
    /// Calls a global method, wherever it was registered.
    template <class Result = Value, class... Arguments>
    Result Global(std::string_view method, Arguments &&...arguments) {
        return GlobalWith(method, {Value(std::forward<Arguments>(arguments))...}).template As<Result>();
    }
    Value GlobalWith(std::string_view method, std::vector<Value> arguments);
    /// The value of a class's declared constant: an integer or a text.
    Value Constant(std::string_view className, std::string_view name);
    /// Moves the beginning of a plugin class's data for instances made from now on, and tells the class record.
    void SetForSystemUse(std::string_view className, int32_t offset);
    /// Throws what an event handler threw while no call of the program was under way.
    void RethrowFromHandlers();

    /// An array; `type` is a type of the host language: "string", "integer", "int64", "single", "double", "boolean",
    /// "variant", "date", "folderitem", or a class name.
    Object NewArray(std::string_view type, const std::vector<Value> &elements = {});
    Object NewDate(const DateFields &fields);
    Object NewDictionary(const std::vector<std::pair<Value, Value>> &entries = {});
    Object NewMemoryBlock(std::string_view bytes);
    /// A folder item for that path, whether anything is there or not. An empty path makes one that names nothing.
    Object NewFolderItem(std::string_view path);
    /// A folder item of something in that folder that does not exist. Its name is these UTF-16 units, well-formed or
    /// not, as the File Manager's record holds them.
    Object NewFolderItem(std::string_view folder, std::u16string_view name);
    /// A variant of any type code that holds any scalar or text, sensible or not: code 11 with the number 256, code 10
    /// with a text. Its conversions are those of what it holds.
    Object NewVariant(int32_t typeCode, const Value &held);
    /// The value boxed as a host variant: an object stays itself, nil stays nil.
    Object Box(const Value &value);
    /// What is inside a variant: the reverse of Box.
    Value Unbox(const Object &variant);

    // Raw handles, for tests that call services themselves.

    /// Takes over the reference that a service gave with an object, variant or array; nil for null.
    Object Adopt(void *handle);
    /// A new host string, +1, to be given up through "REALUnlockString".
    void *NewString(const Text &text);
    /// The text of a live host string.
    Text ReadString(const void *string) const;

    // Exceptions.

    const std::vector<RaisedException> &Raised() const;
    std::vector<RaisedException> TakeRaised();

    // The ledger.

    /// One line for each thing that has more references than anybody known to the host holds (a leak), or fewer (an
    /// over-release), saying what it is and where it was made; empty when all is well. Known holders are the program's
    /// Objects, arrays, dictionaries, and the stored variants and strings of plugin objects.
    std::vector<std::string> Balance() const;
    /// The same without what this has told of already: for programs that look often and go on.
    std::vector<std::string> NewlyOutOfBalance();
    /// Leaves `count` references on things of that kind ("MDItemQTX", "string", ...) out of Balance: a deliberate leak.
    void ExpectLeft(std::string_view kind, int32_t count);
    /// Things of that kind alive now.
    int32_t Alive(std::string_view kind) const;
    /// Gives memory back that the host keeps for what is to come, so that what is left is in use.
    void FreeUnused();

private:
    std::unique_ptr<Runtime> runtime_;
};

} // namespace sim::host
