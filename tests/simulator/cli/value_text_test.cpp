#include "simulator/cli/value_text.h"
#include "simulator/host/host.h"

#include <doctest/doctest.h>

namespace sim::cli {
namespace {

using host::Host;
using host::Value;

TEST_CASE("Each kind of value has a type and a text") {
    Host host;
    struct Row {
        Value value;
        const char *type;
        const char *text;
    };
    const Row rows[] = {
        {nullptr, "", ""},
        {true, "Boolean", "true"},
        {false, "Boolean", "false"},
        {int32_t{-7}, "Integer", "-7"},
        {uint32_t{4000000000}, "UInt32", "4000000000"},
        {int64_t{1} << 40, "Int64", "1099511627776"},
        {0.1f, "Single", "0.1"},
        {0.1, "Double", "0.1"},
        {1e300, "Double", "1e+300"},
        {host::Color{0x00FF7F}, "Color", "#00FF7F"},
        {"text", "String", "text"},
        {host.NewDate({2009, 2, 15, 12, 30, 59}), "Date", "2009-02-15 12:30:59"},
        {host.NewFolderItem("/a/b.txt"), "FolderItem", "/a/b.txt"},
        {host.NewMemoryBlock("\x01\xFF"), "MemoryBlock", "2 bytes: 01 ff"},
        {host.NewMemoryBlock(""), "MemoryBlock", "0 bytes"},
        {host.NewMemoryBlock("0123456789abcdefg"), "MemoryBlock",
         "17 bytes: 30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 …"},
        {host.NewDictionary({{"a", 1}, {"b", "c"}}), "Dictionary", "{a: 1, b: c}"},
        {host.NewArray("string", {"a", "b"}), "Array of String", "a, b"},
        {host.NewArray("variant", {"a", 1}), "Array", "a, 1"},
        {host.NewArray("string"), "Array", ""},
    };
    for (const Row &row : rows) {
        CAPTURE(row.text);
        CHECK(TypeText(row.value) == row.type);
        CHECK(ValueText(row.value) == row.text);
    }
}

TEST_CASE("Sizes are rounded for reading") {
    CHECK(SizeText(0) == "0 bytes");
    CHECK(SizeText(1) == "1 byte");
    CHECK(SizeText(999) == "999 bytes");
    CHECK(SizeText(1000) == "1.0 KB");
    CHECK(SizeText(9949) == "9.9 KB");
    CHECK(SizeText(9950) == "10 KB");
    CHECK(SizeText(999499) == "999 KB");
    CHECK(SizeText(999500) == "1.0 MB");
    CHECK(SizeText(1234567890) == "1.2 GB");
    CHECK(SizeText(5000000000000000) == "5000 TB");
}

} // namespace
} // namespace sim::cli
