// An item's attributes as host values: one, several at once, and their names.
#include <doctest/doctest.h>

#include "tests/spotlight/support/query_program.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

#include <algorithm>

using namespace tests;

namespace {

constexpr const char *kDictionarySetter = "Dictionary.Value(key As Variant, Assigns _value As Variant)";

struct Letter : QueryProgram {
    explicit Letter(HostOptions options = {}) : QueryProgram(std::move(options)) { Fill(); }
    explicit Letter(double version) : QueryProgram(version) { Fill(); }
    void Fill() {
        file = Add("letter");
        store.SetText(file, "kMDItemTitle", "A letter");
        store.SetNumber(file, "kMDItemNumberOfPages", 3);
        item = NewItem(file);
    }
    std::vector<std::string> KeysIn(const Object &dictionary) const {
        std::vector<std::string> keys;
        for (const auto &[key, value] : dictionary.Entries())
            keys.push_back(key.As<std::string>());
        std::sort(keys.begin(), keys.end());
        return keys;
    }
    File file = 0;
    Object item;
};

} // namespace

TEST_CASE("GetAttribute gives the converted value of an attribute") {
    AtUsualAges([&](double version) {
        Letter program(version);
        program.store.Set(program.file, "kMDItemStreamable", kCFBooleanTrue);
        const auto date = CFRef<CFDateRef>::Adopt(CFDateCreate(kCFAllocatorDefault, 425863859.9));
        program.store.Set(program.file, "kMDItemDueDate", date.Get());
        auto &host = program.Host();
        const auto value = [&](const char *name) {
            const Value given = program.item.Call("GetAttribute", name);
            return given.Is<Object>() ? host.Unbox(given.As<Object>()) : given;
        };
        CHECK(value("kMDItemTitle") == Value("A letter"));
        CHECK(value("kMDItemNumberOfPages") == Value(3));
        CHECK(value("kMDItemStreamable") == Value(true));
        CHECK(value("kMDItemDueDate").As<sim::host::Object>().Date() == sim::host::DateFields{2014, 6, 30, 23, 30, 59});
        CHECK(host.Raised().empty());
    });
}

