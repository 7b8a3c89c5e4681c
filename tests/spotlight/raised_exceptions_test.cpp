// The table of exceptions in the reference, row by row: each is brought about, and raises what its row says.
#include <doctest/doctest.h>

#include "tests/spotlight/support/exception_table.h"
#include "tests/spotlight/support/item_files.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/plugin_watch.h"

#include <functional>
#include <stdexcept>
#include <typeinfo>

using namespace tests;

namespace {

using Raised = std::vector<sim::host::RaisedException>;

/// How a row is brought about. Everything that is raised meanwhile has this message and the class of the row.
struct Way {
    std::string member;
    std::string cause;
    std::string message;
    std::function<void(QueryProgram &)> bringAbout;
    HostOptions host = {};
};

constexpr const char *kQueryMessage = "MDQuery Reference is nil";
constexpr const char *kItemMessage = "MDItem Reference is nil";
constexpr const char *kNoMemory = "Failed to allocate a memoryblock with 3 bytes in size.";
constexpr const char *kBeyondTheThird = "Parameter index  is too big. Range is 0 to 2, but value is 3.";
constexpr const char *kBeyondTheFirst = "Parameter index  is too big. Range is 0 to 0, but value is 1.";

// What the causes of the table are called here.
constexpr const char *kNoQuery = "the object has no query";
constexpr const char *kNoItem = "the object has no item";
constexpr const char *kNoBlock = "there is no memory block for a value that is data";
constexpr const char *kListShrinks = "the array for a value that is a list shrinks while it is filled";

using Maker = CFRef<CFTypeRef> (*)();

CFRef<CFTypeRef> Data() {
    return CFRef<CFTypeRef>::Adopt(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>("abc"), 3));
}

CFRef<CFTypeRef> CoreText() { return CFRef<CFTypeRef>::Adopt(CFRetain(CFSTR("text"))); }

CFRef<CFTypeRef> Number() {
    const int32_t seven = 7;
    return CFRef<CFTypeRef>::Adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &seven));
}

CFRef<CFTypeRef> Moment() { return CFRef<CFTypeRef>::Adopt(CFDateCreate(kCFAllocatorDefault, 0)); }

CFRef<CFTypeRef> ListOf(const std::vector<CFTypeRef> &elements) {
    const auto array = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (CFTypeRef element : elements)
        CFArrayAppendValue(array, element);
    return CFRef<CFTypeRef>::Adopt(array);
}

CFRef<CFTypeRef> ListOfTwo() { return ListOf({CFSTR("one"), CFSTR("two")}); }

CFRef<CFTypeRef> ListInAList() { return ListOf({ListOfTwo().Get()}); }

/// Four names, of which the last is gone when it is read.
Object ShrinkingNames(QueryProgram &program) {
    Object names = program.Strings({"a", "b", "c", "d"});
    program.Host().Before("RuntimeUBound", 5, [names] { names.Resize(2); });
    return names;
}

/// The upper bound of the host array that the next list is put into falls to 0 before its second element is stored.
void ShrinkNextList(QueryProgram &program) { program.Host().ReturnNothing("RuntimeUBound", 2, 2); }

Object WithoutQuery(QueryProgram &program) { return program.Host().Create("MDQueryQTX"); }
Object WithoutItem(QueryProgram &program) { return program.Host().Create("MDItemQTX"); }

QueryProgram::File FileWith(QueryProgram &program, Maker value) {
    const auto file = program.Add("letter");
    program.store.Set(file, "attribute", value().Get());
    return file;
}

Object ItemWith(QueryProgram &program, Maker value) { return program.NewItem(FileWith(program, value)); }

/// A query that has found one file with that value, in its value list.
Object QueryWith(QueryProgram &program, Maker value) {
    FileWith(program, value);
    Object query = program.NewQuery("kMDItemFSName == '*'", {"attribute"});
    program.Gather(query);
    return query;
}

