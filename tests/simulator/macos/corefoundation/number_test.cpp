#include "simulator/macos/CoreFoundation/number.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <cmath>
#include <limits>
#include <vector>

using namespace sim::macos;
using namespace sim::macos::tests;

namespace {

struct Reading {
    bool whole;
    double value;
};

struct Row {
    const char *title;
    CFNumberType type;
    std::int64_t integer;
    double real;
    CFNumberType stored;
    CFIndex size;
    bool isFloat;
    Reading asDouble;
    Reading asSInt64;
    Reading asLong;
};

CFRef<CFNumberRef> Make(CFNumberType type, std::int64_t integer, double real) {
    const auto create = [&](auto value) {
        return CFRef<CFNumberRef>::Adopt(CFNumberCreate(kCFAllocatorDefault, type, &value));
    };
    switch (StoredForm(type)) {
    case kCFNumberSInt8Type:
        return create(static_cast<std::int8_t>(integer));
    case kCFNumberSInt16Type:
        return create(static_cast<std::int16_t>(integer));
    case kCFNumberSInt32Type:
        return create(static_cast<std::int32_t>(integer));
    case kCFNumberSInt64Type:
        return create(integer);
    case kCFNumberFloat32Type:
        return create(static_cast<float>(real));
    default:
        return create(real);
    }
}

constexpr double kSaturated = 9223372036854775807.0;

} // namespace

TEST_CASE_FIXTURE(Balanced, "A number keeps the form it was made in and reads as the real one does") {
    const std::vector<Row> rows{
        {"8-bit 7", kCFNumberSInt8Type, 7, 0, kCFNumberSInt32Type, 4, false, {true, 7}, {true, 7}, {true, 7}},
        {"16-bit 300",
         kCFNumberSInt16Type,
         300,
         0,
         kCFNumberSInt16Type,
         2,
         false,
         {true, 300},
         {true, 300},
         {true, 300}},
        {"32-bit -5", kCFNumberSInt32Type, -5, 0, kCFNumberSInt32Type, 4, false, {true, -5}, {true, -5}, {true, -5}},
        {"64-bit 3000000000",
         kCFNumberSInt64Type,
         3000000000,
         0,
         kCFNumberSInt64Type,
         8,
         false,
         {true, 3e9},
         {true, 3e9},
         {false, -1294967296}},
        {"64-bit 5", kCFNumberSInt64Type, 5, 0, kCFNumberSInt32Type, 4, false, {true, 5}, {true, 5}, {true, 5}},
        {"32-bit float 1.5",
         kCFNumberFloat32Type,
         0,
         1.5,
         kCFNumberFloat32Type,
         4,
         true,
         {true, 1.5},
         {false, 1},
         {false, 1}},
        {"64-bit float 2.0",
         kCFNumberFloat64Type,
         0,
         2.0,
         kCFNumberFloat64Type,
         8,
         true,
         {true, 2},
         {true, 2},
         {true, 2}},
        {"64-bit float 1e300",
         kCFNumberFloat64Type,
         0,
         1e300,
         kCFNumberFloat64Type,
         8,
         true,
         {true, 1e300},
         {false, kSaturated},
         {false, 2147483647}},
    };
    for (const Row &row : rows) {
        CAPTURE(row.title);
        const auto number = Make(row.type, row.integer, row.real);
        CHECK_EQ(Expect<Number>(number.Get()).StoredType(), row.stored);
        CHECK_EQ(CFNumberGetByteSize(number.Get()), row.size);
        CHECK_EQ(bool(CFNumberIsFloatType(number.Get())), row.isFloat);
        double asDouble = 0;
        CHECK_EQ(bool(CFNumberGetValue(number.Get(), kCFNumberDoubleType, &asDouble)), row.asDouble.whole);
        CHECK_EQ(asDouble, row.asDouble.value);
        std::int64_t asSInt64 = 0;
        CHECK_EQ(bool(CFNumberGetValue(number.Get(), kCFNumberSInt64Type, &asSInt64)), row.asSInt64.whole);
        CHECK_EQ(static_cast<double>(asSInt64), row.asSInt64.value);
        long asLong = 0;
        CHECK_EQ(bool(CFNumberGetValue(number.Get(), kCFNumberLongType, &asLong)), row.asLong.whole);
        CHECK_EQ(static_cast<double>(asLong), row.asLong.value);
    }
}

