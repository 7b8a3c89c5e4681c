#include "simulator/loader/plugin_image.h"
#include "tests/simulator/loader/image_builder.h"
#include "tests/simulator/loader/library.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <sys/wait.h>
#include <typeinfo>
#include <unistd.h>

extern "C" {
extern int friendsDatum;
extern int friendsOptionalDatum;
int friendsFunction(int number);
}

namespace sim::loader {
namespace {

// What library.cpp finds behind /Friends.dylib when it is a Mach-O library. The build of this system is linked to it.
class Friends : public Library {
public:
    void *Find(const std::string &symbol) const override {
        if (symbol == "_friendsDatum")
            return &friendsDatum;
        if (symbol == "_friendsOptionalDatum")
            return &friendsOptionalDatum;
        if (symbol == "_friendsFunction")
            return reinterpret_cast<void *>(friendsFunction);
        return nullptr;
    }
};

LoadOptions Options(std::set<std::string> absent = {}) {
    return {std::move(absent), [](const std::string &installName) -> std::unique_ptr<Library> {
                if (installName == "/Friends.dylib")
                    return std::make_unique<Friends>();
                return OpenStandIn(installName);
            }};
}

const LibraryFunctions *taken;
std::string asked;

PluginImage::Function Resolve(const char *name) {
    asked = name;
    return reinterpret_cast<PluginImage::Function>(+[](const LibraryFunctions *functions) { taken = functions; });
}

const LibraryFunctions &FunctionsOf(const PluginImage &image) {
    taken = nullptr;
    image.EntryPoint()(Resolve);
    REQUIRE(taken != nullptr);
    return *taken;
}

constexpr const char *kBothKinds[] = {MACHO_LIBRARY, NATIVE_LIBRARY};

// Runs the work on each kind of file.
template <class Work> void OnBoth(Work work) {
    for (const char *path : kBothKinds) {
        CAPTURE(path);
        const PluginImage image = PluginImage::Load(path, Options());
        work(FunctionsOf(image));
    }
}

class LibraryFile {
public:
    explicit LibraryFile(const Bytes &bytes)
        : path_(folder_.File("library", {reinterpret_cast<const char *>(bytes.data()), bytes.size()})) {}
    const std::string &Path() const { return path_; }

private:
    ::tests::TemporaryFolder folder_;
    std::string path_;
};

struct UnderivedFailure {};

TEST_CASE("The entry point runs and reaches the resolver that it is given") {
    OnBoth([](const LibraryFunctions &) { CHECK(asked == "TakeFunctions"); });
}

TEST_CASE("Two copies of one file share no static data, and a later one starts afresh") {
    for (const char *path : kBothKinds) {
        CAPTURE(path);
        const PluginImage first = PluginImage::Load(path, Options());
        const LibraryFunctions &functions = FunctionsOf(first);
        CHECK(functions.count() == 1);
        CHECK(functions.count() == 2);
        {
            const PluginImage second = PluginImage::Load(path, Options());
            CHECK(FunctionsOf(second).count() == 1);
        }
        CHECK(functions.count() == 3);
        const PluginImage third = PluginImage::Load(path, Options());
        CHECK(FunctionsOf(third).count() == 1);
    }
}

TEST_CASE("A copy that was borrowed and given back comes again, in its first state and with nothing leaked") {
    for (const char *path : kBothKinds) {
        CAPTURE(path);
        const void *place = nullptr;
        for (int round = 1; round <= 3; ++round) {
            const PluginImage image = PluginImage::Borrow(path, Options().openLibrary);
            const LibraryFunctions &functions = FunctionsOf(image);
            CHECK(functions.count() == 1);
            CHECK(functions.count() == 2);
            CHECK(functions.pointed() == 11);
            functions.keepBlock();
            CHECK(std::string(functions.caught([] { throw std::out_of_range("far"); })) == "out_of_range");
            if (place)
                CHECK(place == &functions);
            place = &functions;
        }
    }
}

TEST_CASE("While a copy is borrowed, whoever borrows the same file gets another") {
    for (const char *path : kBothKinds) {
        CAPTURE(path);
        const PluginImage first = PluginImage::Borrow(path, Options().openLibrary);
        const LibraryFunctions &functions = FunctionsOf(first);
        CHECK(functions.count() == 1);
        const PluginImage second = PluginImage::Borrow(path, Options().openLibrary);
        CHECK(FunctionsOf(second).count() == 1);
        CHECK(functions.count() == 2);
    }
}

TEST_CASE("Whoever calls into a copy that was given back is stopped") {
    for (const char *path : kBothKinds) {
        CAPTURE(path);
        int (*count)() = nullptr;
        {
            const PluginImage image = PluginImage::Borrow(path, Options().openLibrary);
            count = FunctionsOf(image).count;
        }
        const pid_t child = fork();
        if (child == 0) {
            close(STDOUT_FILENO);
            close(STDERR_FILENO);
            count();
            _exit(0);
        }
        int status = 0;
        REQUIRE(waitpid(child, &status, 0) == child);
        CHECK(status != 0);
    }
}

TEST_CASE("A file that was written anew is loaded anew, also where a copy of the old one was given back") {
    const LibraryFile file(ImageBuilder().Build());
    CHECK(PluginImage::Borrow(file.Path()).Find("REALPluginMain") == nullptr);
    std::filesystem::remove(file.Path());
    std::filesystem::copy_file(MACHO_LIBRARY, file.Path());
    CHECK(PluginImage::Borrow(file.Path(), Options().openLibrary).Find("REALPluginMain") != nullptr);
}

TEST_CASE("Pointers in static data point into the copy") {
    OnBoth([](const LibraryFunctions &functions) { CHECK(functions.pointed() == 11); });
}

TEST_CASE("Functions and variables of other libraries are reached, and call-backs come back") {
    OnBoth([](const LibraryFunctions &functions) {
        CHECK(functions.sum([](int number) { return number * number; }, 4) == 1030);
        CHECK(functions.datum() == 42);
        CHECK(functions.optionalDatum() == &friendsOptionalDatum);
    });
}

class FriendsWatch final : public ImportWatch {
public:
    bool Wants(const std::string &name) const override { return name == "friendsFunction"; }
    bool Hear(const char *name, const uint32_t *arguments) noexcept override {
        heard.push_back(std::string(name) + " " + std::to_string(arguments[0]));
        return lets;
    }