void AddQueryMethods(std::vector<Way> &ways) {
    const auto add = [&ways](const char *method, const std::function<std::vector<Value>(QueryProgram &)> &arguments,
                             const char *cause = kNoQuery) {
        ways.push_back(
            {std::string("MDQueryQTX.") + method, cause, kQueryMessage, [method, arguments](QueryProgram &program) {
                 WithoutQuery(program).CallWith(method, arguments(program));
             }});
    };
    const auto nothing = [](QueryProgram &) { return std::vector<Value>(); };
    for (const char *method : {"Stop", "DisableUpdates", "EnableUpdates", "IsGatheringComplete", "ResultCount",
                               "Results", "QueryString", "ValueListAttributes", "SortingAttributes"})
        add(method, nothing);
    for (const char *method : {"Execute", "ResultAtIndex", "SetMaxCount"})
        add(method, [](QueryProgram &) { return std::vector<Value>{1}; });
    add("IndexOfResult", [](QueryProgram &program) { return std::vector<Value>{WithoutItem(program)}; });
    add("AttributeValueOfResultAtIndex", [](QueryProgram &) {
        return std::vector<Value>{"kMDItemFSName", uint32_t{0}};
    });
    add("ValuesOfAttribute", [](QueryProgram &) { return std::vector<Value>{"kMDItemFSName"}; });
    add("CountOfResultsWithAttributeValue", [](QueryProgram &) { return std::vector<Value>{"kMDItemFSName", "a"}; });
    add("SetSearchScope", [](QueryProgram &program) {
        return std::vector<Value>{program.FolderItems({"/usr"}), program.Strings({})};
    });
    const char *const alsoWithoutFunction = "the object has no query, also where the function is missing";
    add(
        "SetSortOrder", [](QueryProgram &program) { return std::vector<Value>{program.Strings({"kMDItemFSName"})}; },
        alsoWithoutFunction);
    add(
        "GetSortOptionFlagsForAttribute", [](QueryProgram &) { return std::vector<Value>{"kMDItemFSName"}; },
        alsoWithoutFunction);
    add(
        "SetSortOptionFlagsForAttribute",
        [](QueryProgram &) {
            return std::vector<Value>{"kMDItemFSName", uint32_t{1}};
        },
        alsoWithoutFunction);
    ways.push_back({"MDQueryQTX.BatchingParameters", "the object has no query, reading and assigning", kQueryMessage,
                    [](QueryProgram &program) {
                        Object query = WithoutQuery(program);
                        query.GetValue("BatchingParameters");
                        REQUIRE(program.Host().Raised().size() == 1);
                        query.Set("BatchingParameters", program.Host().Create("MDQueryBatchingParamsQTX"));
                    }});
}

void AddItemMethods(std::vector<Way> &ways) {
    const auto add = [&ways](const char *method, const std::function<std::vector<Value>(QueryProgram &)> &arguments) {
        ways.push_back(
            {std::string("MDItemQTX.") + method, kNoItem, kItemMessage, [method, arguments](QueryProgram &program) {
                 WithoutItem(program).CallWith(method, arguments(program));
             }});
    };
    for (const char *method :
         {"GetAttribute", "AttributeString", "AttributeBoolean", "AttributeDouble", "AttributeStringArray"})
        add(method, [](QueryProgram &) { return std::vector<Value>{"kMDItemFSName"}; });
    add("AttributeNames", [](QueryProgram &) { return std::vector<Value>(); });
    add("GetAttributes", [](QueryProgram &program) { return std::vector<Value>{program.Strings({"kMDItemFSName"})}; });
    ways.push_back({"MDItemQTX.FSSize", kNoItem, kItemMessage,
                    [](QueryProgram &program) { WithoutItem(program).GetValue("FSSize"); }});
}

