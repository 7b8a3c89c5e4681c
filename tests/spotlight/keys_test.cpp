// The 169 attribute keys of the item class: each has the text of the running system's constant, or its own name where
// that system is older than the constant.
#include "tests/support/expected_keys.h"

#include <doctest/doctest.h>

#include "simulator/loader/load_error.h"
#include "tests/spotlight/support/item_files.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/host_ages.h"

#include <dlfcn.h>
#include <set>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

using namespace tests;

using sim::host::Text;

namespace {

/// The one key that is a literal.
constexpr const char *kDateAdded = "kMDItemDateAdded";
constexpr size_t kSchemaMethods = 5;

bool IsDateAdded(const ExpectedKey &key) { return std::string_view(key.name) == kDateAdded; }

Text Key(TestSession &session, const std::string &name) {
    const auto value = session.Host().Shared("MDItemQTX", name);
    return value.IsNil() ? Text{"(nil)"} : value.As<Text>();
}

/// Text that came out of a CFString arrives as UTF-8, and a literal as ASCII: how a test tells them apart.
Text OfConstant(const std::string &text) { return {text, sim::host::kUTF8}; }
Text OfLiteral(const std::string &text) { return {text, sim::host::kASCII}; }

std::set<std::string> YoungConstants() {
    std::set<std::string> names;
    for (const ExpectedKey &key : kExpectedKeys)
        if (key.since == Since::k10_7)
            names.insert(key.name);
    return names;
}

/// While it lives, a constant of the running system has another text.
class OtherText {
public:
    OtherText(const char *constant, const std::string &text)
        : string_(MakeString(text)), cell_(static_cast<CFStringRef *>(dlsym(RTLD_DEFAULT, constant))) {
        REQUIRE(cell_ != nullptr);
        before_ = Exchange(string_.Get());
    }
    ~OtherText() { Exchange(before_); }
    OtherText(const OtherText &) = delete;
    OtherText &operator=(const OtherText &) = delete;

private:
    /// Constants lie in memory that is protected once the library is loaded.
    CFStringRef Exchange(CFStringRef string) {
        const auto pageSize = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
        void *const page = reinterpret_cast<void *>(reinterpret_cast<uintptr_t>(cell_) / pageSize * pageSize);
        REQUIRE(mprotect(page, pageSize, PROT_READ | PROT_WRITE) == 0);
        return std::exchange(*cell_, string);
    }

    CFRef<CFStringRef> string_;
    CFStringRef *cell_;
    CFStringRef before_ = nullptr;
};

} // namespace

TEST_CASE("There are 169 keys, 25 of them younger than 10.6") {
    CHECK(std::size(kExpectedKeys) == 169);
    CHECK(YoungConstants().size() == 25);
}

TEST_CASE("The keys are declared behind the five schema methods, in their order, each with a function of its own") {
    AtUsualAges([&](double version) {
        TestSession session(version);
        const auto &methods = session.Host().Arrived().Class("MDItemQTX").sharedMethods;
        REQUIRE(methods.size() == kSchemaMethods + std::size(kExpectedKeys));
        std::set<sim::host::Word> functions;
        for (const auto &method : methods) {
            CHECK(method.flags == 4);
            CHECK(method.setterFunction == 0);
            functions.insert(method.function);
        }
        CHECK(functions.size() == methods.size());
        CHECK(functions.count(0) == 0);
        for (size_t i = 0; i < std::size(kExpectedKeys); i++)
            CHECK(methods[kSchemaMethods + i].declaration == kExpectedKeys[i].name + std::string(" as string"));
    });
}

TEST_CASE("Each key has the text of the system's constant, which is the key's name") {
    AtUsualAges([&](double version) {
        TestSession session(version);
        for (const ExpectedKey &key : kExpectedKeys)
            CHECK(Key(session, key.name) == (IsDateAdded(key) ? OfLiteral(key.name) : OfConstant(key.name)));
        CHECK(session.Host().Raised().empty());
        CHECK(session.Host().Alive("string") == 0);
    });
}

TEST_CASE("A key has whatever text the running system gives its constant, but for the one literal") {
    TestSession session;
    for (const ExpectedKey &key : kExpectedKeys) {
        CAPTURE(key.name);
        const std::string text = std::string("what the system calls ") + key.name;
        const OtherText other(key.name, text);
        CHECK(Key(session, key.name) == (IsDateAdded(key) ? OfLiteral(key.name) : OfConstant(text)));
    }
    CHECK(Key(session, "kMDItemFSSize") == OfConstant("kMDItemFSSize"));
}

TEST_CASE("On the oldest system each key whose constant is missing has its own name as text, and the others theirs") {
    AtUsualAges([&](double version) {
        HostOptions options;
        options.version = version;
        TestSession session(options, YoungConstants());
        for (const ExpectedKey &key : kExpectedKeys)
            CHECK(Key(session, key.name) == (key.since == Since::k10_7 ? OfLiteral(key.name) : OfConstant(key.name)));
        CHECK(session.Host().Raised().empty());
    });
}

TEST_CASE("Each young constant can be missing alone") {
    for (const std::string &missing : YoungConstants()) {
        CAPTURE(missing);
        TestSession session({}, {missing});
        CHECK(Key(session, missing) == OfLiteral(missing));
        for (const std::string &other : YoungConstants())
            if (other != missing && other != kDateAdded)
                CHECK(Key(session, other) == OfConstant(other));
    }
}

TEST_CASE("A constant that every supported system has is required: without it the library does not load") {
    for (const char *name : {"kMDItemAttributeChangeDate", "kMDItemFSSize", "kMDItemURL"}) {
        CAPTURE(name);
        CHECK_THROWS_AS(TestSession({}, {name}), sim::loader::LoadError);
    }
}

TEST_CASE("kMDItemDateAdded gives its 16 characters with and without the system's constant") {
    for (const bool isAbsent : {false, true}) {
        CAPTURE(isAbsent);
        TestSession session({}, isAbsent ? std::set<std::string>{kDateAdded} : std::set<std::string>{});
        CHECK(Key(session, kDateAdded) == OfLiteral("kMDItemDateAdded"));
    }
}

TEST_CASE("A key names its attribute to an item, also where the system lacks the constant") {
    const TemporaryFolder folder;
    const std::string path = folder.File("letter.txt", "Dear Ann");
    TestSession session({}, YoungConstants());
    auto &host = session.Host();
    Object item = ConstructItem(host, path);
    const auto key = [&](const char *name) { return host.Shared("MDItemQTX", name); };
    CHECK(item.Call<double>("AttributeDouble", key("kMDItemFSSize")) == 8);
    CHECK(item.Call("GetAttribute", key("kMDItemDateAdded")).As<Object>().ClassName() == "Date");
    CHECK(session.TakeException() == "");
}

TEST_CASE("On a host that cannot build strings every key is the nil string") {
    TestSession session(HostOptions{.withheld = {"REALBuildString"}});
    for (const ExpectedKey &key : kExpectedKeys)
        CHECK(session.Host().Shared("MDItemQTX", key.name).IsNil());
    CHECK(session.Host().Raised().empty());
}
