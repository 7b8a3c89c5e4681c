#include "tests/simulator/host/fixture.h"

#include <csignal>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

namespace tests {

namespace {

void *Create(int32_t elementType, int32_t upperBound) {
    return Ask<void *(int32_t, int32_t)>("RuntimeArrayCreateSingleDimBoundedArray")(elementType, upperBound);
}

void *StorageOf(const void *array) {
    void *storage = nullptr;
    std::memcpy(&storage, static_cast<const char *>(array) + 28, sizeof storage);
    return storage;
}

HostOptions Hidden() {
    HostOptions options;
    options.directArrayStorage = false;
    return options;
}

} // namespace

TEST_CASE("An array of strings or objects is made with its upper bound and nil elements") {
    HostUnderTest host;
    for (int32_t type : {3, 4}) {
        void *array = Create(type, 2);
        CHECK(Ask<int32_t(void *)>("RuntimeUBound")(array) == 2);
        void *empty = Create(type, -1);
        CHECK(Ask<int32_t(void *)>("RuntimeUBound")(empty) == -1);
        UnlockObject(array);
        UnlockObject(empty);
    }
    CHECK(Contains(ReasonOfStop([] { Create(5, 0); }), "element type 5"));
    CHECK(Contains(ReasonOfStop([] { Create(3, -2); }), "upper bound -2"));
}

TEST_CASE("Strings are inserted in their places, each with a reference of the array's own") {
    HostUnderTest host;
    Object array = host.NewArray("string", {"x"});
    for (const char *text : {"a", "b"}) {
        void *string = host.NewString({text});
        auto insert = ElementFunction<void(void *, int32_t, void *)>("PluginStringArrayInsertProc", array.Address());
        insert(array.Address(), array.UpperBound(), string);
        UnlockString(string);
    }
    auto insert = ElementFunction<void(void *, int32_t, void *)>("RuntimeArrayDirectGetInsertProc", array.Address());
    insert(array.Address(), 3, nullptr);
    CHECK(array.As<std::string>() == std::vector<std::string>{"a", "b", "x", ""});
    CHECK(array.At(3).IsNil());
    CHECK(host.Raised().empty());
}

TEST_CASE("Objects are inserted, read with a reference for the reader, and replaced") {
    HostUnderTest host;
    Object array = host.NewArray("variant");
    Object date = host.NewDate({}), other = host.NewDate({});
    ElementFunction<void(void *, int32_t, void *)>("PluginObjectArrayInsertProc", array.Address())(array.Address(), 0,
                                                                                                   date.Address());
    CHECK(date.References() == 2);
    auto get = ElementFunction<void *(void *, int32_t)>("PluginObjectArrayGetProc", array.Address());
    CHECK(get(array.Address(), 0) == date.Address());
    CHECK(date.References() == 3);
    UnlockObject(date.Address());
    auto set = ElementFunction<void(void *, void *, int32_t)>("PluginObjectArraySetProc", array.Address());
    set(array.Address(), other.Address(), 0);
    CHECK(date.References() == 1);
    CHECK(other.References() == 2);
    set(array.Address(), nullptr, 0);
    CHECK(other.References() == 1);
    CHECK(array.At(0).IsNil());
}

TEST_CASE("The set function's order of arguments is the host's, and the other order stops it") {
    for (SetterOrder order : {SetterOrder::kValueThenIndex, SetterOrder::kIndexThenValue}) {
        HostOptions options;
        options.setterOrder = order;
        HostUnderTest host(options);
        Object array = host.NewArray("variant", {nullptr, nullptr});
        Object date = host.NewDate({});
        auto set = ElementFunction<void(void *, uint32_t, uint32_t)>("RuntimeArrayDirectGetSetProc", array.Address());
        const auto handle = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(date.Address()));
        const bool valueFirst = order == SetterOrder::kValueThenIndex;
        set(array.Address(), valueFirst ? handle : 1, valueFirst ? 1 : handle);
        CHECK(array.At(1).As<Object>() == date);
        CHECK(Contains(ReasonOfStop([&] { set(array.Address(), valueFirst ? 1 : handle, valueFirst ? handle : 1); }),
                       valueFirst ? "the element, then the index" : "the index, then the element"));
    }
}

TEST_CASE("Every kind of element is read through its own service and through the common one") {
    HostUnderTest host(Hidden());
    auto check = [](const Object &array, const char *service, auto expected) {
        CAPTURE(service);
        using Getter = decltype(expected)(void *, int32_t);
        for (const char *name : {service, "RuntimeArrayDirectGetGetProc"})
            CHECK(ElementFunction<Getter>(name, array.Address())(array.Address(), 1) == expected);
    };
    check(host.NewArray("integer", {1, -2}), "PluginIntegerArrayGetProc", int32_t{-2});
    check(host.NewArray("int64", {int64_t{1}, int64_t{1} << 40}), "PluginInt64ArrayGetProc", int64_t{1} << 40);
    check(host.NewArray("single", {1.0f, 2.5f}), "PluginSingleArrayGetProc", 2.5f);
    check(host.NewArray("double", {1.0, 2.5}), "PluginDoubleArrayGetProc", 2.5);
    Object lit = host.NewArray("boolean", {true, false});
    auto get = ElementFunction<uint32_t(void *, int32_t)>("PluginBooleanArrayGetProc", lit.Address());
    CHECK(LowByte(get(lit.Address(), 0)));
    CHECK_FALSE(LowByte(get(lit.Address(), 1)));
    CHECK(get(lit.Address(), 1) != 0);
}

