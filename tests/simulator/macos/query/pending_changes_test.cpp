// What is left of several changes of one file until they are applied.
#include "simulator/macos/CoreServices/metadata/query/pending_changes.h"
#include "tests/simulator/macos/query/support/attributes.h"

#include <doctest/doctest.h>

namespace sim::macos {

namespace {

using query::PendingChange;
using query::PendingChanges;
using Kind = PendingChange::Kind;

enum class Now { kFits, kDoesNot };

constexpr FileIdentity kFile{0, 7, 0};

/// Notes a file's history, seen from results that hold it or not; gives what is to be done in the end.
std::vector<Kind> Left(bool isResult, std::initializer_list<Now> history) {
    PendingChanges changes;
    for (const Now now : history)
        changes.Note(kFile, now == Now::kFits ? std::make_shared<Attributes>() : nullptr, isResult);
    std::vector<Kind> kinds;
    for (const PendingChange &change : changes.Take(100)) {
        CHECK((change.source != nullptr) == (change.kind != Kind::kRemove));
        kinds.push_back(change.kind);
    }
    CHECK(changes.Count() == 0);
    CHECK(changes.AddedCount() == 0);
    return kinds;
}

} // namespace

TEST_CASE("changes of a file that is no result come to an addition or to nothing") {
    CHECK(Left(false, {Now::kDoesNot}).empty());
    CHECK(Left(false, {Now::kFits}) == std::vector{Kind::kAdd});
    CHECK(Left(false, {Now::kFits, Now::kFits}) == std::vector{Kind::kAdd});
    CHECK(Left(false, {Now::kFits, Now::kDoesNot}).empty());
    CHECK(Left(false, {Now::kFits, Now::kDoesNot, Now::kFits}) == std::vector{Kind::kAdd});
}

TEST_CASE("changes of a file that is a result come to a change or a removal") {
    CHECK(Left(true, {Now::kFits}) == std::vector{Kind::kChange});
    CHECK(Left(true, {Now::kDoesNot}) == std::vector{Kind::kRemove});
    CHECK(Left(true, {Now::kFits, Now::kDoesNot}) == std::vector{Kind::kRemove});
    CHECK(Left(true, {Now::kDoesNot, Now::kFits}) == std::vector{Kind::kChange});
    CHECK(Left(true, {Now::kDoesNot, Now::kDoesNot}) == std::vector{Kind::kRemove});
}

TEST_CASE("the oldest changes are taken first, and a file keeps its place") {
    PendingChanges changes;
    const auto source = std::make_shared<Attributes>();
    for (const std::uint64_t file : {3U, 1U, 2U, 3U})
        changes.Note({0, file, 0}, source, false);
    CHECK(changes.Count() == 3);
    CHECK(changes.AddedCount() == 3);
    const auto first = changes.Take(2);
    REQUIRE(first.size() == 2);
    CHECK(first[0].file.file == 3);
    CHECK(first[1].file.file == 1);
    CHECK(changes.Count() == 1);
    changes.Note({0, 3, 0}, source, true);
    const auto second = changes.Take(10);
    REQUIRE(second.size() == 2);
    CHECK(second[0].file.file == 2);
    CHECK(second[1].kind == Kind::kChange);
}

} // namespace sim::macos
