#include "tests/simulator/host/lamp_host.h"

namespace tests {

TEST_CASE("A method is called by its name with its declared arguments, missing ones by their presets") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    CHECK(lamp.Call<int32_t>("Add", 1, 2) == 3);
    CHECK(lamp.Call<int32_t>("add", 1) == 11);
    CHECK(lamp.Call<int32_t>("Add(a as integer, b as integer = 10) as integer", 5, 6) == 11);
}

TEST_CASE("Every scalar result comes back in its register") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    CHECK(lamp.Call<int64_t>("Twice", int64_t{4'000'000'000}) == 8'000'000'000);
    CHECK(lamp.Call<int64_t>("Twice", -5) == -10);
    CHECK(lamp.Call<double>("Half", 5.0) == 2.5);
    CHECK(lamp.Call<double>("Half", 5) == 2.5);
    CHECK(lamp.Call<float>("HalfSingle", 1.5f) == 0.75f);
    CHECK(lamp.Call<uint32_t>("Inverted", 0) == 0xFFFFFFFF);
    CHECK(lamp.Call<Value>("TurnOff").IsNil());
    lamp.Call<void>("TurnOff");
}

TEST_CASE("Only the low byte of a boolean result counts") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    CHECK_FALSE(lamp.Call<bool>("IsBright"));
    static_cast<LampData *>(lamp.Data())->brightness = 200;
    CHECK(lamp.Get<bool>("IsBright"));
    CHECK(lamp.Call<bool>("Negated", false));
    CHECK_FALSE(lamp.Call<bool>("Negated", true));
}

TEST_CASE("An overload is chosen by the types of the arguments") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    CHECK(lamp.Call<std::string>("Describe", "x") == "a text");
    CHECK(lamp.Call<std::string>("Describe", 1) == "an integer");
    CHECK(lamp.Call<std::string>("Describe", 1.5) == "a double");
    CHECK(lamp.Call<std::string>("Describe", lamp) == "a lamp");
    CHECK(lamp.Call<std::string>("Describe", host.NewArray("string")) == "an array of texts");
    CHECK(lamp.Call<std::string>("Describe", host.NewArray("integer")) == "a variant");
    CHECK(lamp.Call<std::string>("Describe", true) == "a variant");
    CHECK(lamp.Call<std::string>("Describe", host.NewDate({2014, 6, 30})) == "a variant");
}

TEST_CASE("A nil argument fits every counted type, and the whole declaration settles which is meant") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    CHECK(
        Contains(ReasonOfRefusal([&] { lamp.Call("Describe", nullptr); }), "more than one Lamp.Describe takes (nil)"));
    CHECK(lamp.Call<std::string>("Describe(what as Lamp) as string", nullptr) == "no lamp");
}

TEST_CASE("Calls that a compiler would refuse never reach the plugin") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    CHECK(ReasonOfRefusal([&] { lamp.Call("Jump"); }) == "there is no Lamp.Jump");
    CHECK(ReasonOfRefusal([&] { lamp.Call("Add", "1", 2); }) == "no Lamp.Add takes (\"1\", 2)");
    CHECK(ReasonOfRefusal([&] { lamp.Call("Add"); }) == "no Lamp.Add takes ()");
    CHECK(ReasonOfRefusal([&] { lamp.Call("Add", 1, 2, 3); }) == "no Lamp.Add takes (1, 2, 3)");
    CHECK(ReasonOfRefusal([&] { lamp.Call("Inverted", -1); }) == "no Lamp.Inverted takes (-1)");
    CHECK(ReasonOfRefusal([&] { lamp.Call("Add", 1.0, 2); }) == "no Lamp.Add takes (1, 2)");
    CHECK(ReasonOfRefusal([&] { lamp.Call("HalfSingle", 1.5); }) == "no Lamp.HalfSingle takes (1.5)");
    CHECK(ReasonOfRefusal([&] { lamp.Call("EchoTexts", host.NewArray("variant")); }) != "");
    CHECK(ReasonOfRefusal([&] { lamp.Call<bool>("Add", 1, 2); }) == "3 is an integer, not a boolean");
    CHECK(ReasonOfRefusal([&] { host.SharedWith("Candle", "Sum", {}); }) == "the host has no class Candle");
}

TEST_CASE("Shared methods have no instance") {
    LampHost host;
    CHECK(host.Shared<int32_t>("Lamp", "Sum", 20, 22) == 42);
}

TEST_CASE("Stored properties are read and written in the instance's data") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    lamp.Set("Handle", 1234);
    CHECK(lamp.Get<int32_t>("Handle") == 1234);
    CHECK(DataOf(lamp.Address())->handle == 1234);
    CHECK(ReasonOfRefusal([&] { lamp.Set("Handle", "x"); }) == "Lamp.Handle as Integer does not take \"x\"");
}

