#include "simulator/loader/binder.h"
#include "simulator/loader/image_reader.h"
#include "simulator/loader/load_error.h"
#include "tests/simulator/loader/image_builder.h"

#include <doctest/doctest.h>

#include <map>
#include <optional>

namespace sim::loader {
namespace {

uint32_t one, two;

class NamedSymbols : public Library {
public:
    explicit NamedSymbols(std::map<std::string, void *> symbols) : symbols_(std::move(symbols)) {}

    void *Find(const std::string &symbol) const override {
        const auto found = symbols_.find(symbol);
        return found == symbols_.end() ? nullptr : found->second;
    }

private:
    std::map<std::string, void *> symbols_;
};

std::unique_ptr<Library> OpenTestLibrary(const std::string &installName) {
    if (installName == "/First.dylib")
        return std::make_unique<NamedSymbols>(std::map<std::string, void *>{{"_one", &one}});
    if (installName == "/Second.dylib")
        return std::make_unique<NamedSymbols>(std::map<std::string, void *>{{"_two", &two}});
    return nullptr;
}

uint32_t AddressOf(const void *object) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(object)); }

struct Bound {
    std::string fault;
    std::optional<MappedImage> image;

    uint32_t Word(uint32_t offset) const { return image->ReadWord(ImageBuilder::kData + offset); }
};

Bound BindAll(const ImageBuilder &builder, const std::set<std::string> &absent = {},
              const LibraryOpener &open = OpenTestLibrary) {
    Bound result;
    const Bytes bytes = builder.Build();
    const Image image = ReadImage(bytes, "file");
    result.image.emplace(image, bytes, "file");
    try {
        ImportStubs none(nullptr);
        BindImports(image, *result.image, open, absent, none, "file");
    } catch (const LoadError &error) {
        result.fault = error.what();
    }
    return result;
}

ImageBuilder TwoLibraries() {
    ImageBuilder builder;
    builder.AddLibrary("/First.dylib");
    builder.AddLibrary("/Second.dylib");
    return builder;
}

TEST_CASE("Each import gets its address from the library that it was recorded from") {
    ImageBuilder builder = TwoLibraries();
    builder.Bind("_one", 1, 0);
    builder.Bind("_two", 2, 4);
    builder.Bind("_two", 2, 8, false, -4);
    const Bound bound = BindAll(builder);
    CHECK(bound.fault == "");
    CHECK(bound.Word(0) == AddressOf(&one));
    CHECK(bound.Word(4) == AddressOf(&two));
    CHECK(bound.Word(8) == AddressOf(&two) - 4);
}

TEST_CASE("An import recorded from the wrong library fails, and the message says where the symbol is") {
    ImageBuilder builder = TwoLibraries();
    builder.Bind("_two", 1, 0);
    CHECK(BindAll(builder).fault ==
          "file: symbols not found: _two (expected in /First.dylib, but it is in /Second.dylib)");
}

TEST_CASE("Every import that is not met is named") {
    ImageBuilder builder = TwoLibraries();
    builder.Bind("_none", 1, 0);
    builder.Bind("_one", 1, 4);
    builder.Bind("_neither", 2, 8);
    CHECK(BindAll(builder).fault ==
          "file: symbols not found: _none (expected in /First.dylib), _neither (expected in /Second.dylib)");
}

TEST_CASE("A weak import that is not met becomes null, addend and all") {
    ImageBuilder builder = TwoLibraries();
    builder.SetWord(0, 0x1234);
    builder.Bind("_none", 1, 0, true, 8);
    builder.Bind("_one", 1, 4, true);
    const Bound bound = BindAll(builder);
    CHECK(bound.fault == "");
    CHECK(bound.Word(0) == 0);
    CHECK(bound.Word(4) == AddressOf(&one));
}

TEST_CASE("A symbol that the system is to lack is null when imported weakly and a fault otherwise") {
    ImageBuilder builder = TwoLibraries();
    builder.Bind("_one", 1, 0, true);
    const Bound bound = BindAll(builder, {"one"});
    CHECK(bound.fault == "");
    CHECK(bound.Word(0) == 0);
    builder.Bind("_two", 2, 4);
    CHECK(BindAll(builder, {"one", "two"}).fault == "file: symbols not found: _two (expected in /Second.dylib)");
}

TEST_CASE("A library that nothing stands in for fails the load, unless it is needed weakly") {
    ImageBuilder builder = TwoLibraries();
    const uint8_t weak = builder.AddLibrary("/Unknown.dylib", macho::kLoadWeakDylib);
    builder.Bind("_three", weak, 0, true);
    CHECK(BindAll(builder).fault == "");
    CHECK(BindAll(builder).Word(0) == 0);
    builder.AddLibrary("/Stranger.dylib");
    CHECK(BindAll(builder).fault == "file: needs /Stranger.dylib, for which nothing stands in");
}

TEST_CASE("A library that cannot be opened fails the load with the reason") {
    ImageBuilder builder = TwoLibraries();
    CHECK(BindAll(builder, {}, [](const std::string &) -> std::unique_ptr<Library> {
              throw std::runtime_error("out of shelf space");
          }).fault == "file: cannot open what stands in for /First.dylib: out of shelf space");
}

TEST_CASE("An image may import from itself") {
    ImageBuilder builder;
    builder.Export("_own", ImageBuilder::kData + 0x40);
    builder.Bind("_own", 0, 0);
    const Bound bound = BindAll(builder);
    CHECK(bound.fault == "");
    CHECK(bound.Word(0) == AddressOf(bound.image->At(ImageBuilder::kData + 0x40)));
    builder.Bind("_foreign", 0, 4);
    CHECK(BindAll(builder).fault == "file: symbols not found: _foreign (expected in the image itself)");
}

TEST_CASE("A search through all libraries is refused as not modelled") {
    ImageBuilder builder = TwoLibraries();
    builder.Bind("_one", 1, 0);
    builder.bindStream = builder.bindStream + Bytes{macho::kBindSetSpecialOrdinal | 0x0E, macho::kBindOnce};
    CHECK(BindAll(builder).fault == "file: looks for _one in no particular library, which is not modelled");
}

TEST_CASE("Lazy imports are bound at once") {
    ImageBuilder builder = TwoLibraries();
    builder.lazyBindStream =
        Bytes{macho::kBindSetSegmentAndOffset | 1, 16, macho::kBindSetOrdinal | 2, macho::kBindSetSymbol} +
        Text("_two") + Bytes{macho::kBindOnce, macho::kBindDone};
    const Bound bound = BindAll(builder);
    CHECK(bound.fault == "");
    CHECK(bound.Word(16) == AddressOf(&two));
}

TEST_CASE("Rebased words follow the image to where it lies") {
    ImageBuilder builder;
    builder.SetWord(12, ImageBuilder::kCode);
    builder.SetWord(16, ImageBuilder::kCode);
    builder.Rebase(12);
    const Bound bound = BindAll(builder);
    CHECK(bound.Word(12) == AddressOf(bound.image->At(ImageBuilder::kCode)));
    CHECK(bound.Word(16) == ImageBuilder::kCode);
}

} // namespace
} // namespace sim::loader
