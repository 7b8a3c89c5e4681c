#include "tests/simulator/host/fixture.h"

namespace tests {

TEST_CASE("A host in balance says nothing") {
    HostUnderTest host;
    Object date = host.NewDate({});
    Object array = host.NewArray("date", {date, date});
    Object dictionary = host.NewDictionary({{"a", date}, {date, array}});
    CHECK(host.Balance().empty());
}

TEST_CASE("A reference that nobody gives up is named with the place where its thing was made") {
    HostUnderTest host;
    void *leaked = Ask<void *(const char *)>("PluginNewInstance")("Date");
    std::vector<std::string> findings = host.Balance();
    REQUIRE(findings.size() == 1);
    CHECK(findings[0] == "Date #1 has 1 reference that nobody gives up; made by PluginNewInstance (call 1)");
    UnlockObject(leaked);
    CHECK(host.Balance().empty());
}

TEST_CASE("Who asks for what is newly out of balance is told once of a reference, and again when there is another") {
    HostUnderTest host;
    CHECK(host.NewlyOutOfBalance().empty());
    void *leaked = Ask<void *(const char *)>("PluginNewInstance")("Date");
    const std::vector<std::string> one = {
        "Date #1 has 1 reference that nobody gives up; made by PluginNewInstance (call 1)"};
    CHECK(host.NewlyOutOfBalance() == one);
    CHECK(host.NewlyOutOfBalance().empty());
    CHECK(host.Balance() == one);
    Ask<void(void *)>("REALLockObject")(leaked);
    CHECK(
        host.NewlyOutOfBalance() ==
        std::vector<std::string>{"Date #1 has 2 references that nobody gives up; made by PluginNewInstance (call 1)"});
    UnlockObject(leaked);
    UnlockObject(leaked);
    CHECK(host.NewlyOutOfBalance().empty());
}

TEST_CASE("A leaked container excuses what it holds") {
    HostUnderTest host;
    Object array = host.NewArray("string", {"a", "b"});
    void *address = array.Address();
    Ask<void(void *)>("REALLockObject")(address);
    array.Release();
    CHECK(host.Balance().size() == 1);
    UnlockObject(address);
}

TEST_CASE("A reference given up once too often is found while its thing still lives") {
    HostUnderTest host;
    Object date = host.NewDate({});
    Object array = host.NewArray("date", {date});
    UnlockObject(date.Address());
    std::vector<std::string> findings = host.Balance();
    REQUIRE(findings.size() == 1);
    CHECK(Contains(findings[0], "lacks 1 reference that somebody holds"));
    Ask<void(void *)>("REALLockObject")(date.Address());
}

TEST_CASE("Unlocking a dead thing stops the host with its story") {
    HostUnderTest host;
    void *date = Ask<void *(const char *)>("PluginNewInstance")("Date");
    UnlockObject(date);
    std::string reason = ReasonOfStop([&] { UnlockObject(date); });
    CHECK(Contains(reason, "REALUnlockObject (call 2)"));
    CHECK(Contains(reason,
                   "Date #1 is gone; it was made by PluginNewInstance (call 1) and died in REALUnlockObject (call 1)"));
}

TEST_CASE("An invented handle stops the host, and so does a string where an object belongs") {
    HostUnderTest host;
    int word = 0;
    CHECK(Contains(ReasonOfStop([&] { UnlockObject(&word); }), "nothing of the host was ever there"));
    void *string = host.NewString({"x"});
    CHECK(Contains(ReasonOfStop([&] { UnlockObject(string); }), "was given string #1 as an object"));
    Object date = host.NewDate({});
    CHECK(Contains(ReasonOfStop([&] { UnlockString(date.Address()); }), "was given Date #2 as a string"));
    UnlockString(string);
}

TEST_CASE("Null is no one's reference") {
    HostUnderTest host;
    UnlockObject(nullptr);
    UnlockString(nullptr);
    Ask<void(void *)>("REALLockObject")(nullptr);
    Ask<void(void *)>("REALLockString")(nullptr);
}

TEST_CASE("A deliberate leak is expected by kind and number, and missed when it does not happen") {
    HostUnderTest host;
    host.ExpectLeft("Date", 1);
    CHECK(host.Balance() == std::vector<std::string>{"1 more leaked references of date were expected"});
    Ask<void *(const char *)>("PluginNewInstance")("Date");
    CHECK(host.Balance().empty());
    void *second = Ask<void *(const char *)>("PluginNewInstance")("Date");
    CHECK(host.Balance().size() == 1);
    UnlockObject(second);
    CHECK(host.Alive("date") == 1);
}

TEST_CASE("A dead address does not come back, unless the host reuses addresses") {
    {
        HostUnderTest host;
        void *first = host.NewDictionary().Address();
        for (int i = 0; i < 100; ++i)
            CHECK(host.NewDictionary().Address() != first);
    }
    HostOptions options;
    options.reuseAddresses = true;
    HostUnderTest host(options);
    void *first = host.NewDictionary().Address();
    CHECK(host.NewDictionary().Address() == first);
}

TEST_CASE("Arrays nested ten thousand deep are kept in balance and die without a fault") {
    HostUnderTest host;
    Object nested = host.NewArray("variant");
    for (int depth = 1; depth < 10'000; ++depth)
        nested = host.NewArray("variant", {nested});
    CHECK(host.Alive("variant()") == 10'000);
    CHECK(host.Balance().empty());
    nested.Release();
    CHECK(host.Alive("variant()") == 0);
}

TEST_CASE("Objects of the program count like everybody's references") {
    HostUnderTest host;
    Object date = host.NewDate({});
    Object copy = date;
    CHECK(date.References() == 2);
    Object moved = std::move(copy);
    CHECK(date.References() == 2);
    moved = date;
    CHECK(date.References() == 2);
    moved.Release();
    CHECK(date.References() == 1);
}

} // namespace tests
