// The three optional sort functions: systems that have them, lack them, or lack only one of them.
#include <doctest/doctest.h>

#include "simulator/macos/control/environment.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/host_ages.h"

using namespace tests;

namespace environment = sim::macos::environment;

namespace {

constexpr const char *kGetter = "MDQueryGetSortOptionFlagsForAttribute";
constexpr const char *kSetter = "MDQuerySetSortOptionFlagsForAttribute";
constexpr const char *kOrder = "MDQuerySetSortOrder";

/// A system of which each function is exported or not, for as long as this lives. Must be older than the program.
struct System {
    System(bool getter, bool setter, bool order) {
        environment::SetExports(kGetter, getter);
        environment::SetExports(kSetter, setter);
        environment::SetExports(kOrder, order);
    }
    ~System() { environment::Reset(); }
    System(const System &) = delete;
    System &operator=(const System &) = delete;
};

/// A query of three files, sorted by size and name; two are of the same size.
struct Sorted : QueryProgram {
    explicit Sorted(double version = 2013.04) : QueryProgram(version) {
        const std::pair<const char *, int> kFiles[] = {{"a", 2}, {"b", 1}, {"c", 1}};
        for (const auto &[name, size] : kFiles)
            store.SetNumber(Add(std::string(name)), "kMDItemFSSize", size);
        query = NewQuery("kMDItemFSName == '*'", {}, {"kMDItemFSSize", "kMDItemFSName"});
    }
    int32_t Flags(const Value &name) { return query.Call<int32_t>("GetSortOptionFlagsForAttribute", name); }
    bool SetFlags(const Value &name, uint32_t flags) {
        return query.Call<bool>("SetSortOptionFlagsForAttribute", name, flags);
    }
    bool SetOrder(const Names &names) { return query.Call<bool>("SetSortOrder", Strings(names)); }
    Names Gathered() {
        Gather(query);
        return Results(query);
    }
    Object query;
};

} // namespace

TEST_CASE("Results come in the order of the sorting attributes, the first being the most important") {
    Sorted program;
    CHECK(program.Gathered() == Names{"b", "c", "a"});
}

TEST_CASE("With all three functions flags are set and read back, and reverse the order") {
    const System system(true, true, true);
    AtUsualAges([&](double version) {
        Sorted program(version);
        CHECK(program.Flags("kMDItemFSName") == 0);
        const auto reverse = program.Host().Constant("MDQueryQTX", "kMDQueryReverseSortOrderFlag").As<int32_t>();
        CHECK(program.SetFlags("kMDItemFSName", static_cast<uint32_t>(reverse)));
        CHECK(program.Flags("kMDItemFSName") == 1);
        CHECK(program.Flags("kMDItemFSSize") == 0);
        CHECK(program.Gathered() == Names{"c", "b", "a"});
    });
}

TEST_CASE("Each query has sort option flags of its own") {
    const System system(true, true, true);
    Sorted program;
    Object other = program.NewQuery("kMDItemFSName == '*'", {}, {"kMDItemFSName"});
    CHECK(program.Flags("kMDItemFSName") == 0);
    CHECK(other.Call<bool>("SetSortOptionFlagsForAttribute", "kMDItemFSName", 1U));
    CHECK(program.Flags("kMDItemFSName") == 0);
    CHECK(other.Call<int32_t>("GetSortOptionFlagsForAttribute", "kMDItemFSName") == 1);
}

TEST_CASE("Flags pass unchanged both ways") {
    const System system(true, true, true);
    Sorted program;
    for (const uint32_t flags : {0U, 1U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        CHECK(program.SetFlags("kMDItemFSName", flags));
        CHECK(program.Flags("kMDItemFSName") == static_cast<int32_t>(flags));
        CHECK(MDQueryGetSortOptionFlagsForAttribute(QueryOf(program.query), MakeString("kMDItemFSName").Get()) ==
              flags);
    }
}

TEST_CASE("SetSortOptionFlagsForAttribute gives false when the framework does: for an attribute that does not sort") {
    const System system(true, true, true);
    Sorted program;
    CHECK_FALSE(program.SetFlags("kMDItemKind", 1));
    CHECK(program.Flags("kMDItemKind") == 0);
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("SetSortOrder changes the order, and gives false for an attribute that was not given at creation") {
    const System system(true, true, true);
    Sorted program;
    CHECK(program.SetOrder({"kMDItemFSName"}));
    CHECK_FALSE(program.SetOrder({"kMDItemKind"}));
    CHECK(program.Gathered() == Names{"a", "b", "c"});
    CHECK(program.SetOrder({"kMDItemFSSize", "kMDItemFSName"}));
    CHECK(program.Results(program.query) == Names{"b", "c", "a"});
}

TEST_CASE("SetSortOrder passes an empty array, and gives false for nil") {
    const System system(true, true, true);
    Sorted program;
    CHECK_FALSE(program.query.Call<bool>("SetSortOrder", nullptr));
    CHECK(program.Gathered() == Names{"b", "c", "a"});
    CHECK(program.SetOrder({}));
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("A name that does not convert gives 0 and false") {
    const System system(true, true, true);
    Sorted program;
    for (const Value &name : {Value(nullptr), Value(kMalformed)}) {
        CHECK(program.Flags(name) == 0);
        CHECK_FALSE(program.SetFlags(name, 1));
    }
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("Whether the setter works is told by the getter's presence, whatever the setter's is") {
    struct Row {
        bool getter, setter, works;
    };
    // A getter without a setter is not among them: the setter would be called all the same.
    for (const Row &row : {Row{false, false, false}, Row{false, true, false}, Row{true, true, true}}) {
        CAPTURE(row.getter);
        CAPTURE(row.setter);
        const System system(row.getter, row.setter, true);
        Sorted program;
        CHECK(program.SetFlags("kMDItemFSName", 1) == row.works);
        CHECK(program.Flags("kMDItemFSName") == (row.works ? 1 : 0));
        CHECK(MDQueryGetSortOptionFlagsForAttribute(QueryOf(program.query), MakeString("kMDItemFSName").Get()) ==
              (row.works ? 1U : 0U));
        CHECK(program.Host().Raised().empty());
    }
}

TEST_CASE("Without the getter neither of the two looks at its argument") {
    const System system(false, true, false);
    Sorted program;
    program.Host().ClearLog();
    CHECK(program.Flags("kMDItemFSName") == 0);
    CHECK_FALSE(program.SetFlags("kMDItemFSName", 1));
    CHECK_FALSE(program.SetOrder({"kMDItemFSName"}));
    CHECK(program.Host().Calls().empty());
}

TEST_CASE("SetSortOrder works by itself: it needs neither of the other two") {
    for (const bool order : {false, true}) {
        const System system(false, false, order);
        Sorted program;
        CHECK(program.SetOrder({"kMDItemFSName"}) == order);
        CHECK(program.Gathered() == (order ? Names{"a", "b", "c"} : Names{"b", "c", "a"}));
    }
}

TEST_CASE("On a system without any of the three functions all three methods give 0 or false and raise nothing") {
    const System system(false, false, false);
    Sorted program;
    CHECK(program.Flags("kMDItemFSName") == 0);
    CHECK_FALSE(program.SetFlags("kMDItemFSName", 1));
    CHECK_FALSE(program.SetOrder({"kMDItemFSName"}));
    CHECK(program.Host().Raised().empty());
}