TEST_CASE("A stored variant or string holds one reference, which the plugin's destructor gives up") {
    LampHost host;
    Object date = host.NewDate({2014, 6, 30});
    {
        Object lamp = host.Create("Lamp");
        lamp.Set("Tag", date);
        CHECK(date.References() == 2);
        CHECK(lamp.Get<Object>("Tag") == date);
        lamp.Set("Note", "remember");
        CHECK(lamp.Get<std::string>("Note") == "remember");
        CHECK(host.Balance().empty());
        lamp.Set("Note", "forget");
        lamp.Set("Tag", "a text");
        CHECK(date.References() == 1);
        CHECK(lamp.Get<std::string>("Tag") == "a text");
    }
    CHECK(lampsDestroyed == 1);
    CHECK(host.Alive("string") == 0);
    CHECK(host.Alive("variant") == 0);
}

TEST_CASE("Computed properties get the instance and their parameter") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    lamp.Set("Handle", 3);
    CHECK(lamp.Get<std::string>("Title") == "lamp 3/5");
    CHECK(ReasonOfRefusal([&] { lamp.Set("Title", "x"); }) == "Lamp.Title is read-only");
    lamp.Set("Brightness", 40);
    CHECK(lamp.Get<int32_t>("Brightness") == 41);
}

TEST_CASE("A property-like pair reads through its function and assigns through its setter function") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    lamp.Set("Handle", 70);
    Object shade = lamp.Get<Object>("Shade");
    CHECK(shade.Get<int32_t>("Width") == 70);
    shade.Set("Width", 80);
    CHECK(lamp.Get<int32_t>("Handle") == 70);
    lamp.Set("Shade", shade);
    CHECK(lamp.Get<int32_t>("Handle") == 80);
    lamp.Set("Shade", nullptr);
    CHECK(lamp.Get<int32_t>("Handle") == 80);
    CHECK(ReasonOfRefusal([&] { lamp.Set("Shade", lamp); }) != "");
}

TEST_CASE("Objects, variants and arrays go in as borrowed references and come out as owned ones") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    CHECK(lamp.Call<int32_t>("Add", 1, 1) == 2);
    Object other = lamp.Call<Object>("Another");
    CHECK(other.References() == 1);
    CHECK(other.Get<int32_t>("Handle") == 1);
    CHECK(lamp.Call<Value>("Echo", 7) == Value(7));
    CHECK(lamp.Call<Value>("Echo", "text") == Value("text"));
    CHECK(lamp.Call<Value>("Echo", nullptr).IsNil());
    CHECK(lamp.Call<Object>("Echo", other) == other);
    CHECK(other.References() == 1);
    Object texts = lamp.Call<Object>("EchoTexts", host.NewArray("string", {"a", "b"}));
    CHECK(texts.As<std::string>() == std::vector<std::string>{"a", "b"});
    CHECK(lamp.Get<Value>("NoText").IsNil());
    CHECK(lamp.Get<std::string>("NoText") == "");
}

TEST_CASE("An array from the plugin holds what its declaration says") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    Object others = lamp.Call<Object>("Others", 3);
    CHECK(others.ClassName() == "Lamp()");
    CHECK(others.UpperBound() == 2);
    Object third = others.At(2).As<Object>();
    CHECK(third.References() == 2);
    CHECK(lamp.Call<Object>("Others", 0).UpperBound() == -1);
    StopsThrow stopsThrow;
    CHECK_THROWS_AS(lamp.Call("WrongOthers", 1), Stopped);
    host.ExpectLeft("variant()", 1); // what the stop cut off
}

TEST_CASE("A class's constructor and destructor functions run once for each instance") {
    LampHost host;
    {
        Object lamp = host.Create("Lamp");
        Object same = lamp;
        CHECK(lamp.References() == 2);
        CHECK(lampsConstructed == 1);
        lamp.Release();
        CHECK(lampsDestroyed == 0);
    }
    CHECK(lampsDestroyed == 1);
    CHECK(host.Create("Candle").IsNil());
}

TEST_CASE("Moving a class's data moves it for instances made from then on") {
    LampHost host;
    host.SetForSystemUse("Lamp", 48);
    CHECK(LampRecord()[4] == 48);
    Object lamp = host.Create("Lamp");
    CHECK(static_cast<char *>(lamp.Data()) == static_cast<char *>(lamp.Address()) + 48);
    lamp.Set("Handle", 9);
    CHECK(lamp.Get<std::string>("Title") == "lamp 9/5");
    CHECK(host.Arrived().Class("Lamp").forSystemUse == 48);
}

TEST_CASE("A result that is no live thing of the host stops it, with the story of the dead one") {
    LampHost host;
    Object lamp = host.Create("Lamp");
    void *address = nullptr;
    {
        Object gone = host.NewDate({});
        address = gone.Address();
    }
    DataOf(lamp.Address())->tag = address;
    std::string reason = ReasonOfStop([&] { lamp.GetValue("Tag"); });
    CHECK(Contains(reason, "Date #"));
    CHECK(Contains(reason, "is gone; it was made by the program"));
    DataOf(lamp.Address())->tag = nullptr;
}

} // namespace tests
