// Registration of class records that this plugin does not have but the procedure allows for: every size, missing
// tables, the old layout field by field.
#include <doctest/doctest.h>

#include "host/services.h"
#include "plugin/old_records.h"
#include "plugin/registration.h"
#include "tests/whitebox/failing_memory.h"
#include "tests/whitebox/fake_resolver.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

using whitebox::FailingMemory;
using whitebox::FakeResolver;

namespace {

const REALclassDefinition *registered = nullptr;
int registrations = 0;

void RegisterClass(REALclassDefinition *record) {
    registered = record;
    registrations++;
}

/// A host of one layout that takes classes.
class RegisteringHost {
public:
    explicit RegisteringHost(int32_t layout) {
        CurrentREALControlVersion = layout;
        resolver_.Offer("PluginRegisterClass", RegisterClass);
        registered = nullptr;
        registrations = 0;
    }
    ~RegisteringHost() { CurrentREALControlVersion = 13; }

private:
    FakeResolver resolver_;
};

/// Frees what registration hands to the host for good.
template <class Row> std::unique_ptr<Row, decltype(&std::free)> Freed(Row *rows) { return {rows, std::free}; }

template <class Record> uint32_t WordOf(const Record *record, size_t word) {
    uint32_t value;
    std::memcpy(&value, reinterpret_cast<const char *>(record) + word * 4, 4);
    return value;
}

int32_t Getter(REALobjectStruct *, int32_t) { return 0; }
void DoNothing(REALobjectStruct *) {}

/// A class that has a row, or `count` of them, in each of its tables.
struct FullClass {
    explicit FullClass(uint32_t count) {
        record.properties.count = record.methods.count = record.events.count = count;
        record.constants.count = record.sharedMethods.count = record.sharedProperties.count = count;
    }
    ~FullClass() {
        if (record.version != 9)
            return;
        for (void *table : Tables())
            std::free(table);
    }
    FullClass(const FullClass &) = delete;
    FullClass &operator=(const FullClass &) = delete;

    /// In the order in which they are converted.
    std::vector<void *> Tables() const {
        return {record.properties.rows, record.methods.rows,       record.events.rows,
                record.constants.rows,  record.sharedMethods.rows, record.sharedProperties.rows};
    }

    REALproperty properties[2] = {Stored("One", "Integer", 0), Stored("Two", "Integer", 4)};
    REALmethodDefinition methods[2] = {Method("One", DoNothing), Method("Two", DoNothing)};
    REALevent events[2] = {Event("One()"), Event("Two()")};
    REALconstant constants[2] = {Constant("kOne=1"), Constant("kTwo=2")};
    REALmethodDefinition sharedMethods[2] = {SharedMethod("Three", DoNothing), SharedMethod("Four", DoNothing)};
    REALproperty sharedProperties[2] = {Stored("Three", "Integer", 8), Stored("Four", "Integer", 12)};
    REALclassDefinition record = {.name = "Full",
                                  .properties = properties,
                                  .methods = methods,
                                  .events = events,
                                  .constants = constants,
                                  .sharedProperties = sharedProperties,
                                  .sharedMethods = sharedMethods};
};

} // namespace

TEST_CASE("The data size is rounded up to the next multiple of 16 in place") {
    const RegisteringHost host(13);
    const struct {
        uint32_t declared;
        uint32_t registeredAs;
    } sizes[] = {{0, 0}, {1, 16}, {8, 16}, {15, 16}, {16, 16}, {17, 32}, {24, 32}};
    for (const auto &size : sizes) {
        REALclassDefinition record = {.version = 13, .name = "Sized", .dataSize = size.declared};
        MyREALRegisterClass(record);
        CHECK(record.dataSize == size.registeredAs);
    }
}

TEST_CASE("In every layout above 9 only the version and the data size of the record change") {
    for (const int32_t layout : {10, 11, 12, 13}) {
        const RegisteringHost host(layout);
        REALmethodDefinition methods[] = {Method("Go", DoNothing)};
        REALclassDefinition record = {.version = 13, .name = "Current", .dataSize = 16, .methods = methods};
        REALclassDefinition expected = record;
        expected.version = layout;
        MyREALRegisterClass(record);
        CHECK(registered == &record);
        CHECK(std::memcmp(&record, &expected, sizeof record) == 0);
    }
}

