#include "simulator/host/entities/heap.h"
#include "tests/simulator/host/fake_plugin.h"
#include "tests/simulator/host/fixture.h"

#include <algorithm>

namespace tests {

namespace {

/// Writes down all that it hears, indented.
struct Ear : CallListener {
    void Begins(Callee callee, const std::string &call) override {
        constexpr const char *kNames[] = {"host", "program", "plugin"};
        Note(std::string(kNames[static_cast<int>(callee)]) + ": " + call);
        ++depth;
    }
    void Ends(const std::string &result) override {
        --depth;
        if (!result.empty())
            Note("gives " + result);
    }
    void Asked(const std::string &name, bool answered) override { Note((answered ? "has " : "lacks ") + name); }
    bool TellsApart() const override { return true; }

    void Note(const std::string &line) { lines.push_back(std::string(2 * depth, ' ') + line); }

    size_t depth = 0;
    std::vector<std::string> lines;
};

} // namespace

TEST_CASE("A listener hears the plugin's functions called, in them the host's, and what each gives") {
    HostUnderTest host;
    host.Start(FakePluginMain);
    const Object lamp = host.Create("Lamp");
    const std::string self = Value(lamp).Describe();
    Ear ear;
    host.Listen(&ear);
    CHECK(lamp.CallWith("Add", {1}) == Value(11));
    CHECK(lamp.CallWith("Describe", {1}) == Value("an integer"));
    host.Listen(nullptr);
    REQUIRE(ear.lines.size() >= 5);
    CHECK(ear.lines[0] == "plugin: " + self + ".Add(1, 10)");
    CHECK(ear.lines[1] == "gives 11");
    CHECK(ear.lines[2] == "plugin: " + self + ".Describe(1)");
    CHECK(std::ranges::count(ear.lines, "  gives \"an integer\"") == 1);
    CHECK(ear.lines.back() == "gives \"an integer\"");
}

TEST_CASE("A listener hears an event's handler called, with its arguments, and what the handler calls") {
    HostUnderTest host;
    host.Start(FakePluginMain);
    const Object lamp = host.Create("Lamp"), names = host.NewArray("string", {"desk"});
    const std::string self = Value(lamp).Describe();
    lamp.OnEvent("Dimmed", [](const EventCall &event) { event.object.CallWith("Add", {1}); });
    Ear ear;
    host.Listen(&ear);
    RaiseDimmed(lamp.Address(), names.Address(), -3, 0.25);
    host.Listen(nullptr);
    host.RethrowFromHandlers();
    const auto handler =
        std::ranges::find(ear.lines, "program: " + self + ".Dimmed(" + Value(names).Describe() + ", -3, 0.25)");
    REQUIRE(ear.lines.end() - handler == 3);
    CHECK(handler[1] == "  plugin: " + self + ".Add(1, 10)");
    CHECK(handler[2] == "  gives 11");
}

TEST_CASE("A listener hears which services are asked for, and whether they are there") {
    HostUnderTest host(2011.0);
    Ear ear;
    host.Listen(&ear);
    CHECK(IsOffered("REALLockString"));
    CHECK_FALSE(IsOffered("REALGetStringCFString"));
    CHECK_FALSE(IsOffered("NoSuchService"));
    host.Listen(nullptr);
    CHECK(ear.lines ==
          std::vector<std::string>{"has REALLockString", "lacks REALGetStringCFString", "lacks NoSuchService"});
}

TEST_CASE("A call that ends with an exception has ended for a listener too") {
    HostUnderTest host;
    auto newInstance = Ask<void *(const char *)>("PluginNewInstance");
    host.ThrowFrom("PluginNewInstance", std::runtime_error("no"));
    Ear ear;
    host.Listen(&ear);
    CHECK_THROWS_AS(newInstance("Date"), std::runtime_error);
    host.Listen(nullptr);
    CHECK(ear.lines == std::vector<std::string>{"host: PluginNewInstance(\"Date\")"});
    CHECK(ear.depth == 0);
}

TEST_CASE("A listener that tells things apart hears numbers of objects, held values, truths, and codes") {
    HostUnderTest host;
    const Object date = host.NewDate({.year = 2014}), array = host.NewArray("string", {"a", "b"});
    void *const string = host.NewString({"text"});
    Ear ear;
    host.Listen(&ear);
    Ask<int32_t(void *)>("RuntimeUBound")(array.Address());
    Ask<uint32_t(void *, const char *, int32_t)>("REALSetPropValueInteger")(date.Address(), "Year", 1999);
    Ask<void(void *, uint32_t)>("REALSetStringEncoding")(string, kUTF8);
    host.Listen(nullptr);
    UnlockString(string);
    std::erase_if(ear.lines, [](const std::string &line) { return line.starts_with("has "); });
    const auto numberOf = [](const Object &object) { return std::to_string(object.Get()->number); };
    CHECK(ear.lines ==
          std::vector<std::string>{"host: RuntimeUBound(string() #" + numberOf(array) + "[2])", "gives 1",
                                   "host: REALSetPropValueInteger(Date #" + numberOf(date) + ", \"Year\", 1999)",
                                   "gives true", "host: REALSetStringEncoding(\"text\", 0x08000100)"});
}

} // namespace tests
