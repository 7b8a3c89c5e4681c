// Failures on demand. Every call of the frameworks that creates or copies an object, or asks the system for one, is
// counted, and any of them can be made to fail as it would on a machine without memory: it gives null, false or an
// error number. Calls that the stand-ins make among themselves are neither counted nor made to fail.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sim::macos {

/// One function of the frameworks that can fail. Lives for ever; defined next to the function, with its name.
class FallibleCall {
public:
    explicit FallibleCall(const char *name);
    FallibleCall(const FallibleCall &) = delete;
    FallibleCall &operator=(const FallibleCall &) = delete;

    /// Counts the call. True when it is the one that has to fail.
    bool Fails() const;
    const char *Name() const { return name_; }

private:
    const char *name_;
};

/// While it lives, calls are the stand-ins' own: they are not counted and do not fail.
class OwnCalls {
public:
    OwnCalls();
    ~OwnCalls();
    OwnCalls(const OwnCalls &) = delete;
    OwnCalls &operator=(const OwnCalls &) = delete;
};

namespace faults {

/// Counts from 0 again and lets nothing fail.
void Reset();
/// The n-th counted call from now on fails, once; the first is 1.
void FailCall(std::size_t n);
/// The n-th call of one function from now on fails, once. Stops when nothing has that name.
void FailCall(std::string_view name, std::size_t n);
/// Every call of one function fails until Reset.
void FailEvery(std::string_view name);

/// How many calls were counted since the last Reset.
std::size_t Count();
/// How many calls failed since the last Reset.
std::size_t Failed();
/// The functions that can fail, in alphabetical order.
std::vector<std::string> Names();

} // namespace faults

} // namespace sim::macos
