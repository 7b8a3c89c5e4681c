// The table of services, and what happens around each call of one: it is counted, noted, and made to fail where a fault
// is armed. A service is an ordinary function; its row wraps it in a thunk of the same shape, so that the plugin gets a
// plain C function and every call passes by here.
#pragma once

#include "simulator/host/declarations/records.h"
#include "simulator/host/entities/heap.h"
#include "simulator/host/ground/options.h"
#include "simulator/host/runtime/notes.h"

#include <deque>
#include <initializer_list>
#include <map>
#include <span>
#include <type_traits>
#include <variant>

namespace sim::host {

/// How a service comes to the plugin.
enum class Reach {
    kName,         ///< the resolver, by name
    kFirstName,    ///< the same, and there is an older second name
    kGlobalMethod, ///< "REALLoadGlobalMethod", by declaration
    kObjectMethod, ///< "REALLoadObjectMethod", by class and declaration
    kElement,      ///< handed out by an array service
};

struct ServiceRow {
    const char *name;
    Reach reach;
    Function function;
    /// The host version that it came with.
    double since = 0;
};

/// Text as a template argument.
template <size_t N> struct Name {
    consteval Name(const char (&source)[N]) {
        for (size_t index = 0; index < N; ++index)
            text[index] = source[index];
    }
    char text[N];
};

/// An argument, or a result, as it is shown to those who note calls or listen to them. What is neither a text nor a
/// number is a handle.
using Argument = std::variant<const char *, int32_t, int64_t, double, const void *, bool>;

template <class T> Argument ArgumentOf(T value) {
    if constexpr (std::is_same_v<T, const char *> || std::is_same_v<T, int32_t>)
        return value;
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<double>(value);
    else if constexpr (std::is_arithmetic_v<T>)
        return static_cast<int64_t>(value);
    else if constexpr (std::is_enum_v<T>) // a truth, of which only the low byte is meant
        return (static_cast<uint32_t>(value) & 0xFF) != 0;
    else
        return reinterpret_cast<const void *>(value);
}

/// The place of a service in the table; asked once per process.
int IndexOfService(const char *name);

/// While a service is carried out. It is the same for all of them, so that a thunk has next to nothing to compile.
class Passage {
public:
    /// Tells whoever listens or notes. Stops when a method was not loaded on its object; may throw, as a fault.
    Passage(int index, std::initializer_list<Argument> arguments);
    ~Passage();
    Passage(const Passage &) = delete;
    Passage &operator=(const Passage &) = delete;

    /// False when the service is to do nothing and give zero.
    bool Proceeds() const { return proceeds_; }
    /// What the service gives.
    void Gives(const Argument &result);

private:
    HeardCall heard_;
    bool proceeds_;
};

template <Name name, Reach reach, auto function> struct Thunk;

template <Name name, Reach reach, class Result, class... Arguments, Result (*function)(Arguments...)>
struct Thunk<name, reach, function> {
    static Result Call(Arguments... arguments) {
        static const int index = IndexOfService(name.text);
        Passage passage(index, {ArgumentOf(arguments)...});
        if constexpr (std::is_void_v<Result>) {
            if (passage.Proceeds())
                function(arguments...);
        } else {
            const Result result = passage.Proceeds() ? function(arguments...) : Result();
            passage.Gives(ArgumentOf(result));
            return result;
        }
    }
};

template <Name name, auto function, Reach reach = Reach::kName> ServiceRow Service(double since = 0) {
    // The thunk outlives the row's use of the name: both are static.
    static constexpr Name kept = name;
    return {kept.text, reach, reinterpret_cast<Function>(&Thunk<name, reach, function>::Call), since};
}

class Services {
public:
    /// All of them are borrowed. A row's place in the list is the same in every host.
    Services(std::span<const ServiceRow> rows, const HostOptions &options, Heap &heap);

    /// The answer of the resolver.
    Function Resolve(const char *name);
    Function LoadGlobalMethod(const char *declaration);
    Function LoadObjectMethod(class Instance &object, const char *declaration);
    /// An element function; stops when the table has none of that name.
    Function Element(const char *name) const;

    bool Enter(int index, const std::string *argumentText);
    void Leave() { heap_.places.Leave(); }

    struct Fault {
        int32_t first;
        int32_t last;
        /// Neither: the service returns nothing.
        std::function<void()> thrower = {};
        std::function<void()> action = {};
    };
    void Arm(std::string_view name, Fault fault);
    void Mend(std::string_view name);
    void Withhold(std::string_view name, int32_t requests);
    void Offer(std::string_view name);

    const std::vector<Request> &Requests() const { return requests_; }
    const std::vector<ServiceCall> &Calls() const { return calls_; }
    int32_t RequestCount(std::string_view name) const;
    int32_t CallCount(std::string_view name) const;
    void ClearLog();

    /// -1 when there is no such service.
    int IndexOf(std::string_view name) const;
    const ServiceRow &Row(int index) const { return rows_[static_cast<size_t>(index)]; }

private:
    struct State {
        int32_t calls = 0;
        /// Calls at the last ClearLog.
        int32_t cleared = 0;
        std::deque<Fault> faults;
    };
    State &StateOf(std::string_view name);
    bool IsOffered(const ServiceRow &row);
    Function Answer(const std::string &name, const ServiceRow *row);

    std::span<const ServiceRow> rows_;
    const HostOptions &options_;
    Heap &heap_;
    std::map<std::string_view, int> indices_;
    std::vector<State> states_;
    /// Names not found, and for how many more requests.
    std::map<std::string, int32_t, std::less<>> withheld_;
    std::vector<Request> requests_;
    std::map<std::string, int32_t, std::less<>> requestCounts_;
    std::vector<ServiceCall> calls_;
};

} // namespace sim::host
