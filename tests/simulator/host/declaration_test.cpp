#include "simulator/host/declarations/declaration.h"
#include "tests/simulator/host/fixture.h"

namespace tests {

TEST_CASE("A declaration is read into its name, parameters, presets and result") {
    Declaration results = ParseDeclaration("Results(limit as integer = -1) as MDItemQTX()");
    CHECK(results.name == "Results");
    REQUIRE(results.parameters.size() == 1);
    CHECK(results.parameters[0].name == "limit");
    CHECK(results.parameters[0].type.kind == TypeKind::kInt32);
    CHECK(results.parameters[0].preset == Value(-1));
    CHECK(results.RequiredArguments() == 0);
    CHECK(results.result.isArray);
    CHECK(results.result.name == "MDItemQTX");
}

TEST_CASE("Array parameters carry their brackets at the name") {
    Declaration scope = ParseDeclaration("SetSearchScope(paths() as folderitem, options() as string)");
    REQUIRE(scope.parameters.size() == 2);
    CHECK(scope.parameters[0].type.isArray);
    CHECK(scope.parameters[0].type.Describe() == "folderitem()");
    CHECK(scope.parameters[1].type.kind == TypeKind::kString);
    CHECK(scope.result.kind == TypeKind::kNone);
    CHECK(scope.Words() == 2);
}

TEST_CASE("A declaration may be a bare name, a name with a type, or have empty brackets") {
    CHECK(ParseDeclaration("Stop").parameters.empty());
    CHECK(ParseDeclaration("Finish()").parameters.empty());
    CHECK(ParseDeclaration("IsGatheringComplete as boolean").result.kind == TypeKind::kBoolean);
    CHECK(ParseDeclaration("AttributeNames as string()").result.isArray);
}

TEST_CASE("Every scalar type is known, in any case") {
    struct Row {
        const char *name;
        TypeKind kind;
        size_t words;
    };
    for (const Row &row :
         {Row{"integer", TypeKind::kInt32, 1}, Row{"Int32", TypeKind::kInt32, 1}, Row{"UInt32", TypeKind::kUInt32, 1},
          Row{"Int64", TypeKind::kInt64, 2}, Row{"Boolean", TypeKind::kBoolean, 1}, Row{"single", TypeKind::kSingle, 1},
          Row{"Double", TypeKind::kDouble, 2}, Row{"String", TypeKind::kString, 1},
          Row{"variant", TypeKind::kVariant, 1}, Row{"color", TypeKind::kColor, 1},
          Row{"folderitem", TypeKind::kObject, 1}, Row{"double()", TypeKind::kDouble, 1}}) {
        CAPTURE(row.name);
        CHECK(ParseType(row.name).kind == row.kind);
        CHECK(ParseType(row.name).Words() == row.words);
    }
}

TEST_CASE("Assigns marks the value of an assignment") {
    Declaration value = ParseDeclaration("Value(key As Variant, Assigns _value As Variant)");
    REQUIRE(value.parameters.size() == 2);
    CHECK_FALSE(value.parameters[0].assigns);
    CHECK(value.parameters[1].assigns);
    CHECK(value.parameters[1].name == "_value");
}

TEST_CASE("Constants are numbers or texts, and a text may hold quotes") {
    CHECK(ParseConstant("kMDQueryWantsUpdates=4").value == Value(4));
    CHECK(ParseConstant("kMDQueryScopeHome=\"kMDQueryScopeHome\"").value == Value("kMDQueryScopeHome"));
    CHECK(ParseConstant("kQuote=\"say \"please\"\"").value == Value("say \"please\""));
}

TEST_CASE("Two spellings are one declaration when they differ in case and blanks only") {
    CHECK(SameDeclaration("LenB( s as string ) as integer", "lenb(s as String) As Integer"));
    CHECK_FALSE(SameDeclaration("LenB(s as string) as integer", "LenB(sas string) as integer"));
    CHECK_FALSE(SameDeclaration("Stop", "Stopp"));
}

TEST_CASE("What the grammar does not know stops the host, quoting it") {
    for (const char *text : {"", "Find(", "Find(name)", "Find(name as)", "Find(name as string", "Find() as string x",
                             "Find(ByRef name as string)", "Find(n as integer = )", "Find(n as integer = x)"}) {
        CAPTURE(text);
        CHECK(Contains(ReasonOfStop([&] { ParseDeclaration(text); }), "\"" + std::string(text) + "\""));
    }
    CHECK(ReasonOfStop([] { ParseConstant("kOpen=\"half"); }) != "");
}

} // namespace tests
