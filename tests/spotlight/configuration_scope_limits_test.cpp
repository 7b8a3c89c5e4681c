// Scopes of more than twenty entries, and arrays that change while they are read.
#include <doctest/doctest.h>

#include "simulator/macos/CoreServices/metadata/query/query_scope.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

using namespace tests;

namespace {

constexpr int32_t kMaximum = 20;

Object Folders(QueryProgram &program, int32_t count) {
    return program.FolderItems(Names(static_cast<size_t>(count), "/usr"));
}

Names Numbered(int32_t from, int32_t count) {
    Names texts;
    for (int32_t i = 0; i < count; i++)
        texts.push_back("option " + std::to_string(from + i));
    return texts;
}

Names EntriesOf(const Object &query) { return TextsIn(sim::macos::SearchScopeOf(QueryOf(query))); }

/// The range message for each of the indices from `first` to `last`.
std::vector<std::string> TooBig(int32_t first, int32_t last, int32_t count) {
    std::vector<std::string> messages;
    for (int32_t index = first; index <= last; index++)
        messages.push_back("OutOfBoundsException: Parameter index  is too big. Range is 0 to " +
                           std::to_string(count - 1) + ", but value is " + std::to_string(index) + ".");
    return messages;
}

std::vector<std::string> TakeMessages(QueryProgram &program) {
    std::vector<std::string> messages;
    for (const auto &raised : program.Host().TakeRaised()) {
        messages.push_back(raised.className + ": " + raised.message.value_or("(no message)"));
        CHECK(raised.errorNumber == 0);
    }
    return messages;
}

} // namespace

TEST_CASE("Twenty entries are set, of one kind or of both, and nothing is raised") {
    AtUsualAges([&](double version) {
        for (const int32_t folders : {0, 7, 19, 20}) {
            CAPTURE(folders);
            QueryProgram program(version);
            Object query = program.NewQuery();
            query.Call<void>("SetSearchScope", Folders(program, folders),
                             program.Strings(Numbered(folders, kMaximum - folders)));
            CHECK(EntriesOf(query).size() == kMaximum);
            CHECK(program.Host().Raised().empty());
        }
    });
}

TEST_CASE("Each entry beyond the twentieth raises with its index and the count 20; the first twenty are set") {
    AtUsualAges([&](double version) {
        for (const int32_t folders : {0, 1, 19, 20, 21, 25})
            for (const int32_t options : {1, 3, 24}) {
                CAPTURE(folders);
                CAPTURE(options);
                QueryProgram program(version);
                Object query = program.NewQuery();
                query.Call<void>("SetSearchScope", Folders(program, folders), program.Strings(Numbered(0, options)));
                Names expected(static_cast<size_t>(std::min(folders, kMaximum)), "file:///usr/");
                const Names set = Numbered(0, std::min(options, kMaximum - std::min(folders, kMaximum)));
                expected.insert(expected.end(), set.begin(), set.end());
                CHECK(EntriesOf(query) == expected);
                CHECK(TakeMessages(program) == TooBig(kMaximum, folders + options - 1, kMaximum));
            }
    });
}

TEST_CASE("What is left out for another reason does not count towards the twenty") {
    QueryProgram program;
    Object query = program.NewQuery();
    const Object paths = Folders(program, 10);
    for (int i = 0; i < 15; i++)
        paths.Append(i % 2 == 0 ? Value(nullptr) : Value(program.Host().NewFolderItem("")));
    const Object options = program.Host().NewArray("string", std::vector<Value>(5));
    for (const std::string &text : Numbered(0, 11))
        options.Append(text);
    query.Call<void>("SetSearchScope", paths, options);
    CHECK(EntriesOf(query).size() == kMaximum);
    CHECK(EntriesOf(query).back() == "option 9");
    CHECK(TakeMessages(program) == TooBig(20, 20, kMaximum));
}

TEST_CASE("An array of folder items that shrinks while it is read raises for each index that is gone") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        Object query = program.NewQuery();
        const Object paths = program.FolderItems({"/usr", "/etc", "/usr", "/etc"});
        program.Host().Before("REALFSRefFromFolderItem", 2, [&] { paths.Resize(1); });
        query.Call<void>("SetSearchScope", paths, program.Strings({"one"}));
        CHECK(EntriesOf(query) == Names{"file:///usr/", "file:///etc/", "one"});
        CHECK(TakeMessages(program) == TooBig(2, 3, 2));
    });
}

TEST_CASE("An array of folder items that is emptied while it is read raises with a range of 0 to -1") {
    QueryProgram program;
    Object query = program.NewQuery();
    const Object paths = program.FolderItems({"/usr", "/etc"});
    program.Host().Before("REALFSRefFromFolderItem", 1, [&] { paths.Resize(-1); });
    query.Call<void>("SetSearchScope", paths, Object());
    CHECK(EntriesOf(query) == Names{"file:///usr/"}); // read before, and held meanwhile
    CHECK(TakeMessages(program) == TooBig(1, 1, 0));
}

TEST_CASE("A scope for which no array can be created raises nothing and sets nothing, whatever its length") {
    for (const int32_t entries : {0, 1, 20, 21, 30}) {
        CAPTURE(entries);
        QueryProgram program;
        Object query = program.NewQuery();
        query.Call<void>("SetSearchScope", program.FolderItems({}), program.Strings({"before"}));
        const Object options = program.Strings(Numbered(0, entries));
        {
            const Fault fault("CFArrayCreateMutable");
            query.Call<void>("SetSearchScope", Folders(program, entries), options);
            CHECK(fault.Failed() == 1);
        }
        CHECK(EntriesOf(query) == Names{"before"});
        CHECK(program.Host().Raised().empty());
    }
}

TEST_CASE("An array that grows while it is read is read as far as it reached at the beginning") {
    QueryProgram program;
    Object query = program.NewQuery();
    const Object paths = program.FolderItems({"/usr"});
    program.Host().Before("REALFSRefFromFolderItem", 1, [&] { paths.Append(program.Host().NewFolderItem("/etc")); });
    query.Call<void>("SetSearchScope", paths, Object());
    CHECK(EntriesOf(query) == Names{"file:///usr/"});
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("An array of option strings that shrinks while it is read raises for each index that is gone") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        Object query = program.NewQuery();
        const Object options = program.Strings({"one", "two", "three"});
        program.Host().Before("REALGetStringEncoding", 1, [&] { options.Resize(0); });
        query.Call<void>("SetSearchScope", program.FolderItems({"/usr"}), options);
        CHECK(EntriesOf(query) == Names{"file:///usr/", "one"});
        CHECK(TakeMessages(program) == TooBig(1, 2, 1));
    });
}
