// The six constructors: what reaches the framework, and what leaves an object without a query.
#include <doctest/doctest.h>

#include "tests/spotlight/support/query_program.h"
#include "tests/support/fault.h"

using namespace tests;

namespace {

const char *const kExpression = "kMDItemFSName == 'a*'";

/// The names with which the framework's query was made; nothing for a null array.
std::optional<Names> NamesOf(CFArrayRef (*copy)(MDQueryRef), const Object &query) {
    const auto names = CFRef<CFArrayRef>::Adopt(copy(QueryOf(query)));
    return names ? std::optional(TextsIn(names.Get())) : std::nullopt;
}
std::optional<Names> ValueNames(const Object &query) { return NamesOf(MDQueryCopyValueListAttributes, query); }
std::optional<Names> SortNames(const Object &query) { return NamesOf(MDQueryCopySortingAttributes, query); }

std::string TextOf(const Object &query) {
    const auto text = CFRef<CFStringRef>::Adopt(MDQueryCopyQueryString(QueryOf(query)));
    return sim::macos::Utf8Of(text.Get());
}

/// Calls one of the six constructors of a new object with arguments that would make a query.
Object Construct(QueryProgram &program, int constructor, const Value &text, const Value &source) {
    auto &host = program.Host();
    Object query = host.Create("MDQueryQTX");
    const Object values = program.Strings({"kMDItemFSName"}), sorting = program.Strings({"kMDItemFSSize"});
    std::vector<Value> arguments;
    if (constructor >= 3)
        arguments.push_back(source);
    arguments.push_back(text);
    if (constructor % 3 >= 1)
        arguments.push_back(values);
    if (constructor % 3 == 2)
        arguments.push_back(sorting);
    query.CallWith("Constructor", arguments);
    return query;
}

} // namespace

TEST_CASE("Constructor(queryString) makes a query of the text with neither of the two lists") {
    QueryProgram program;
    Object query = program.Host().Create("MDQueryQTX");
    query.Call<void>("Constructor", kExpression);
    CHECK(TextOf(query) == kExpression);
    CHECK(ValueNames(query) == std::nullopt);
    CHECK(SortNames(query) == std::nullopt);
}

TEST_CASE("Constructor(queryString, valueListAttributes) passes the value list and no sorting attributes") {
    QueryProgram program;
    Object query = program.Host().Create("MDQueryQTX");
    query.Call<void>("Constructor", kExpression, program.Strings({"kMDItemFSName", "kMDItemKind"}));
    CHECK(TextOf(query) == kExpression);
    CHECK(ValueNames(query) == Names{"kMDItemFSName", "kMDItemKind"});
    CHECK(SortNames(query) == std::nullopt);
}

TEST_CASE("Constructor(queryString, valueListAttributes, sortingAttributes) passes both, each in its place") {
    QueryProgram program;
    Object query = program.Host().Create("MDQueryQTX");
    query.Call<void>("Constructor", kExpression, program.Strings({"kMDItemKind"}), program.Strings({"kMDItemFSSize"}));
    CHECK(TextOf(query) == kExpression);
    CHECK(ValueNames(query) == Names{"kMDItemKind"});
    CHECK(SortNames(query) == Names{"kMDItemFSSize"});
}

TEST_CASE("The three subset constructors search among what their source searches, with the lists they are given") {
    QueryProgram program;
    program.Add({"ab", "ac", "bb"});
    Object source = program.NewQuery("kMDItemFSName == 'a*'");
    for (int constructor = 3; constructor < 6; constructor++) {
        CAPTURE(constructor);
        Object subset = Construct(program, constructor, "kMDItemFSName == '*b'", source);
        CHECK(TextOf(subset) == "kMDItemFSName == '*b'");
        CHECK(ValueNames(subset) == (constructor > 3 ? std::optional(Names{"kMDItemFSName"}) : std::nullopt));
        CHECK(SortNames(subset) == (constructor > 4 ? std::optional(Names{"kMDItemFSSize"}) : std::nullopt));
        program.Gather(subset);
        CHECK(program.Results(subset) == Names{"ab"});
    }
}

TEST_CASE("A subset query takes no reference to its source and outlives it") {
    QueryProgram program;
    program.Add({"ab", "bb"});
    Object source = program.NewQuery("kMDItemFSName == 'a*'");
    Object subset = program.Host().Create("MDQueryQTX");
    subset.Call<void>("Constructor", source, "kMDItemFSName == '*b'");
    CHECK(source.References() == 1);
    source.Release();
    CHECK(program.Host().Alive("MDQueryQTX") == 1);
    program.Gather(subset);
    CHECK(program.Results(subset) == Names{"ab"});
}

