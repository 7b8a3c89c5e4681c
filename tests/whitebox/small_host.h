// A host small enough to be believed: strings, string arrays and exception objects of any age, and nothing else. It
// serves the product's own functions where they are linked into a test or a fuzzer. Strings lie in memory as those of
// hosts before 2016 do, with no byte behind their text; later ones lead to a fault when they are read. Nothing is
// checked that AddressSanitizer checks: a handle used after its last release is memory used after free.
#pragma once

#include "host/services.h"
#include "tests/whitebox/restored.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace whitebox {

struct HostText {
    std::string bytes;
    CFStringEncoding encoding;

    bool operator==(const HostText &) const = default;
};

struct HostException {
    std::string className;
    /// Nothing when the property was never set.
    std::optional<HostText> message = {};
    std::optional<int32_t> errorNumber = {};

    bool operator==(const HostException &) const = default;
};

class SmallHost {
public:
    /// The product's services are looked up here from now on, afresh. 0 stands for a host without a version.
    explicit SmallHost(double version);
    ~SmallHost();
    SmallHost(const SmallHost &) = delete;
    SmallHost &operator=(const SmallHost &) = delete;

    /// The service is not there. "LenB" is one, too.
    void Withhold(const std::string &name) { withheld_.insert(name); }
    /// Every call of the service does this first; it may throw. "REALUnlockString" does it last.
    void Before(const std::string &name, std::function<void()> action) { actions_[name] = std::move(action); }

    /// +1.
    REALstringStruct *NewString(std::string_view bytes, CFStringEncoding encoding);
    HostText Read(REALstringStruct *string) const;
    /// The text of a result, which is released; nothing for null.
    std::optional<HostText> Take(REALstringStruct *string);

    /// An array that holds the only references to these strings, null among them. Elements lie in a table of their own
    /// where `isDirect`. Lives as long as the host.
    _REALarrayString *NewArray(std::vector<REALstringStruct *> strings, bool isDirect);
    /// The texts of an array's elements.
    std::vector<std::optional<HostText>> Elements(_REALarrayString *array) const;
    /// What the array says of itself from now on, true or not.
    void SetUpperBound(_REALarrayString *array, int32_t upperBound);

    /// Strings and objects that somebody still holds.
    int32_t Alive() const { return alive_; }

    /// The calls so far, in order, with their numbers and texts: `REALBuildString(3)`. Each call ends the list's
    /// validity.
    const std::vector<std::string> &Calls() const { return calls_; }
    int32_t CallCount(std::string_view service) const;

    std::vector<HostException> raised;
    /// What was built last, before any conversion.
    HostText built;
    /// What "REALGetStringCFString" answers, +1; by default null.
    std::function<CFStringRef()> cfString;
    /// Whether calls are kept; off for those who make millions.
    bool keepsCalls = true;

private:
    struct Services;
    struct String;
    struct Object;
    struct Array;

    static HostCode Resolve(const char *name);
    REALstringStruct *Build(const void *bytes, int32_t length, CFStringEncoding encoding);
    void Enter(const char *service, const std::string &arguments = {});
    bool Lacks(const char *service) const { return withheld_.contains(service); }

    static inline SmallHost *current_ = nullptr;
    std::set<std::string, std::less<>> withheld_;
    std::map<std::string, std::function<void()>, std::less<>> actions_;
    std::vector<std::string> calls_;
    std::vector<std::unique_ptr<Array>> arrays_;
    int32_t alive_ = 0;

    template <class... Service> using RestoredAll = std::tuple<Restored<Service>...>;
    RestoredAll<decltype(REALLockString), decltype(REALUnlockString), decltype(REALGetStringEncoding),
                decltype(REALSetStringEncoding), decltype(REALConvertString), decltype(REALBuildString),
                decltype(REALBuildStringWithEncoding), decltype(REALGetStringContents), decltype(REALGetStringCFString),
                decltype(REALLoadGlobalMethod), decltype(REALnewInstance), decltype(REALSetPropValueString),
                decltype(REALSetPropValueInteger), decltype(REALRaiseException), decltype(REALUnlockObject),
                decltype(REALGetArrayUBound), decltype(REALReadStringArray), decltype(REALInsertArrayValueString)>
        restored_;
};

} // namespace whitebox