TEST_CASE("GetAttribute of an attribute that the item lacks gives nil, without an exception") {
    Letter program;
    for (const char *name : {"kMDItemAlbum", "no such attribute", ""})
        CHECK(program.item.Call("GetAttribute", name).IsNil());
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("GetAttribute of a name that does not convert gives nil and does not ask for any attribute") {
    Letter program;
    {
        const Fault fault("MDItemCopyAttribute");
        CHECK(program.item.Call("GetAttribute", nullptr).IsNil());
        CHECK(program.item.Call("GetAttribute", kMalformed).IsNil());
        CHECK(fault.Failed() == 0);
    }
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("GetAttribute releases the value that it copied") {
    Letter program;
    const auto title = MakeString("A long enough title");
    program.store.Set(program.file, "kMDItemTitle", title.Get());
    const auto retained = CFGetRetainCount(title.Get());
    program.item.Call("GetAttribute", "kMDItemTitle");
    CHECK(CFGetRetainCount(title.Get()) == retained);
}

TEST_CASE("GetAttributes gives a dictionary of the attributes that the item has; the others are absent from it") {
    AtUsualAges([&](double version) {
        Letter program(version);
        const auto given = program.item.Call<Object>(
            "GetAttributes",
            program.Strings({"kMDItemTitle", "kMDItemAlbum", "kMDItemNumberOfPages", "kMDItemTitle", ""}));
        REQUIRE(given);
        CHECK(given.ClassName() == "Dictionary");
        CHECK(given.References() == 1);
        CHECK(program.KeysIn(given) == Names{"kMDItemNumberOfPages", "kMDItemTitle"});
        CHECK(given.Lookup("kMDItemTitle") == Value("A letter"));
        CHECK(given.Lookup("kMDItemNumberOfPages") == Value(3));
        CHECK(given.Lookup("kMDItemAlbum").IsNil());
        CHECK(program.Host().Raised().empty());
    });
}

TEST_CASE("GetAttributes without any name gives an empty dictionary") {
    Letter program;
    const auto given = program.item.Call<Object>("GetAttributes", program.Strings({}));
    REQUIRE(given);
    CHECK(given.Entries().empty());
}

TEST_CASE("GetAttributes of a nil array gives nil without an exception") {
    Letter program;
    CHECK(program.item.Call("GetAttributes", nullptr).IsNil());
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("GetAttributes gives nil where the framework has no names, no attributes or the host no dictionary") {
    Letter program;
    auto &host = program.Host();
    const auto names = program.Strings({"kMDItemTitle"});
    for (const char *call : {"CFArrayCreateMutable", "MDItemCopyAttributes"}) {
        CAPTURE(call);
        const Fault fault(call, 1);
        CHECK(program.item.Call("GetAttributes", names).IsNil());
        CHECK(fault.Failed() == 1);
    }
    host.ReturnNothing("PluginNewInstance");
    CHECK(program.item.Call("GetAttributes", names).IsNil());
    host.Mend("PluginNewInstance");
    CHECK(program.item.Call<Object>("GetAttributes", names).Entries().size() == 1);
    CHECK(host.Raised().empty());
}

TEST_CASE("GetAttributes on a host without the class Dictionary gives nil") {
    Letter program(HostOptions{.missingClasses = {"Dictionary"}});
    CHECK(program.item.Call("GetAttributes", program.Strings({"kMDItemTitle"})).IsNil());
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("GetAttributes on a host that offers no new instances gives nil") {
    Letter program(HostOptions{.withheld = {"PluginNewInstance"}});
    CHECK(program.item.Call("GetAttributes", program.Strings({"kMDItemTitle"})).IsNil());
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("Each dictionary that GetAttributes gives loads its methods afresh, also at the address of a dead one") {
    Letter program(HostOptions{.reuseAddresses = true});
    const auto names = program.Strings({"kMDItemTitle", "kMDItemNumberOfPages"});
    void *address = nullptr;
    for (int32_t loads = 1; loads <= 3; loads++) {
        const auto given = program.item.Call<Object>("GetAttributes", names);
        CHECK(given.Entries().size() == 2);
        CHECK(program.Host().RequestCount(kDictionarySetter) == loads);
        if (address)
            CHECK(given.Address() == address);
        address = given.Address();
    }
}

TEST_CASE("GetAttributes converts dictionaries among the attributes and goes on with its own") {
    Letter program;
    const auto inner = CFRef<CFMutableDictionaryRef>::Adopt(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    CFDictionarySetValue(inner.Get(), MakeString("in").Get(), kCFBooleanTrue);
    Names names;
    for (const char *name : {"a", "b", "c", "d", "e"}) {
        program.store.Set(program.file, name, inner.Get());
        program.store.SetText(program.file, std::string("text ") + name, name);
        names.insert(names.end(), {name, std::string("text ") + name});
    }
    const auto given = program.item.Call<Object>("GetAttributes", program.Strings(names));
    CHECK(given.Entries().size() == 10);
    for (const char *name : {"a", "b", "c", "d", "e"}) {
        CHECK(given.Lookup(name).As<Object>().Lookup("in") == Value(true));
        CHECK(given.Lookup(std::string("text ") + name) == Value(name));
    }
}

TEST_CASE("AttributeNames gives the names that the framework has, in its order") {
    AtUsualAges([&](double version) {
        Letter program(version);
        const auto names = program.item.Call<Object>("AttributeNames");
        REQUIRE(names);
        CHECK(names.ClassName() == "string()");
        CHECK(names.References() == 1);
        const auto expected = CFRef<CFArrayRef>::Adopt(MDItemCopyAttributeNames(ItemOf(program.item)));
        CHECK(names.As<std::string>() == TextsIn(expected.Get()));
        CHECK(names.UpperBound() == 3);
    });
}

TEST_CASE("AttributeNames gives an empty array where the framework has no names") {
    Letter program;
    const Fault fault("MDItemCopyAttributeNames", 1);
    const auto names = program.item.Call<Object>("AttributeNames");
    REQUIRE(names);
    CHECK(names.UpperBound() == -1);
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("Without the making of arrays AttributeNames gives nil") {
    Letter program(HostOptions{.withheld = {"RuntimeArrayCreateSingleDimBoundedArray"}});
    CHECK(program.item.Call("AttributeNames").IsNil());
    CHECK(program.Host().Raised().empty());
}
