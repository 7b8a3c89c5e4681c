#include "simulator/macos/CoreFoundation/number.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <cmath>
#include <limits>
#include <vector>

using namespace sim::macos;
using namespace tests;

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

TEST_CASE_FIXTURE(Balanced, "A float beyond the range of an integer, or that is no number, is read with a loss") {
    std::int64_t wide = 0;
    std::int8_t narrow = 0;
    CHECK_FALSE(CFNumberGetValue(MakeNumber(-1e300).Get(), kCFNumberSInt64Type, &wide));
    CHECK_FALSE(CFNumberGetValue(MakeNumber(128.0).Get(), kCFNumberSInt8Type, &narrow));
    CHECK(CFNumberGetValue(MakeNumber(-128.0).Get(), kCFNumberSInt8Type, &narrow));
    CHECK_EQ(narrow, -128);
    CHECK_FALSE(CFNumberGetValue(MakeNumber(std::nan("")).Get(), kCFNumberSInt64Type, &wide));
}

TEST_CASE_FIXTURE(Balanced, "Booleans are two singletons") {
    CHECK(CFBooleanGetValue(kCFBooleanTrue));
    CHECK_FALSE(CFBooleanGetValue(kCFBooleanFalse));
    CHECK_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
    CHECK_EQ(CFGetTypeID(kCFNull), CFNullGetTypeID());
}