TEST_CASE_FIXTURE(Balanced,
                  "Integers from -1 to 12 share one stored form whatever they were made as; their neighbours do not") {
    for (int value = -3; value <= 14; ++value) {
        CAPTURE(value);
        const bool shared = value >= -1 && value <= 12;
        for (CFNumberType type : {kCFNumberSInt8Type, kCFNumberSInt16Type, kCFNumberSInt64Type}) {
            const auto number = Make(type, value, 0);
            CHECK_EQ(Expect<Number>(number.Get()).StoredType(), shared ? kCFNumberSInt32Type : type);
        }
    }
}

TEST_CASE_FIXTURE(Balanced, "The types named after C types are the fixed ones of a 32-bit program") {
    CHECK_EQ(StoredForm(kCFNumberCharType), kCFNumberSInt8Type);
    CHECK_EQ(StoredForm(kCFNumberShortType), kCFNumberSInt16Type);
    CHECK_EQ(StoredForm(kCFNumberIntType), kCFNumberSInt32Type);
    CHECK_EQ(StoredForm(kCFNumberLongType), kCFNumberSInt32Type);
    CHECK_EQ(StoredForm(kCFNumberLongLongType), kCFNumberSInt64Type);
    CHECK_EQ(StoredForm(kCFNumberFloatType), kCFNumberFloat32Type);
    CHECK_EQ(StoredForm(kCFNumberDoubleType), kCFNumberFloat64Type);
    CHECK_EQ(StoredForm(kCFNumberCFIndexType), kCFNumberSInt32Type);
    CHECK_EQ(StoredForm(kCFNumberNSIntegerType), kCFNumberSInt32Type);
    CHECK_EQ(StoredForm(kCFNumberCGFloatType), kCFNumberFloat32Type);
    CHECK_EQ(RefusalOf([] { StoredForm(static_cast<CFNumberType>(17)); }), "no number has the type 17");
}

TEST_CASE_FIXTURE(Balanced, "A number with more digits than a double holds reads as a double with a loss") {
    const auto number = MakeNumber((std::int64_t{1} << 53) + 1);
    double value = 0;
    CHECK_FALSE(CFNumberGetValue(number.Get(), kCFNumberDoubleType, &value));
    CHECK_EQ(value, 9007199254740992.0);
    const auto largest = MakeNumber(std::numeric_limits<std::int64_t>::max());
    CHECK_FALSE(CFNumberGetValue(largest.Get(), kCFNumberDoubleType, &value));
    const auto smallest = MakeNumber(std::numeric_limits<std::int64_t>::min());
    CHECK(CFNumberGetValue(smallest.Get(), kCFNumberDoubleType, &value));
}

TEST_CASE_FIXTURE(Balanced,
                  "A float beyond the range of an integer reads as the nearest end of it, and what is no number as 0") {
    std::int64_t wide = 0;
    std::int8_t narrow = 0;
    CHECK_FALSE(CFNumberGetValue(MakeNumber(-1e300).Get(), kCFNumberSInt64Type, &wide));
    CHECK_EQ(wide, std::numeric_limits<std::int64_t>::min());
    CHECK_FALSE(CFNumberGetValue(MakeNumber(128.0).Get(), kCFNumberSInt8Type, &narrow));
    CHECK_EQ(narrow, 127);
    CHECK(CFNumberGetValue(MakeNumber(-128.0).Get(), kCFNumberSInt8Type, &narrow));
    CHECK_EQ(narrow, -128);
    CHECK_FALSE(CFNumberGetValue(MakeNumber(std::nan("")).Get(), kCFNumberSInt64Type, &wide));
    CHECK_EQ(wide, 0);
}

TEST_CASE_FIXTURE(Balanced, "Numbers of equal value are equal and hash alike, whatever their form") {
    const auto integer = MakeNumber(std::int64_t{2});
    const auto real = MakeNumber(2.0);
    CHECK(CFEqual(integer.Get(), real.Get()));
    CHECK_EQ(CFHash(integer.Get()), CFHash(real.Get()));
    CHECK_FALSE(CFEqual(integer.Get(), MakeNumber(2.5).Get()));
    CHECK_FALSE(CFEqual(MakeNumber((std::int64_t{1} << 53) + 1).Get(), MakeNumber(std::int64_t{1} << 53).Get()));
}

TEST_CASE_FIXTURE(Balanced, "Booleans are two singletons") {
    CHECK(CFBooleanGetValue(kCFBooleanTrue));
    CHECK_FALSE(CFBooleanGetValue(kCFBooleanFalse));
    CHECK_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
    CHECK_EQ(CFGetTypeID(kCFNull), CFNullGetTypeID());
}
