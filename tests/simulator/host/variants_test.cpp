#include "tests/simulator/host/fixture.h"

namespace tests {

namespace {

int32_t VarType(const Object &variant) {
    return LoadGlobal<int32_t(void *)>("VarType(value As Variant) As Int32")(variant.Address());
}

/// What a property of a variant gives, or nothing when it cannot be read.
template <class T> std::optional<T> Property(const char *service, const Object &object, const char *name) {
    T result = {};
    if (!LowByte(Ask<uint32_t(void *, const char *, T *)>(service)(object.Address(), name, &result)))
        return std::nullopt;
    return result;
}

std::string TextOf(const Host &host, const Object &variant) {
    void *string = Ask<void *(void *)>("VariantToString")(variant.Address());
    if (!string)
        return "nil";
    std::string text = host.ReadString(string).bytes;
    UnlockString(string);
    return text;
}

} // namespace

TEST_CASE("Every kind of value has its type code, boxed or being its own variant") {
    HostUnderTest host;
    CHECK(VarType(host.Box(nullptr)) == 0);
    CHECK(VarType(host.Box(7)) == 2);
    CHECK(VarType(host.Box(int64_t{7})) == 3);
    CHECK(VarType(host.Box(1.5f)) == 4);
    CHECK(VarType(host.Box(1.5)) == 5);
    CHECK(VarType(host.NewVariant(6, 1.5)) == 6);
    CHECK(VarType(host.NewDate({})) == 7);
    CHECK(VarType(host.Box("text")) == 8);
    CHECK(VarType(host.NewDictionary()) == 9);
    CHECK(VarType(host.NewFolderItem("/")) == 9);
    CHECK(VarType(host.Box(true)) == 11);
    CHECK(VarType(host.Box(Color{0xFF8000})) == 16);
    CHECK(VarType(host.NewArray("string")) == 4104);
    CHECK(VarType(host.NewVariant(4102, "text")) == 4102);
}

TEST_CASE("The type code is also the property Type") {
    HostUnderTest host;
    CHECK(Property<int32_t>("REALGetPropValueInteger", host.Box(7), "Type") == 2);
    CHECK(Property<int32_t>("REALGetPropValueInt", host.NewDate({}), "Type") == 7);
    CHECK(Property<int32_t>("REALGetPropValueInt", host.NewArray("boolean"), "type") == 4107);
}

TEST_CASE("Making a variant gives a new object with the value") {
    HostUnderTest host;
    void *text = host.NewString({"\xE9", kISOLatin1});
    struct Row {
        void *variant;
        Value value;
    };
    for (const Row &row : {Row{Ask<void *(void *)>("StringToVariant")(text), Value(Text{"\xE9", kISOLatin1})},
                           Row{Ask<void *(uint32_t)>("BooleanToVariant")(0xABCDEF01), Value(true)},
                           Row{Ask<void *(uint32_t)>("BooleanToVariant")(0xABCDEF00), Value(false)},
                           Row{Ask<void *(int32_t)>("IntegerToVariant")(-7), Value(-7)},
                           Row{Ask<void *(int32_t)>("Int32ToVariant")(8), Value(8)},
                           Row{Ask<void *(int64_t)>("Int64ToVariant")(int64_t{1} << 40), Value(int64_t{1} << 40)},
                           Row{Ask<void *(double)>("DoubleToVariant")(0.1), Value(0.1)}}) {
        CHECK(host.Unbox(host.Adopt(row.variant)) == row.value);
    }
    UnlockString(text);
}

TEST_CASE("A variant converts to every scalar through its service and its property alike") {
    HostUnderTest host;
    Object number = host.Box(3'000'000'000.5);
    CHECK(Ask<int64_t(void *)>("VariantToInt64")(number.Address()) == 3'000'000'000);
    CHECK(Property<int64_t>("REALGetPropValueInt64", number, "LongValue") == 3'000'000'000);
    CHECK(Ask<double(void *)>("VariantToDouble")(number.Address()) == 3'000'000'000.5);
    CHECK(Property<double>("REALGetPropValueDouble", number, "DoubleValue") == 3'000'000'000.5);
    Object small = host.Box(-2);
    CHECK(Ask<int32_t(void *)>("VariantToInt32")(small.Address()) == -2);
    CHECK(Property<int32_t>("REALGetPropValueInt", small, "Int32Value") == -2);
    CHECK(Ask<float(void *)>("VariantToSingle")(small.Address()) == -2.0f);
    CHECK(Property<float>("REALGetPropValueSingle", small, "SingleValue") == -2.0f);
    void *text = nullptr;
    CHECK(LowByte(
        Ask<uint32_t(void *, const char *, void **)>("REALGetPropValueString")(small.Address(), "StringValue", &text)));
    CHECK(host.ReadString(text).bytes == "-2");
    UnlockString(text);
}

TEST_CASE("A variant converts to text as the host writes values") {
    HostUnderTest host;
    CHECK(TextOf(host, host.Box("as it is")) == "as it is");
    CHECK(TextOf(host, host.Box(true)) == "True");
    CHECK(TextOf(host, host.Box(0.1)) == "0.1");
    CHECK(TextOf(host, host.Box(int64_t{-5})) == "-5");
    CHECK(TextOf(host, host.Box(Color{0xFF8000})) == "&h00FF8000");
    CHECK(TextOf(host, host.NewVariant(10, "any code")) == "any code");
    CHECK(TextOf(host, host.Box("")) == "");
    CHECK(TextOf(host, host.NewDate({})) == "nil");
    CHECK(TextOf(host, Object()) == "nil");
}

TEST_CASE("A variant may hold something else than its code says") {
    HostUnderTest host;
    Object odd = host.NewVariant(11, 256);
    CHECK(VarType(odd) == 11);
    CHECK(Ask<int32_t(void *)>("VariantToInt32")(odd.Address()) == 256);
    CHECK(host.Unbox(odd).As<Object>() == odd);
}

TEST_CASE("Numbers beyond an integer's range convert without a fault") {
    HostUnderTest host;
    auto toInt64 = Ask<int64_t(void *)>("VariantToInt64");
    CHECK(toInt64(host.Box(1e300).Address()) == INT64_MAX);
    CHECK(toInt64(host.Box(-1e300).Address()) == INT64_MIN);
    CHECK(toInt64(host.Box(__builtin_nan("")).Address()) == 0);
    CHECK(toInt64(host.Box("12 lamps").Address()) == 12);
}

TEST_CASE("Boxing and unboxing give the value back") {
    HostUnderTest host;
    Object date = host.NewDate({2014, 6, 30});
    for (const Value &value : {Value(nullptr), Value(true), Value(-7), Value(int64_t{1} << 40), Value(1.5f), Value(2.5),
                               Value("text"), Value(Color{1}), Value(date)})
        CHECK(host.Unbox(host.Box(value)) == value);
    CHECK(date.References() == 1);
}

TEST_CASE("A property that is not there, or of another type, cannot be read") {
    HostUnderTest host;
    CHECK_FALSE(Property<int32_t>("REALGetPropValueInteger", host.Box("x"), "Count"));
    CHECK_FALSE(Property<int64_t>("REALGetPropValueInt64", host.Box("x"), "Int32Value"));
    CHECK_FALSE(Property<int32_t>("REALGetPropValueInteger", host.NewDate({}), "Fortnight"));
}

TEST_CASE("Values compare by kind and content, texts by their characters") {
    CHECK(Value(1) != Value(1.0));
    CHECK(Value(1) != Value(int64_t{1}));
    CHECK(Value(nullptr) != Value(""));
    CHECK(Value(Text{"\xC3\xA9", kUTF8}) == Value(Text{"\xE9", kISOLatin1}));
    CHECK(Value(true).Describe() == "true");
    CHECK(Value("a").Describe() == "\"a\"");
    CHECK(Value(nullptr).As<std::string>() == "");
    CHECK(Value(nullptr).As<Object>().IsNil());
    CHECK_THROWS_WITH(Value(7).As<std::string>(), "7 is an integer, not a string");
}

} // namespace tests