void AddItemConstructor(std::vector<Way> &ways) {
    const auto add = [&ways](const char *cause, const char *message, const std::function<Value(QueryProgram &)> &path) {
        ways.push_back({"MDItemQTX.Constructor", cause, message, [path](QueryProgram &program) {
                            WithoutItem(program).CallWith("Constructor", {path(program)});
                        }});
    };
    add("`path` is nil", "Folderitem is nil", [](QueryProgram &) { return Value(nullptr); });
    constexpr const char *kUnusable =
        "`path` names nothing, no place where something could be, or a new item whose name "
        "is not well-formed Unicode";
    ways.push_back({"MDItemQTX.Constructor", kUnusable, "Folderitem is invalid", [](QueryProgram &program) {
                        auto &host = program.Host();
                        for (const Object &path : {host.NewFolderItem(""), host.NewFolderItem("/no such folder/file"),
                                                   host.NewFolderItem("/usr", u"\xD83D")})
                            WithoutItem(program).CallWith("Constructor", {path});
                        REQUIRE(host.Raised().size() == 3);
                    }});
    add("the file does not exist, or the system cannot describe it", kItemMessage,
        [](QueryProgram &program) { return Value(program.Host().NewFolderItem("/there is no such file")); });
}

void AddWrongTypes(std::vector<Way> &ways) {
    const auto add = [&ways](const char *getter, const char *cause, Maker value) {
        ways.push_back(
            {std::string("MDItemQTX.") + getter, cause, "Wrong type used for getting attribute value.",
             [getter, value](QueryProgram &program) { ItemWith(program, value).CallWith(getter, {"attribute"}); }});
    };
    add("AttributeString", "the attribute is not a text", Number);
    add("AttributeBoolean", "the attribute is not a boolean, but a number for example", Number);
    add("AttributeDouble", "the attribute is not a number; a date is none", Moment);
    add("AttributeStringArray", "the attribute is not a list, but a single text for example", CoreText);
}

/// Values that have to be made in the host and cannot be. `read` makes the file, then arms the fault, then reads.
void AddValues(std::vector<Way> &ways) {
    using Fault = std::function<void()>;
    using Read = void (*)(QueryProgram &, Maker, const Fault &);
    const auto add = [&ways](const char *member, Maker list, Read read) {
        ways.push_back({member, kNoBlock, kNoMemory, [read](QueryProgram &program) {
                            read(program, Data, [&] { program.Host().ReturnNothing("newMemoryBlock"); });
                        }});
        ways.push_back({member, kListShrinks, kBeyondTheFirst, [read, list](QueryProgram &program) {
                            read(program, list, [&] { ShrinkNextList(program); });
                        }});
    };
    add("MDItemQTX.GetAttribute", ListOfTwo, [](QueryProgram &program, Maker value, const Fault &arm) {
        const Object item = ItemWith(program, value);
        arm();
        item.CallWith("GetAttribute", {"attribute"});
    });
    add("MDItemQTX.GetAttributes", ListOfTwo, [](QueryProgram &program, Maker value, const Fault &arm) {
        const Object item = ItemWith(program, value);
        // The names have been read when the dictionary is made.
        program.Host().Before("PluginNewInstance", 1, arm);
        item.CallWith("GetAttributes", {program.Strings({"attribute"})});
    });
    add("MDQueryQTX.AttributeValueOfResultAtIndex", ListOfTwo,
        [](QueryProgram &program, Maker value, const Fault &arm) {
            const Object query = QueryWith(program, value);
            arm();
            query.CallWith("AttributeValueOfResultAtIndex", {"attribute", uint32_t{0}});
        });
    // A list of values counts as several values; here one of them is a list itself.
    add("MDQueryQTX.ValuesOfAttribute", ListInAList, [](QueryProgram &program, Maker value, const Fault &arm) {
        const Object query = QueryWith(program, value);
        arm();
        query.CallWith("ValuesOfAttribute", {"attribute"});
    });
}