TEST_CASE("In the old layout each table becomes a new array of the first words of each record") {
    const RegisteringHost host(9);
    REALproperty properties[] = {Stored("Field", "Integer", 4), Computed("Answer", "Int32", Getter)};
    REALmethodDefinition methods[] = {Method("First", DoNothing), Method("Second", DoNothing)};
    REALevent events[] = {Event("Started()"), Event("Stopped()")};
    REALconstant constants[] = {{"kOne=1", {11, 12, 13, 14}}, {"kTwo=2", {21, 22, 23, 24}}};
    REALmethodDefinition shared[] = {SharedMethod("Third", DoNothing)};
    REALclassDefinition record = {
        .version = 13,
        .name = "Old",
        .superName = "Base",
        .dataSize = 8,
        .forSystemUse = 5,
        .constructor = DoNothing,
        .destructor = DoNothing,
        .properties = properties,
        .methods = methods,
        .events = events,
        .interfaces = "interfaces",
        .bindDescriptions = "bindings",
        .bindDescriptionCount = 3,
        .constants = constants,
        .mFlags = 4,
        .sharedProperties = properties,
        .sharedMethods = shared,
        .further = {1, 2, 3, 4},
    };
    MyREALRegisterClass(record);
    CHECK(registrations == 1);
    CHECK(registered == &record);

    CHECK(record.version == 9);
    CHECK(std::strcmp(record.name, "Old") == 0);
    CHECK(std::strcmp(record.superName, "Base") == 0);
    CHECK(record.dataSize == 16);
    CHECK(record.forSystemUse == 5);
    CHECK((record.constructor == DoNothing));
    CHECK((record.destructor == DoNothing));
    CHECK(record.interfaces != nullptr);
    CHECK(record.mFlags == 4);
    CHECK(WordOf(&record, 16) == 0);
    CHECK(WordOf(&record, 17) == 0);
    // The words behind the old record are not its own and stay.
    for (uint32_t i = 0; i < 4; i++)
        CHECK(record.further[i] == i + 1);

    const auto oldProperties = Freed(record.properties.rows);
    const auto oldMethods = Freed(record.methods.rows);
    const auto oldEvents = Freed(record.events.rows);
    const auto oldConstants = Freed(record.constants.rows);
    const auto oldSharedProperties = Freed(record.sharedProperties.rows);
    const auto oldShared = Freed(record.sharedMethods.rows);
    const auto checkPrefixes = [](const void *old, const void *current, size_t count, size_t oldWords, size_t words) {
        REQUIRE(old != nullptr);
        CHECK(old != current);
        for (size_t row = 0; row < count; row++)
            for (size_t word = 0; word < oldWords; word++)
                CHECK(WordOf(static_cast<const uint32_t *>(old), row * oldWords + word) ==
                      WordOf(static_cast<const uint32_t *>(current), row * words + word));
    };
    checkPrefixes(oldProperties.get(), properties, 2, 10, 12);
    checkPrefixes(oldSharedProperties.get(), properties, 2, 10, 12);
    checkPrefixes(oldMethods.get(), methods, 2, 4, 6);
    checkPrefixes(oldConstants.get(), constants, 2, 3, 5);
    checkPrefixes(oldShared.get(), shared, 1, 4, 6);

    // An event's copy holds its two words as they were; the event itself then points at its copy.
    for (size_t i = 0; i < 2; i++) {
        const auto *copy = reinterpret_cast<const uint32_t *>(oldEvents.get()) + 2 * i;
        CHECK(copy[0] == WordOf(&events[i], 0));
        CHECK(copy[1] == 0);
        CHECK(events[i].forSystemUse == reinterpret_cast<uintptr_t>(copy));
    }
}

