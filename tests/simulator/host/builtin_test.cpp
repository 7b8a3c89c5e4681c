#include "tests/simulator/host/fixture.h"

#include <cstring>

namespace tests {

namespace {

constexpr const char *kSetValue = "Value(key As Variant, Assigns _value As Variant)";
constexpr const char *kGetValue = "Value(key As Variant) As Variant";
constexpr const char *kGetKey = "Key(index As Integer) As Variant";
constexpr const char *kConstructDate =
    "Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as Integer = 0, "
    "minute as Integer = 0, second as Integer = 0";

} // namespace

TEST_CASE("A dictionary is filled and read through the methods loaded on it") {
    HostUnderTest host;
    Object dictionary = host.NewDictionary();
    auto set = LoadOn<void(void *, void *, void *)>(dictionary.Address(), kSetValue);
    auto get = LoadOn<void *(void *, void *)>(dictionary.Address(), kGetValue);
    auto key = LoadOn<void *(void *, int32_t)>(dictionary.Address(), kGetKey);
    Object name = host.Box("name"), value = host.Box(7);
    set(dictionary.Address(), name.Address(), value.Address());
    CHECK(name.References() == 2);
    CHECK(value.References() == 2);
    CHECK(dictionary.Get<int32_t>("Count") == 1);
    CHECK(key(dictionary.Address(), 0) == name.Address());
    CHECK(get(dictionary.Address(), name.Address()) == value.Address());
    UnlockObject(name.Address());
    UnlockObject(value.Address());
    CHECK(dictionary.Entries() == std::vector<std::pair<Value, Value>>{{"name", 7}});
}

TEST_CASE("A dictionary's methods must be loaded on that very dictionary") {
    HostOptions options;
    options.reuseAddresses = true;
    HostUnderTest host(options);
    void (*set)(void *, void *, void *) = nullptr;
    void *address = nullptr;
    {
        Object first = host.NewDictionary();
        address = first.Address();
        set = LoadOn<void(void *, void *, void *)>(address, kSetValue);
    }
    Object second = host.NewDictionary();
    REQUIRE(second.Address() == address);
    CHECK(Contains(ReasonOfStop([&] { set(address, nullptr, nullptr); }), "was not loaded on it"));
}

TEST_CASE("An equal key keeps its place and gets the new value") {
    HostUnderTest host;
    Object dictionary = host.NewDictionary({{"a", 1}, {2, "two"}, {nullptr, "nil"}, {host.NewDate({2014}), "date"}});
    dictionary.Store("a", 10);
    dictionary.Store(2.0, "two again");
    dictionary.Store(nullptr, nullptr);
    dictionary.Store(host.NewDate({2014}), "same date");
    CHECK(dictionary.Get<int32_t>("Count") == 4);
    CHECK(dictionary.Lookup("a") == Value(10));
    CHECK(dictionary.Lookup(int64_t{2}) == Value("two again"));
    CHECK(dictionary.Lookup(nullptr).IsNil());
    CHECK(dictionary.Lookup(host.NewDate({2014})) == Value("same date"));
    CHECK(dictionary.Lookup("A").IsNil());
    CHECK(dictionary.Entries()[1].first == Value(2));
}

TEST_CASE("A dictionary's key or value that is not there raises and gives nil") {
    HostUnderTest host;
    Object dictionary = host.NewDictionary();
    auto get = LoadOn<void *(void *, void *)>(dictionary.Address(), kGetValue);
    auto key = LoadOn<void *(void *, int32_t)>(dictionary.Address(), kGetKey);
    CHECK(get(dictionary.Address(), nullptr) == nullptr);
    CHECK(key(dictionary.Address(), 0) == nullptr);
    REQUIRE(host.Raised().size() == 2);
    CHECK(host.Raised()[0].className == "KeyNotFoundException");
    CHECK(host.TakeRaised()[1].className == "OutOfBoundsException");
    CHECK(host.Raised().empty());
}

TEST_CASE("A date keeps its fields as they are set, by constructor or one by one") {
    HostUnderTest host;
    auto newInstance = Ask<void *(const char *)>("PluginNewInstance");
    Object constructed = host.NewDate({});
    auto construct = LoadOn<void(void *, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t)>(constructed.Address(),
                                                                                                kConstructDate);
    construct(constructed.Address(), 2009, 2, 30, 12, 0, 59);
    CHECK(constructed.Date() == DateFields{2009, 2, 30, 12, 0, 59});
    void *date = newInstance("Date");
    auto set = Ask<uint32_t(void *, const char *, int32_t)>("REALSetPropValueInt");
    auto get = Ask<uint32_t(void *, const char *, int32_t *)>("REALGetPropValueInteger");
    int32_t expected = 1;
    for (const char *field : {"Year", "Month", "Day", "Hour", "Minute", "Second"}) {
        set(date, field, ++expected);
        int32_t read = 0;
        CHECK(LowByte(get(date, field, &read)));
        CHECK(read == expected);
    }
    CHECK(ReasonOfStop([&] { set(date, "Fortnight", 1); }) != "");
    UnlockObject(date);
}

TEST_CASE("An unreadable date fails every read and leaves the result alone") {
    HostUnderTest host;
    Object date = host.NewDate({2014});
    date.MakeDateUnreadable();
    int32_t year = -1;
    CHECK_FALSE(LowByte(
        Ask<uint32_t(void *, const char *, int32_t *)>("REALGetPropValueInteger")(date.Address(), "Year", &year)));
    CHECK(year == -1);
}

TEST_CASE("A memory block is made with its size, can be written, and can lie about its size") {
    HostUnderTest host;
    void *block = Ask<void *(int32_t)>("newMemoryBlock")(3);
    void *bytes = Ask<void *(void *)>("memoryBlockGetPtr")(block);
    std::memcpy(bytes, "abc", 3);
    auto getSize = Ask<int32_t(void *)>("memoryBlockGetSize");
    CHECK(getSize(block) == 3);
    UnlockObject(block);
    Object made = host.NewMemoryBlock("xyz");
    CHECK(made.Bytes() == "xyz");
    made.ReportSize(-1);
    CHECK(getSize(made.Address()) == -1);
    Object empty = host.NewMemoryBlock("");
    CHECK(Ask<void *(void *)>("memoryBlockGetPtr")(empty.Address()) == nullptr);
}

TEST_CASE("A memory block that cannot be had is null, or a thrown allocation failure") {
    HostUnderTest host;
    auto newBlock = Ask<void *(int32_t)>("newMemoryBlock");
    CHECK(newBlock(-1) == nullptr);
    CHECK(newBlock(0x7FFFFFFE) == nullptr);
    host.ThrowFrom("newMemoryBlock", std::bad_alloc());
    CHECK_THROWS_AS(newBlock(1), std::bad_alloc);
}

TEST_CASE("A class reference is found by name and tested with superclasses in mind") {
    HostOptions options;
    options.missingClasses = {"Dictionary"};
    HostUnderTest host(options);
    auto typeOf = Ask<const void *(const char *)>("pluginObjectType");
    auto isA = Ask<uint32_t(const void *, const void *)>("RuntimeObjectIsa");
    Object date = host.NewDate({});
    CHECK(LowByte(isA(date.Address(), typeOf("Date"))));
    CHECK_FALSE(LowByte(isA(date.Address(), typeOf("MemoryBlock"))));
    CHECK_FALSE(LowByte(isA(nullptr, typeOf("Date"))));
    CHECK_FALSE(LowByte(isA(host.NewArray("string").Address(), typeOf("Date"))));
    CHECK(typeOf("Dictionary") == nullptr);
    CHECK(Ask<void *(const char *)>("PluginNewInstance")("Dictionary") == nullptr);
    Object exception = host.Create("NilObjectException");
    CHECK(LowByte(isA(exception.Address(), typeOf("RuntimeException"))));
    CHECK(Contains(ReasonOfStop([&] { isA(date.Address(), date.Address()); }), "no class reference"));
}

TEST_CASE("A raised exception is kept as it was when it was raised") {
    HostUnderTest host;
    void *exception = Ask<void *(const char *)>("PluginNewInstance")("NilObjectException");
    void *message = host.NewString({"it is nil", kASCII});
    Ask<uint32_t(void *, const char *, void *)>("REALSetPropValueString")(exception, "Message", message);
    Ask<void(void *)>("RuntimeRaiseException")(exception);
    Ask<uint32_t(void *, const char *, int32_t)>("REALSetPropValueInteger")(exception, "ErrorNumber", 5);
    UnlockString(message);
    UnlockObject(exception);
    REQUIRE(host.Raised().size() == 1);
    const RaisedException &raised = host.Raised()[0];
    CHECK(raised.Is("NilObjectException", "it is nil"));
    CHECK(raised.messageEncoding == kASCII);
    CHECK_FALSE(raised.errorNumber.has_value());
}

TEST_CASE("Raising something that is no exception stops the host") {
    HostUnderTest host;
    Object date = host.NewDate({});
    CHECK(ReasonOfStop([&] { Ask<void(void *)>("RuntimeRaiseException")(date.Address()); }) != "");
}

} // namespace tests