TEST_CASE("A service for one kind of element refuses an array of another") {
    HostUnderTest host;
    Object numbers = host.NewArray("integer");
    auto factory = Ask<Host::Function(void *)>("PluginStringArrayGetProc");
    CHECK(Contains(ReasonOfStop([&] { factory(numbers.Address()); }), "integer() #1"));
    Object texts = host.NewArray("string");
    auto insert = ElementFunction<void(void *, int32_t, void *)>("PluginStringArrayInsertProc", texts.Address());
    CHECK(ReasonOfStop([&] { insert(texts.Address(), 0, numbers.Address()); }) != "");
}

TEST_CASE("An index outside the array raises and does nothing") {
    HostUnderTest host;
    Object texts = host.NewArray("string", {"a"});
    auto read = Ask<void *(void *, int32_t)>("RuntimeDirectReadStringArray");
    CHECK(read(texts.Address(), 1) == nullptr);
    CHECK(read(texts.Address(), -1) == nullptr);
    auto insert = ElementFunction<void(void *, int32_t, void *)>("PluginStringArrayInsertProc", texts.Address());
    insert(texts.Address(), 2, nullptr);
    CHECK(texts.UpperBound() == 0);
    CHECK(host.TakeRaised().size() == 3);
    void *first = read(texts.Address(), 0);
    CHECK(host.ReadString(first).bytes == "a");
    UnlockString(first);
}

TEST_CASE("Below 2016.0 the storage of an array can be read and written in place") {
    HostUnderTest host(2015.4);
    Object one = host.NewDate({}), other = host.NewDate({});
    Object array = host.NewArray("date", {one, nullptr});
    auto *elements = static_cast<void **>(StorageOf(array.Address()));
    REQUIRE(elements != nullptr);
    CHECK(elements[0] == one.Address());
    CHECK(elements[1] == nullptr);
    Ask<void(void *)>("REALLockObject")(other.Address());
    elements[1] = other.Address();
    CHECK(array.At(1).As<Object>() == other);
    CHECK(host.Balance().empty());
    Object lit = host.NewArray("boolean", {false, true});
    CHECK(static_cast<unsigned char *>(StorageOf(lit.Address()))[1] == 1);
}

TEST_CASE("The storage word follows the storage when the array grows") {
    HostUnderTest host(2013.04);
    Object array = host.NewArray("string");
    for (int i = 0; i < 1000; ++i)
        array.Append(std::to_string(i));
    auto *elements = static_cast<void **>(StorageOf(array.Address()));
    CHECK(host.ReadString(elements[999]).bytes == "999");
    array.Resize(9);
    CHECK(host.Alive("string") == 10);
}

TEST_CASE("A host that hides its storage shows null there") {
    HostUnderTest host(Hidden());
    CHECK(StorageOf(host.NewArray("string", {"a"}).Address()) == nullptr);
}

TEST_CASE("From 2016.0 on looking for an array's storage leads to a fault") {
    HostUnderTest host(2016.0);
    Object array = host.NewArray("string", {"a"});
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGSEGV, SIG_DFL);
        void *const volatile *word =
            reinterpret_cast<void *const volatile *>(static_cast<char *>(array.Address()) + 28);
        [](void *const volatile *storage) __attribute__((no_sanitize("address"))) {
            auto *trap = static_cast<const volatile char *>(*storage);
            [[maybe_unused]] char byte = *trap;
        }
        (word);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    CHECK(WIFSIGNALED(status));
    CHECK(array.As<std::string>() == std::vector<std::string>{"a"});
}

TEST_CASE("An array answers with its element's code plus 4096") {
    HostUnderTest host;
    struct Row {
        const char *type;
        int32_t code;
    };
    for (const Row &row : {Row{"integer", 4098}, Row{"int32", 4098}, Row{"int64", 4099}, Row{"single", 4100},
                           Row{"double", 4101}, Row{"date", 4103}, Row{"string", 4104}, Row{"variant", 4105},
                           Row{"folderitem", 4105}, Row{"boolean", 4107}}) {
        CAPTURE(row.type);
        CHECK(host.NewArray(row.type).TypeCode() == row.code);
    }
}

TEST_CASE("An array takes only what its type declares") {
    HostUnderTest host;
    CHECK_THROWS_AS(host.NewArray("string", {1}), ProgramError);
    CHECK_THROWS_AS(host.NewArray("date", {host.NewDictionary()}), ProgramError);
    CHECK_THROWS_AS(host.NewArray("boolean", {1}), ProgramError);
    CHECK(host.NewArray("variant", {1, "a", nullptr, host.NewDate({})}).UpperBound() == 3);
}

} // namespace tests
