// The four computed properties, and what an object without an item does: it raises, but for three of these.
#include <doctest/doctest.h>

#include "tests/spotlight/support/item_files.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

#include <unistd.h>

using namespace tests;

namespace {

constexpr const char *kTextProperties[] = {"DisplayName", "FSName", "Path"};

template <class Number> void SetSize(QueryProgram &program, QueryProgram::File file, CFNumberType type, Number size) {
    const auto number = CFRef<CFNumberRef>::Adopt(CFNumberCreate(kCFAllocatorDefault, type, &size));
    program.store.Set(file, "kMDItemFSSize", number.Get());
}

} // namespace

TEST_CASE("The computed properties give the names, the path and the size of the file") {
    const TemporaryFolder folder;
    const std::string path = folder.File("Zo\xC3\xAB.txt", "twelve bytes");
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        const Object item = ConstructItem(session.Host(), path);
        CHECK(item.Get<std::string>("DisplayName") == "Zo\xC3\xAB.txt");
        CHECK(item.Get<std::string>("FSName") == "Zo\xC3\xAB.txt");
        CHECK(item.Get<std::string>("Path") == path);
        CHECK(item.Get<int64_t>("FSSize") == 12);
        CHECK(session.Host().Raised().empty());
    });
}

TEST_CASE("Each computed text property reads the attribute of its own name") {
    QueryProgram program;
    const auto file = program.Add("letter");
    const Object item = program.NewItem(file);
    program.store.SetText(file, "kMDItemDisplayName", "shown");
    program.store.SetText(file, "kMDItemFSName", "stored");
    program.store.SetText(file, "kMDItemPath", "/there");
    CHECK(item.Get<std::string>("DisplayName") == "shown");
    CHECK(item.Get<std::string>("FSName") == "stored");
    CHECK(item.Get<std::string>("Path") == "/there");
}

TEST_CASE("A computed text property of a file that lacks the attribute is the nil string, without an exception") {
    QueryProgram program;
    const Object item = program.NewItem(program.Add("letter"));
    for (const char *property : kTextProperties) {
        CAPTURE(property);
        const Fault fault("MDItemCopyAttribute", 1);
        CHECK(item.Get(property).IsNil());
    }
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("FSSize holds sizes beyond 32 bits") {
    const TemporaryFolder folder;
    const std::string path = folder.File("large", "");
    REQUIRE(truncate64(path.c_str(), 5'000'000'000) == 0);
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        CHECK(ConstructItem(session.Host(), path).Get<int64_t>("FSSize") == 5'000'000'000);
    });
}

TEST_CASE("FSSize is 0 where the size is missing or is no whole number, without an exception") {
    QueryProgram program;
    const auto file = program.Add("letter");
    const Object item = program.NewItem(file);
    CHECK(item.Get<int64_t>("FSSize") == 0);
    SetSize(program, file, kCFNumberSInt32Type, SInt32{77});
    CHECK(item.Get<int64_t>("FSSize") == 77);
    SetSize(program, file, kCFNumberDoubleType, 4096.0);
    CHECK(item.Get<int64_t>("FSSize") == 4096);
    for (const double size : {1.5, 1e300}) {
        SetSize(program, file, kCFNumberDoubleType, size);
        CHECK(item.Get<int64_t>("FSSize") == 0);
    }
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("The computed properties release what they copied") {
    QueryProgram program;
    const auto file = program.Add("letter");
    const auto text = MakeString("text");
    for (const char *name : {"kMDItemDisplayName", "kMDItemFSName", "kMDItemPath"})
        program.store.Set(file, name, text.Get());
    const Object item = program.NewItem(file);
    const auto retained = CFGetRetainCount(text.Get());
    for (const char *property : kTextProperties)
        item.Get(property);
    CHECK(CFGetRetainCount(text.Get()) == retained);
}

TEST_CASE("Without an item the three text properties are the nil string and silent, while FSSize raises and is 0") {
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        const Object item = session.Host().Create("MDItemQTX");
        for (const char *property : kTextProperties) {
            CAPTURE(property);
            CHECK(item.Get(property).IsNil());
            CHECK(session.TakeException() == "");
        }
        CHECK(item.Get<int64_t>("FSSize") == 0);
        CHECK(session.TakeException() == kNilItem);
    });
}

TEST_CASE("Without an item every method raises the nil reference and gives the neutral value of its type") {
    struct Row {
        const char *method;
        std::vector<Value> arguments;
        Value neutral;
    };
    AtEveryAge([&](std::optional<double> version) {
        QueryProgram program(HostOptions{.version = version});
        const Row rows[] = {
            {"GetAttributes", {program.Strings({"kMDItemFSName"})}, nullptr},
            {"GetAttributes", {nullptr}, nullptr},
            {"GetAttribute", {"kMDItemFSName"}, nullptr},
            {"GetAttribute", {nullptr}, nullptr},
            {"AttributeNames", {}, nullptr},
            {"AttributeString", {"kMDItemFSName"}, nullptr},
            {"AttributeBoolean", {"kMDItemFSName"}, false},
            {"AttributeDouble", {"kMDItemFSSize"}, 0.0},
            {"AttributeStringArray", {"kMDItemKeywords"}, nullptr},
            {"AttributeStringArray", {nullptr}, nullptr},
        };
        const Object item = program.Host().Create("MDItemQTX");
        for (const Row &row : rows) {
            CAPTURE(row.method);
            CHECK(item.CallWith(row.method, row.arguments) == row.neutral);
            CHECK(program.TakeException() == kNilItem);
        }
    });
}

TEST_CASE("AttributeNames and AttributeStringArray make their array before they miss the item, and give it up") {
    TestSession session;
    auto &host = session.Host();
    Object item = host.Create("MDItemQTX");
    for (const char *method : {"AttributeNames", "AttributeStringArray"}) {
        CAPTURE(method);
        host.ClearLog();
        const bool takesName = std::string_view(method) == "AttributeStringArray";
        item.CallWith(method, takesName ? std::vector<Value>{"kMDItemKeywords"} : std::vector<Value>{});
        const auto calls = host.CallNames(true);
        REQUIRE(!calls.empty());
        CHECK(calls.front() == "RuntimeArrayCreateSingleDimBoundedArray(3, -1)");
        CHECK(host.Alive("string()") == 0);
        session.TakeException();
    }
}

TEST_CASE("The nil item is raised with an ASCII message and the number 0") {
    TestSession session;
    session.Host().Create("MDItemQTX").Get<int64_t>("FSSize");
    const auto raised = session.Host().TakeRaised();
    REQUIRE(raised.size() == 1);
    CHECK(raised.front().errorNumber == 0);
    CHECK(raised.front().messageEncoding == sim::host::kASCII);
}