/// Arguments that shrink while they are read.
void AddShrinkingArguments(std::vector<Way> &ways) {
    const auto add = [&ways](const char *member, const char *cause, std::function<void(QueryProgram &)> bringAbout) {
        ways.push_back({member, cause, kBeyondTheThird, std::move(bringAbout)});
    };
    add("MDQueryQTX.Constructor", "`valueListAttributes` or `sortingAttributes` shrinks while it is read",
        [](QueryProgram &program) {
            const Value text = "kMDItemFSName == '*'";
            const Object query = WithoutQuery(program), other = WithoutQuery(program);
            query.CallWith("Constructor", {text, ShrinkingNames(program)});
            REQUIRE(program.Host().Raised().size() == 1);
            program.Host().Mend("RuntimeUBound");
            other.CallWith("Constructor", {text, nullptr, ShrinkingNames(program)});
            REQUIRE(program.Host().Raised().size() == 2);
        });
    add("MDQueryQTX.SetSortOrder", "`sortingAttrs` shrinks while it is read", [](QueryProgram &program) {
        const Object query = program.NewQuery();
        query.CallWith("SetSortOrder", {ShrinkingNames(program)});
    });
    add("MDQueryQTX.CountOfResultsWithAttributeValue", "`Value` is, or holds, an array that shrinks while it is read",
        [](QueryProgram &program) {
            const Object query = program.NewQuery("kMDItemFSName == '*'", {"attribute"});
            query.CallWith("CountOfResultsWithAttributeValue",
                           {"attribute", program.Host().Box(ShrinkingNames(program))});
        });
    add("MDItemQTX.GetAttributes", "`names` shrinks while it is read", [](QueryProgram &program) {
        const Object item = program.NewItem(program.Add("letter"));
        item.CallWith("GetAttributes", {ShrinkingNames(program)});
    });
    add("MDQueryQTX.SetSearchScope",
        "for each entry that is gone because `paths` or `options` shrinks while it is read", [](QueryProgram &program) {
            const Object query = program.NewQuery();
            const Object paths = program.FolderItems({"/usr", "/usr", "/usr", "/usr"});
            program.Host().Before("REALFSRefFromFolderItem", 3, [paths] { paths.Resize(2); });
            query.CallWith("SetSearchScope", {paths, nullptr});
            REQUIRE(program.Host().Raised().size() == 1);
            const Object options = program.Strings({"a", "b", "c", "d"});
            program.Host().Before("REALGetStringEncoding", 3, [options] { options.Resize(2); });
            query.CallWith("SetSearchScope", {nullptr, options});
            REQUIRE(program.Host().Raised().size() == 2);
        });
}

/// What a host throws while a text is built for it, no memory for a message, and a class that it does not have.
void AddHosts(std::vector<Way> &ways) {
    const auto add = [&ways](const char *cause, const std::string &message,
                             const std::vector<std::function<void()>> &throwers) {
        ways.push_back({"*", cause, message, [throwers](QueryProgram &program) {
                            const Object query = program.NewQuery();
                            for (const auto &thrower : throwers) {
                                program.Host().Throw("REALBuildString", thrower, 1, 1);
                                CHECK(query.GetValue("QueryString").IsNil());
                                program.Host().Mend("REALBuildString");
                            }
                            REQUIRE(program.Host().Raised().size() == throwers.size());
                        }});
    };
    add("the host throws a C++ range, out-of-range, overflow or underflow error while a text is built", "so far",
        {[] { throw std::range_error("so far"); }, [] { throw std::out_of_range("so far"); },
         [] { throw std::overflow_error("so far"); }, [] { throw std::underflow_error("so far"); }});
    add("the host throws a C++ bad cast while a text is built", std::bad_cast().what(),
        {[] { throw std::bad_cast(); }});
    add("the host throws another C++ exception with a description while a text is built", "no sense",
        {[] { throw std::logic_error("no sense"); }});
    add("the host throws something else while a text is built", "Sorry, but there was an unnamed C++ Exception.",
        {[] { throw 42; }});
    ways.push_back({"*", "there is no memory left for the message of an index outside an array", "Out of Bounds",
                    [](QueryProgram &program) {
                        const Object query = program.NewQuery();
                        const Object options = program.Strings({"a", "b"});
                        program.Host().Before("REALGetStringEncoding", 1, [options] { options.Resize(0); });
                        const FailedAllocation failed(1);
                        query.CallWith("SetSearchScope", {nullptr, options});
                    }});
    ways.push_back({"*", "the host has no class of the name of the exception that was to be raised", kQueryMessage,
                    [](QueryProgram &program) { WithoutQuery(program).GetValue("ResultCount"); },
                    HostOptions{.missingClasses = {"NilObjectException"}}});
}

