// The table of services, and what happens around each call of one: it is counted, noted, and made to fail where a fault
// is armed. A service is an ordinary function; its row wraps it in a thunk of the same shape, so that the plugin gets a
// plain C function and every call passes by here.
#pragma once

#include "simulator/host/declarations/records.h"
#include "simulator/host/entities/heap.h"
#include "simulator/host/ground/options.h"
#include "simulator/host/runtime/notes.h"

#include <deque>
#include <map>
#include <span>
#include <tuple>
#include <type_traits>

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

/// Before a service does its work: false when it is to do nothing and give zero. May throw, as a fault.
bool EnterService(int index, const std::string *argumentText);
/// Leaves the mark of the service that is being carried out.
void LeaveService();
/// The place of a service in the table; asked once per process.
int IndexOfService(const char *name);
bool RecordsCalls();
/// Whether somebody listens to the calls, and telling them.
bool HasListener();
void TellListener(const std::string &call);
/// What a handle stands for: the text of a string, the class of an array and how many elements it has,
/// the class of an object; "..." for what is no handle.
std::string DescribeHandle(const void *handle);
/// Stops unless that method was loaded on that very object.
void RequireLoaded(const void *object, const char *name);

namespace detail {

inline void Append(std::string &text, const char *argument) {
    text += text.empty() ? "" : ", ";
    text += argument ? std::string("\"") + argument + "\"" : "null";
}

template <class T> void AppendArgument(std::string &text, T argument) {
    if constexpr (std::is_same_v<T, const char *>)
        Append(text, argument);
    else if constexpr (std::is_same_v<T, int32_t>)
        text += (text.empty() ? "" : ", ") + std::to_string(argument);
}

template <class T> void AppendHeard(std::string &text, T argument) {
    text += text.empty() ? "" : ", ";
    if constexpr (std::is_same_v<T, const char *>)
        text += argument ? std::string("\"") + argument + "\"" : "null";
    else if constexpr (std::is_arithmetic_v<T>)
        text += std::to_string(argument);
    else
        text += DescribeHandle(reinterpret_cast<const void *>(argument));
}

struct LeaveAtEnd {
    ~LeaveAtEnd() { LeaveService(); }
};

} // namespace detail

template <Name name, Reach reach, auto function> struct Thunk;

template <Name name, Reach reach, class Result, class... Arguments, Result (*function)(Arguments...)>
struct Thunk<name, reach, function> {
    static Result Call(Arguments... arguments) {
        static const int index = IndexOfService(name.text);
        std::string text;
        if (RecordsCalls())
            (detail::AppendArgument(text, arguments), ...);
        if (HasListener()) {
            std::string heard;
            (detail::AppendHeard(heard, arguments), ...);
            TellListener(name.text + ("(" + heard + ")"));
        }
        if constexpr (reach == Reach::kObjectMethod)
            RequireLoaded(std::get<0>(std::tie(arguments...)), name.text);
        bool proceed = EnterService(index, RecordsCalls() ? &text : nullptr);
        detail::LeaveAtEnd leave;
        if (!proceed)
            return Result();
        return function(arguments...);
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

    std::function<void(const std::string &call)> listener;

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