TEST_CASE(
    "In the old layout a table without rows, or a count without a table, gives a null table and keeps the count") {
    const RegisteringHost host(9);
    REALmethodDefinition methods[] = {Method("Go", DoNothing)};
    REALclassDefinition record = {.version = 13, .name = "Sparse"};
    record.methods.rows = methods;
    record.methods.count = 0;
    record.sharedMethods.rows = nullptr;
    record.sharedMethods.count = 7;
    record.events.count = 5;
    record.constants.count = 2;
    record.properties.count = 3;
    MyREALRegisterClass(record);
    CHECK(record.methods.rows == nullptr);
    CHECK(record.sharedMethods.rows == nullptr);
    CHECK(record.sharedMethods.count == 7);
    CHECK(record.events.rows == nullptr);
    CHECK(record.events.count == 5);
    CHECK(record.constants.rows == nullptr);
    CHECK(record.constants.count == 2);
    CHECK(record.properties.rows == nullptr);
    CHECK(record.properties.count == 3);
}

TEST_CASE("In the old layout a table whose size is beyond 31 bits is null and keeps its count") {
    const RegisteringHost host(9);
    REALmethodDefinition methods[] = {Method("Go", DoNothing)};
    REALclassDefinition record = {.version = 13, .name = "Huge"};
    record.methods.rows = methods;
    record.methods.count = 0x08000000; // 16 bytes each: 2^31
    MyREALRegisterClass(record);
    CHECK(record.methods.rows == nullptr);
    CHECK(record.methods.count == 0x08000000);
}

TEST_CASE("In the old layout each class gets tables of its own, with room for its rows and no more") {
    const RegisteringHost host(9);
    for (const uint32_t count : {1U, 2U}) {
        FullClass aClass(count);
        const FailingMemory memory(0);
        MyREALRegisterClass(aClass.record);
        CHECK(memory.Asked() ==
              std::vector<size_t>{count * 40, count * 16, count * 8, count * 12, count * 16, count * 40});
        const auto nameOf = [](const void *rows, uint32_t row, uint32_t words, uint32_t word) {
            return reinterpret_cast<const char *>(static_cast<const uint32_t *>(rows)[row * words + word]);
        };
        const auto &record = aClass.record;
        const uint32_t last = count - 1;
        CHECK(nameOf(record.properties.rows, last, 10, 1) == aClass.properties[last].name);
        CHECK(nameOf(record.methods.rows, last, 4, 2) == aClass.methods[last].declaration);
        CHECK(nameOf(record.events.rows, last, 2, 0) == aClass.events[last].declaration);
        CHECK(nameOf(record.constants.rows, last, 3, 0) == aClass.constants[last].declaration);
        CHECK(nameOf(record.sharedMethods.rows, last, 4, 2) == aClass.sharedMethods[last].declaration);
        CHECK(nameOf(record.sharedProperties.rows, last, 10, 1) == aClass.sharedProperties[last].name);
        for (uint32_t i = 0; i < 2; i++)
            CHECK(aClass.events[i].forSystemUse ==
                  (i < count ? reinterpret_cast<uintptr_t>(record.events.rows) + i * sizeof(OldREALevent) : 0));
    }
}

TEST_CASE(
    "In the old layout properties are converted first, then methods, events, constants, shared methods and shared "
    "properties, and one without memory is null") {
    const RegisteringHost host(9);
    for (int failing = 1; failing <= 6; failing++) {
        CAPTURE(failing);
        FullClass aClass(2);
        const FailingMemory memory(failing);
        MyREALRegisterClass(aClass.record);
        const auto tables = aClass.Tables();
        for (int i = 0; i < 6; i++)
            CHECK((tables[static_cast<size_t>(i)] == nullptr) == (i + 1 == failing));
    }
}

TEST_CASE("FixProperties gives null for no properties") {
    REALproperty properties[] = {Stored("Field", "Integer", 0)};
    CHECK(FixProperties(nullptr, 4) == nullptr);
    CHECK(FixProperties(properties, 0) == nullptr);
    const auto fixed = Freed(FixProperties(properties, 1));
    CHECK(fixed != nullptr);
}