std::vector<Way> Ways() {
    std::vector<Way> ways;
    AddQueryMethods(ways);
    AddItemMethods(ways);
    AddItemConstructor(ways);
    AddWrongTypes(ways);
    AddValues(ways);
    AddShrinkingArguments(ways);
    AddHosts(ways);
    ways.push_back({"MDQueryQTX.IndexOfResult", "`it` is nil or has no item", kItemMessage, [](QueryProgram &program) {
                        const Object query = program.NewQuery();
                        query.CallWith("IndexOfResult", {nullptr});
                        REQUIRE(program.Host().Raised().size() == 1);
                        query.CallWith("IndexOfResult", {WithoutItem(program)});
                    }});
    ways.push_back({"MDQueryQTX.SetSearchScope", "for each entry beyond the twentieth",
                    "Parameter index  is too big. Range is 0 to 19, but value is 20.", [](QueryProgram &program) {
                        const Object query = program.NewQuery();
                        query.CallWith("SetSearchScope", {program.FolderItems(Names(21, "/usr")), nullptr});
                    }});
    return ways;
}

std::string Name(const std::string &member, const std::string &cause) { return member + ": " + cause; }

} // namespace

TEST_CASE("Each row of the table of exceptions is raised as it says, and every way to raise one has its row") {
    std::map<std::string, Way> ways;
    for (Way &way : Ways()) {
        const std::string name = Name(way.member, way.cause);
        CAPTURE(name);
        CHECK(ways.emplace(name, std::move(way)).second);
    }
    for (const ExceptionRow &row : ReadExceptionTable()) {
        const std::string name = Name(row.member, row.cause);
        CAPTURE(name);
        const auto way = ways.extract(name);
        REQUIRE_MESSAGE(way, "no way to raise it is known");
        CHECK(row.HasMessage(way.mapped().message));
        Raised raised;
        {
            QueryProgram program(way.mapped().host);
            way.mapped().bringAbout(program);
            raised = program.Host().TakeRaised();
            // What is armed may hold an object of the program.
            for (const char *service : {"RuntimeUBound", "REALFSRefFromFolderItem", "REALGetStringEncoding"})
                program.Host().Mend(service);
        }
        CHECK(!raised.empty());
        for (const auto &exception : raised) {
            CHECK(exception.className == row.exception);
            CHECK(exception.message.value_or("(none)") == way.mapped().message);
            CHECK(exception.errorNumber == 0);
        }
    }
    for (const auto &[name, way] : ways)
        FAIL_CHECK("the table has no row for " << name);
}

TEST_CASE("A message of the table stands for the messages that differ only in its slanted words") {
    const ExceptionRow row{"", "", "Range is 0 to *last*, but value is *index*.", ""};
    CHECK(row.HasMessage("Range is 0 to -1, but value is 3."));
    CHECK_FALSE(row.HasMessage("Range is 0 to , but value is 3."));
    CHECK_FALSE(row.HasMessage("Range is 1 to 2, but value is 3."));
    CHECK_FALSE(row.HasMessage("Range is 0 to 2, but value is 3"));
}
