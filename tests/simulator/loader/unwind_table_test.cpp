#include "simulator/loader/load_error.h"
#include "simulator/loader/unwind_table.h"
#include "tests/simulator/loader/image_builder.h"

#include <doctest/doctest.h>

#include <cstring>

namespace sim::loader {
namespace {

// Both kinds of entry begin with their length; a common one goes on with 0, another with its distance to its common
// one.
Bytes Entry(Bytes body) {
    body.resize((body.size() + 3) / 4 * 4);
    Bytes entry = {static_cast<uint8_t>(body.size()), 0, 0, 0};
    return entry + body;
}

// What the compiler writes: frame address at esp + 4, return address above it.
Bytes CommonEntry(const Bytes &augmentation = Text("zR") + Bytes{1, 0x7C, 8, 1, 0x10}) {
    return Entry(Bytes{0, 0, 0, 0, 1} + augmentation + Bytes{0x0C, 5, 4, 0x88, 1});
}

struct Translated {
    std::string fault;
    Bytes original;
    Bytes copy;
};

Translated Translate(const Bytes &section) {
    Translated result{"", section, Bytes(section.size() + 4, 0xEE)};
    try {
        TranslateUnwindTable(result.original, result.copy, "file");
    } catch (const LoadError &error) {
        result.fault = error.what();
    }
    return result;
}

uint32_t WordAt(const Bytes &bytes, size_t offset) {
    uint32_t word;
    std::memcpy(&word, bytes.data() + offset, sizeof word);
    return word;
}

uint32_t PlaceOf(const Bytes &bytes, size_t offset) {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(bytes.data() + offset));
}

TEST_CASE("The stack and frame pointers change numbers, other registers keep theirs") {
    const Bytes function = {28, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    const Bytes instructions = {0x85, 2, 0x84, 3, 0x86, 4, 0xC4, 0xC5, 0x0D, 4, 0x05, 5, 1, 0x09, 4, 5, 0x0E, 8, 0x41};
    const Translated table = Translate(CommonEntry() + Entry(function + instructions));
    CHECK(table.fault == "");
    const size_t place = CommonEntry().size() + 4 + function.size();
    const Bytes expected = {0x84, 2, 0x85, 3, 0x86, 4, 0xC5, 0xC4, 0x0D, 5, 0x05, 4, 1, 0x09, 5, 4, 0x0E, 8, 0x41};
    CHECK(Bytes(table.copy.begin() + static_cast<std::ptrdiff_t>(place),
                table.copy.begin() + static_cast<std::ptrdiff_t>(place + expected.size())) == expected);
    CHECK(table.copy[17] == 0x0C); // in the common entry: frame address from esp
    CHECK(table.copy[18] == 4);
    CHECK(table.original[18] == 5);
}

TEST_CASE("Pointers that count from their own place still point there from the copy") {
    // Personality, language data and function, each relative to itself.
    const Bytes common = CommonEntry(Text("zPLR") + Bytes{1, 0x7C, 8, 7, 0x9B, 0x40, 0, 0, 0, 0x10, 0x10});
    const auto distance = static_cast<uint8_t>(common.size() + 4);
    const Bytes function = Entry({distance, 0, 0, 0, 0x00, 0xFF, 0xFF, 0xFF, 0x20, 0, 0, 0, 4, 0x80, 0, 0, 0, 0x41});
    const Translated table = Translate(common + function);
    CHECK(table.fault == "");
    for (const size_t place : {size_t{19}, common.size() + 8, common.size() + 17}) {
        CAPTURE(place);
        CHECK(WordAt(table.copy, place) != WordAt(table.original, place));
        CHECK(PlaceOf(table.copy, place) + WordAt(table.copy, place) ==
              PlaceOf(table.original, place) + WordAt(table.original, place));
    }
    CHECK(WordAt(table.copy, common.size() + 12) == 0x20); // a length is no pointer
}

TEST_CASE("A function without language data keeps its null pointer") {
    const Bytes common = CommonEntry(Text("zPLR") + Bytes{1, 0x7C, 8, 7, 0x9B, 0x40, 0, 0, 0, 0x10, 0x10});
    const auto distance = static_cast<uint8_t>(common.size() + 4);
    const Translated table =
        Translate(common + Entry({distance, 0, 0, 0, 0x00, 0xFF, 0xFF, 0xFF, 0x20, 0, 0, 0, 4, 0, 0, 0, 0, 0x41}));
    CHECK(table.fault == "");
    CHECK(WordAt(table.copy, common.size() + 17) == 0);
}

TEST_CASE("The copy ends with a zero word") {
    const Translated table = Translate(CommonEntry());
    CHECK(WordAt(table.copy, table.original.size()) == 0);
    CHECK(Translate({}).fault == "");
    CHECK(WordAt(Translate({}).copy, 0) == 0);
}

TEST_CASE("What follows a zero word is not read") {
    CHECK(Translate(CommonEntry() + Bytes{0, 0, 0, 0, 0xFF, 0xFF, 0xFF}).fault == "");
}

TEST_CASE("A malformed table is refused for what is wrong") {
    const Bytes common = CommonEntry();
    const auto fault = [](const Bytes &section) { return Translate(section).fault; };
    CHECK(fault({8, 0, 0, 0}) == "file: the unwind table has an entry that ends after it");
    CHECK(fault({0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}) == "file: the unwind table has an entry that ends after it");
    CHECK(fault({1, 0}) == "file: the unwind table ends too early");
    CHECK(fault(Entry({4, 0, 0, 0, 0, 0, 0, 0})) ==
          "file: the unwind table has an entry without a common entry before it");
    CHECK(fault(Entry({0, 0, 0, 0, 3})) == "file: the unwind table is of version 3, not 1");
    CHECK(fault(CommonEntry(Text("eh") + Bytes{1, 0x7C, 8})) ==
          "file: the unwind table has the unknown augmentation eh");
    CHECK(fault(CommonEntry(Text("zX") + Bytes{1, 0x7C, 8, 1, 0})) ==
          "file: the unwind table has the unknown augmentation zX");
    CHECK(fault(CommonEntry(Text("zR") + Bytes{1, 0x7C, 8, 100, 0})) ==
          "file: the unwind table has augmentation data that ends after its entry");
    CHECK(fault(CommonEntry(Text("zP") + Bytes{1, 0x7C, 8, 5, 0x51, 0, 0, 0, 0})) ==
          "file: the unwind table has a pointer of the unknown encoding 81");
    CHECK(fault(Entry(Bytes{0, 0, 0, 0, 1} + Text("") + Bytes{1, 0x7C, 8, 0x3F})) ==
          "file: the unwind table has the unknown instruction 63");
    CHECK(fault(Entry(Bytes{0, 0, 0, 0, 1} + Text("") + Bytes{1, 0x7C, 8, 0x0D, 0x85, 1})) ==
          "file: the unwind table names a register that the processor does not have");
    CHECK(fault(Entry(Bytes{0, 0, 0, 0, 1} + Text("") + Bytes{1, 0x7C, 8, 0x0F})) ==
          "file: the unwind table describes a frame by an expression, which is not modelled");
    CHECK(fault(Entry(Bytes{0, 0, 0, 0, 1} + Text("") + Bytes{1, 0x7C, 8, 0x04}) + common) ==
          "file: the unwind table has an instruction that ends after its entry");
}

TEST_CASE("A table cut short anywhere is refused or read, never overrun") {
    const Bytes whole = CommonEntry() + Entry({28, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x41, 0x0E, 8});
    for (size_t length = 0; length < whole.size(); ++length) {
        const Translated table = Translate({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
        CAPTURE(length);
        CHECK(table.fault.empty() == (length == 0 || length == CommonEntry().size()));
    }
}

} // namespace
} // namespace sim::loader