    std::vector<std::string> heard;
    bool lets = true;
};

TEST_CASE("Whoever watches the imports hears of each call before it is made, and can keep it from being made") {
    for (const char *path : kBothKinds) {
        CAPTURE(path);
        FriendsWatch watch;
        LoadOptions options = Options();
        options.watch = &watch;
        const PluginImage image = PluginImage::Load(path, options);
        const LibraryFunctions &functions = FunctionsOf(image);
        CHECK(functions.datum() == 42);
        CHECK(watch.heard.empty());
        const auto same = [](int number) { return number; };
        CHECK(functions.sum(same, 4) == 1010);
        CHECK(watch.heard == std::vector<std::string>{"friendsFunction 10"});
        watch.lets = false;
        CHECK(functions.sum(same, 2) == 0);
        watch.lets = true;
        CHECK(functions.sum(same, 1) == 1001);
        CHECK(watch.heard == std::vector<std::string>{"friendsFunction 10", "friendsFunction 3", "friendsFunction 1"});
    }
}

TEST_CASE("Exceptions thrown by Linux code are caught in the library by their type") {
    OnBoth([](const LibraryFunctions &functions) {
        const auto caught = [&](void (*throwing)()) { return std::string(functions.caught(throwing)); };
        CHECK(caught([] {}) == "nothing");
        CHECK(caught([] { throw std::out_of_range("far"); }) == "out_of_range");
        CHECK(caught([] { throw std::bad_cast(); }) == "bad_cast");
        CHECK(caught([] { throw std::runtime_error("late"); }) == "exception");
        CHECK(caught([] { throw UnderivedFailure(); }) == "other");
        CHECK(caught([] { throw 5; }) == "other");
    });
}

TEST_CASE("Exceptions pass through the library's frames, whose clean-ups run") {
    OnBoth([](const LibraryFunctions &functions) {
        for (int round = 1; round <= 3; ++round) {
            CHECK_THROWS_AS(functions.pass([] { throw std::out_of_range("through"); }), std::out_of_range);
            CHECK(functions.cleanups() == round);
        }
        functions.pass([] {});
        CHECK(functions.cleanups() == 4);
    });
}

TEST_CASE("Exceptions cross frames of two copies at once, and of a copy made after another was given up") {
    for (const char *path : kBothKinds) {
        CAPTURE(path);
        { const PluginImage gone = PluginImage::Load(path, Options()); }
        const PluginImage outer = PluginImage::Load(path, Options());
        const PluginImage inner = PluginImage::Load(path, Options());
        static const LibraryFunctions *innerFunctions;
        innerFunctions = &FunctionsOf(inner);
        const LibraryFunctions &outerFunctions = FunctionsOf(outer);
        CHECK(std::string(outerFunctions.caught(
                  [] { innerFunctions->pass([] { throw std::out_of_range("far"); }); })) == "out_of_range");
        CHECK(innerFunctions->cleanups() == 1);
    }
}

TEST_CASE("What only the library's static data points to is no leak, even after the library is gone") {
    // The leak checker of the sanitized build judges at the end of the process.
    OnBoth([](const LibraryFunctions &functions) { functions.keepBlock(); });
}

TEST_CASE("The compiler's own helpers work") {
    OnBoth([](const LibraryFunctions &functions) {
        CHECK(functions.divide(-0x123456789ABLL, 1000) == -1250999896);
        CHECK(functions.remainder(-0x123456789ABLL, 1000) == -491);
        CHECK(functions.allocated(100) == 4950);
        char bytes[64];
        std::fill(std::begin(bytes), std::end(bytes), 'x');
        functions.clear(bytes + 1, sizeof bytes - 2);
        CHECK(bytes[0] == 'x');
        CHECK(bytes[1] == 0);
        CHECK(bytes[62] == 0);
        CHECK(bytes[63] == 'x');
    });
}

TEST_CASE("A weak symbol that the system lacks is null, and only for the copy that was loaded so") {
    for (const char *path : kBothKinds) {
        CAPTURE(path);
        const PluginImage without = PluginImage::Load(path, Options({"friendsOptionalDatum"}));
        const PluginImage with = PluginImage::Load(path, Options());
        CHECK(FunctionsOf(without).optionalDatum() == nullptr);
        CHECK(FunctionsOf(with).optionalDatum() == &friendsOptionalDatum);
    }
}

TEST_CASE("A strong symbol that the system lacks fails the load by name") {
    for (const char *path : kBothKinds) {
        CAPTURE(path);
        try {
            PluginImage::Load(path, Options({"friendsDatum"}));
            FAIL("it was loaded");
        } catch (const LoadError &error) {
            const std::string message = error.what();
            CAPTURE(message);
            CHECK(message.find("symbols not found: ") != std::string::npos);
            CHECK(message.find("friendsDatum") != std::string::npos);
            CHECK(message.starts_with(path));
        }
    }
}

TEST_CASE("An address in a living Mach-O copy has a name, in other memory none") {
    const void *address = nullptr;
    {
        const PluginImage image = PluginImage::Load(MACHO_LIBRARY, Options());
        address = reinterpret_cast<const void *>(FunctionsOf(image).count);
        CHECK(PluginImage::Describe(address) == "(anonymous namespace)::Count()+0x0");
        CHECK(PluginImage::Describe(static_cast<const char *>(address) + 5) == "(anonymous namespace)::Count()+0x5");
        CHECK(PluginImage::Describe(&friendsDatum) == "");
        CHECK(PluginImage::Describe(nullptr) == "");
    }
    CHECK(PluginImage::Describe(address) == "");
}

TEST_CASE("A path that leads to no library is refused with its name") {
    CHECK_THROWS_WITH_AS(PluginImage::Load("/no/such/file"), "/no/such/file: No such file or directory", LoadError);
    CHECK_THROWS_WITH_AS(PluginImage::Load("/"), "/: is not a regular file", LoadError);
    CHECK_THROWS_WITH_AS(PluginImage::Load("/dev/null"), "/dev/null: is not a regular file", LoadError);
}

TEST_CASE("A library without the entry point loads, but has none") {
    const LibraryFile file(ImageBuilder().Build());
    const PluginImage image = PluginImage::Load(file.Path());
    CHECK_THROWS_WITH_AS(image.EntryPoint(), (file.Path() + ": does not export REALPluginMain").c_str(), LoadError);
}

int initialised;
extern "C" void NoteInitialised() { ++initialised; }

TEST_CASE("Initialisers run at load and terminators when the copy is given up") {
    ImageBuilder builder;
    const uint8_t library = builder.AddLibrary("/Notes.dylib");
    builder.Bind("_note", library, 0);
    builder.Bind("_note", library, 4);
    for (const auto &[name, type, offset] : {std::tuple{"__mod_init_func", macho::kSectionInitialisers, 0u},
                                             std::tuple{"__mod_term_func", macho::kSectionTerminators, 4u}}) {
        macho::SectionRecord section{};
        std::memcpy(section.name, name, std::strlen(name));
        std::memcpy(section.segmentName, "__DATA", 6);
        section.address = ImageBuilder::kData + offset;
        section.size = 4;
        section.flags = type;
        builder.dataSections.push_back(section);
    }
    class Notes : public Library {
        void *Find(const std::string &) const override { return reinterpret_cast<void *>(NoteInitialised); }
    };
    const LibraryFile file(builder.Build());
    initialised = 0;
    {
        const PluginImage image = PluginImage::Load(
            file.Path(), {.openLibrary = [](const std::string &) { return std::make_unique<Notes>(); }});
        CHECK(initialised == 1);
    }
    CHECK(initialised == 2);
}

} // namespace
} // namespace sim::loader
