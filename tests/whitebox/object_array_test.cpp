// Storing into an old host's array in place: what is held and given up, in which order, and what the array shows of it
// meanwhile.
#include <doctest/doctest.h>

#include "host/arrays.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"

#include <string>
#include <vector>

using whitebox::FakeResolver;
using whitebox::Restored;

namespace {

/// An array of one element as hosts before 2016 lay it out.
struct OldArray {
    uint32_t others[7] = {};
    REALobjectStruct **elements;
};

char firstObject, secondObject;
REALobjectStruct *const kPrevious = reinterpret_cast<REALobjectStruct *>(&firstObject);
REALobjectStruct *const kStored = reinterpret_cast<REALobjectStruct *>(&secondObject);

REALobjectStruct *element = nullptr;
std::vector<std::string> happened;

std::string NameOf(REALobjectStruct *object) {
    return !object ? "nothing" : object == kPrevious ? "previous" : "stored";
}

void Note(const char *what, REALobjectStruct *object) {
    happened.push_back(std::string(what) + " " + NameOf(object) + ", in its place " + NameOf(element));
}

/// What happens while an object, or null, is stored where the previous one is.
std::vector<std::string> EventsOfStoring(REALobjectStruct *object, REALobjectStruct *previous) {
    FakeResolver resolver;
    const Restored bound(REALGetArrayUBound);
    const Restored lock(REALLockObject), unlock(REALUnlockObject);
    resolver.Offer(
        "RuntimeUBound", +[](_REALarray *) -> int32_t { return 0; });
    resolver.Offer(
        "REALLockObject", +[](REALobjectStruct *locked) { Note("lock", locked); });
    resolver.Offer(
        "REALUnlockObject", +[](REALobjectStruct *unlocked) { Note("unlock", unlocked); });
    rbversion = 2013.04;
    element = previous;
    happened.clear();
    OldArray array = {.elements = &element};
    StoreArrayObject(reinterpret_cast<_REALarray *>(&array), 0, object);
    rbversion = 0;
    return happened;
}

using Events = std::vector<std::string>;

REALobjectStruct *FirstElement(_REALarray *, int32_t) { return kPrevious; }

} // namespace

TEST_CASE("An object is held before the one in its place is given up, and the place is empty meanwhile") {
    CHECK(EventsOfStoring(kStored, kPrevious) ==
          Events{"lock stored, in its place previous", "unlock previous, in its place nothing"});
    CHECK(element == kStored);
}

TEST_CASE("The object that is there already is stored again without being lost") {
    CHECK(EventsOfStoring(kPrevious, kPrevious) ==
          Events{"lock previous, in its place previous", "unlock previous, in its place nothing"});
    CHECK(element == kPrevious);
}

TEST_CASE("Where nothing was, nothing is given up, and storing nothing empties the place") {
    CHECK(EventsOfStoring(kStored, nullptr) == Events{"lock stored, in its place nothing"});
    CHECK(element == kStored);
    CHECK(EventsOfStoring(nullptr, kPrevious) == Events{"unlock previous, in its place nothing"});
    CHECK(element == nullptr);
}

TEST_CASE("Only of an array that shows its elements it matters whether the host adds references") {
    FakeResolver resolver;
    const Restored bound(REALGetArrayUBound);
    const Restored lockObject(REALLockObject), unlockObject(REALUnlockObject);
    const Restored getObject(REALGetArrayValueObject);
    const Restored lockString(REALLockString);
    const Restored readString(REALReadStringArray);
    resolver.Offer(
        "RuntimeUBound", +[](_REALarray *) -> int32_t { return 0; });
    resolver.Offer(
        "PluginObjectArrayGetProc", +[](_REALarray *) { return FirstElement; });
    rbversion = 2013.04;
    OldArray array = {.elements = nullptr};
    CHECK(ReadArrayObject(reinterpret_cast<_REALarray *>(&array), 0).Get() == kPrevious);
    CHECK(REALGetArrayString(reinterpret_cast<_REALarrayString *>(&array), 0) == nullptr);
    CHECK(resolver.Questions("REALLockObject") == 0);
    CHECK(resolver.Questions("REALLockString") == 0);
    CHECK(resolver.Questions("RuntimeDirectReadStringArray") == 1);

    element = kPrevious;
    array.elements = &element;
    CHECK(ReadArrayObject(reinterpret_cast<_REALarray *>(&array), 0).Get() == kPrevious);
    CHECK(resolver.Questions("REALLockObject") > 0);
    rbversion = 0;
}