TEST_CASE("A nil array of attributes reaches the framework as none at all, and an empty one as an empty one") {
    QueryProgram program;
    Object query = program.Host().Create("MDQueryQTX");
    query.Call<void>("Constructor", kExpression, nullptr, nullptr);
    CHECK(ValueNames(query) == std::nullopt);
    CHECK(SortNames(query) == std::nullopt);
    Object other = program.Host().Create("MDQueryQTX");
    other.Call<void>("Constructor", kExpression, program.Strings({}), program.Strings({}));
    CHECK(ValueNames(other) == Names{});
    CHECK(SortNames(other) == Names{});
    Object mixed = program.Host().Create("MDQueryQTX");
    mixed.Call<void>("Constructor", kExpression, nullptr, program.Strings({"kMDItemFSName"}));
    CHECK(ValueNames(mixed) == std::nullopt);
    CHECK(SortNames(mixed) == Names{"kMDItemFSName"});
}

TEST_CASE("The query string is converted first, then the sorting attributes, then the value list") {
    HostOptions options;
    options.directArrayStorage = false;
    QueryProgram program(std::move(options));
    auto &host = program.Host();
    std::vector<std::string> order;
    const Object values = program.Strings({"kMDItemKind"}), sorting = program.Strings({"kMDItemFSName"});
    host.Before("REALGetStringCFString", 1, [&] { order.push_back("a text"); });
    host.Before("RuntimeDirectReadStringArray", 1, [&] { order.push_back("the first array"); });
    host.Before("RuntimeDirectReadStringArray", 2, [&] {
        order.push_back("the second array");
        sorting.Put(0, "came too late");
    });
    Object query = host.Create("MDQueryQTX");
    query.Call<void>("Constructor", kExpression, values, sorting);
    CHECK(order == std::vector<std::string>{"a text", "the first array", "the second array"});
    CHECK(ValueNames(query) == Names{"kMDItemKind"});
    CHECK(SortNames(query) == Names{"kMDItemFSName"});
}

TEST_CASE("No constructor of a failed conversion or a malformed text raises; it leaves Handle at 0") {
    // Neither a text for the framework nor one that it takes for an expression.
    const Value texts[] = {nullptr, "", "kMDItemFSName ==", "a b c", sim::host::Text{"\xff\xfe\xfd", sim::host::kUTF8}};
    for (int constructor = 0; constructor < 6; constructor++)
        for (const Value &text : texts) {
            CAPTURE(constructor);
            CAPTURE(text);
            QueryProgram program;
            Object source = program.NewQuery();
            Object query = Construct(program, constructor, text, source);
            CHECK(program.Host().Raised().empty());
            CHECK(query.Get<int32_t>("Handle") == 0);
            CHECK(query.Call<int32_t>("ResultCount") == 0);
            CHECK(program.TakeException() == kNilQuery);
            query.Set("Tag", "still usable");
            CHECK(query.Get("Tag") == Value("still usable"));
        }
}

TEST_CASE("A subset of no source, or of a source without a query, is silently no query") {
    for (int constructor = 3; constructor < 6; constructor++) {
        CAPTURE(constructor);
        QueryProgram program;
        const Object empty = program.Host().Create("MDQueryQTX");
        for (const Value &source : {Value(nullptr), Value(empty)}) {
            program.Host().ClearLog();
            Object query = Construct(program, constructor, kExpression, source);
            // Nothing at all is done, so no argument is looked at either.
            CHECK(program.Host().CallCount("REALGetStringEncoding") == 0);
            CHECK(program.Host().CallCount("RuntimeUBound") == 0);
            CHECK(program.Host().Raised().empty());
            CHECK(query.Get<int32_t>("Handle") == 0);
            CHECK_FALSE(query.Call<bool>("Execute", 4));
            CHECK(program.TakeException() == kNilQuery);
        }
    }
}

TEST_CASE("A framework that makes no query leaves Handle at 0, and arrays and text are given up all the same") {
    for (int constructor = 0; constructor < 6; constructor++) {
        CAPTURE(constructor);
        QueryProgram program;
        Object source = program.NewQuery();
        const Fault fault(constructor < 3 ? "MDQueryCreate" : "MDQueryCreateSubset", 1);
        Object query = Construct(program, constructor, kExpression, source);
        CHECK(query.Get<int32_t>("Handle") == 0);
        CHECK(program.Host().Raised().empty());
    }
}

TEST_CASE("An array for which no memory is left reaches the framework as none at all") {
    QueryProgram program;
    Object query = program.Host().Create("MDQueryQTX");
    const Fault fault("CFArrayCreateMutable", 1); // the sorting attributes come first
    query.Call<void>("Constructor", kExpression, program.Strings({"kMDItemKind"}), program.Strings({"kMDItemFSName"}));
    CHECK(ValueNames(query) == Names{"kMDItemKind"});
    CHECK(SortNames(query) == std::nullopt);
}

TEST_CASE("Constructing an object again replaces its query and gives nothing up") {
    QueryProgram program;
    Object query = program.NewQuery();
    const MDQueryRef first = QueryOf(query);
    query.Call<void>("Constructor", kExpression);
    CHECK(QueryOf(query) != first);
    CHECK(CFGetRetainCount(first) == 1);
    CFRelease(first); // the program's business, as with any Handle that is written over
}
