#include "simulator/loader/image_reader.h"
#include "simulator/loader/load_error.h"
#include "tests/simulator/loader/image_builder.h"

#include <doctest/doctest.h>

#include <cstring>
#include <random>
#include <span>

namespace sim::loader {
namespace {

std::string FaultIn(const Bytes &bytes) {
    try {
        ReadImage(bytes, "file");
        return "";
    } catch (const LoadError &error) {
        return error.what();
    }
}

// A library with something of everything.
ImageBuilder FullImage() {
    ImageBuilder builder;
    builder.AddLibrary("/Own.dylib", macho::kIdDylib);
    const uint8_t first = builder.AddLibrary("/First.dylib");
    const uint8_t second = builder.AddLibrary("/Second.dylib", macho::kLoadWeakDylib);
    builder.Rebase(8);
    builder.Bind("_one", first, 0);
    builder.Bind("_two", second, 4, true, 12);
    builder.Export("_entry", ImageBuilder::kCode);
    builder.Export("_other", ImageBuilder::kData + 8);
    return builder;
}

template <class Record> Bytes Command(Record record) {
    record.size = sizeof record;
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

// One thing wrong with the full image, and what is said of it.
struct BrokenImage {
    const char *what;
    void (*change)(ImageBuilder &builder);
    std::string said;
};

void CheckFaults(std::span<const BrokenImage> faults) {
    for (const BrokenImage &fault : faults) {
        CAPTURE(fault.what);
        ImageBuilder builder = FullImage();
        fault.change(builder);
        CHECK(FaultIn(builder.Build()) == "file: " + fault.said);
    }
}

TEST_CASE("A library is read into plain data") {
    const Image image = ReadImage(FullImage().Build(), "file");
    CHECK(image.installName == "/Own.dylib");
    CHECK(image.base == 0);
    CHECK(image.imageSize == 0x3000);
    REQUIRE(image.segments.size() == 3);
    CHECK(image.segments[1].name == "__DATA");
    CHECK(image.segments[1].address == ImageBuilder::kData);
    CHECK(image.segments[1].protection == (macho::kProtectionRead | macho::kProtectionWrite));
    REQUIRE(image.dylibs.size() == 2);
    CHECK(image.dylibs[0].installName == "/First.dylib");
    CHECK(image.dylibs[0].currentVersion == 0x10000);
    CHECK_FALSE(image.dylibs[0].weak);
    CHECK(image.dylibs[1].weak);
    CHECK(image.rebases == std::vector<uint32_t>{ImageBuilder::kData + 8});
    CHECK(image.imports == std::vector<Import>{{"_one", 1, false}, {"_two", 2, true}});
    REQUIRE(image.binds.size() == 2);
    CHECK(image.binds[1].address == ImageBuilder::kData + 4);
    CHECK(image.binds[1].addend == 12);
    CHECK(image.binds[1].import == 1);
    REQUIRE(image.exports.size() == 2);
    CHECK(image.FindExport("_entry")->address == ImageBuilder::kCode);
    CHECK(image.FindExport("_other")->address == ImageBuilder::kData + 8);
    CHECK(image.FindExport("_entr") == nullptr);
}

TEST_CASE("A file of another kind is refused for what it is") {
    static const BrokenImage faults[] = {
        {"64 bits", [](auto &image) { image.header.magic = macho::kMagic64; },
         "is a 64-bit Mach-O file; only 32-bit Intel libraries can be loaded"},
        {"several architectures", [](auto &image) { image.header.magic = macho::kMagicFat; },
         "holds several architectures; extract the i386 one first"},
        {"no Mach-O", [](auto &image) { image.header.magic = 0; }, "is not a Mach-O file"},
        {"another processor", [](auto &image) { image.header.cpuType = 18; }, "is for processor type 18, not for i386"},
        {"a program", [](auto &image) { image.header.fileType = 2; }, "is of file type 2, not a dynamic library"},
    };
    CheckFaults(faults);
    CHECK(FaultIn({}) == "file: is not a Mach-O file");
    const Bytes whole = FullImage().Build();
    CHECK(FaultIn({whole.begin(), whole.begin() + 20}) == "file: the header ends too early");
}

TEST_CASE("Load commands that lie about sizes, places or each other are refused") {
    static const BrokenImage faults[] = {
        {"commands past the file", [](auto &image) { image.header.commandBytes = 0x10000; },
         "the load commands end after the file"},
        {"more commands than there are", [](auto &image) { image.header.commandCount = 100; },
         "the list of load commands ends too early"},
        {"a command of no size",
         [](auto &image) {
             image.AddCommand({0x1B, 0, 0, 0, 0, 0, 0, 0});
         },
         "load command 7 has the impossible size 0"},
        {"a command larger than the rest",
         [](auto &image) {
             image.AddCommand({0x1B, 0, 0, 0, 12, 0, 0, 0});
         },
         "load command 7 has the impossible size 12"},
        {"a library whose name lies elsewhere",
         [](auto &image) {
             image.AddCommand(Command(macho::DylibCommand{macho::kLoadDylib, 0, 400, 0, 0, 0}));
         },
         "a library command points past its end"},
        {"a library whose name does not end",
         [](auto &image) {
             image.AddCommand(Command(macho::DylibCommand{macho::kLoadDylib, 0, 20, 0, 0, 0x01010101}));
         },
         "a library command ends inside a string"},
        {"a segment past the file", [](auto &image) { image.data.fileOffset = 0x2800; },
         "segment __DATA ends after the file"},
        {"a segment with more contents than room", [](auto &image) { image.data.memorySize = 0x800; },
         "segment __DATA has more contents than room"},
        {"a segment between pages", [](auto &image) { image.data.address = 0x1010; },
         "segment __DATA does not begin on a page"},
        {"a segment past the last address",
         [](auto &image) {
             image.linkEdit.address = 0xFFFFF000;
             image.linkEdit.memorySize = 0x2000;
         },
         "segment __LINKEDIT ends past the last address"},
        {"segments on top of each other", [](auto &image) { image.text.memorySize = 0x1001; },
         "segments __TEXT and __DATA overlap"},
        {"an image all over memory", [](auto &image) { image.linkEdit.address = 0x80000000; },
         "spreads over 2147487744 bytes of memory, more than is reasonable"},
        {"a first segment without the header", [](auto &image) { image.text.fileOffset = 0x1000; },
         "the first segment does not hold the header"},
        {"more sections than the command has room for", [](auto &image) { image.data.sectionCount = 1; },
         "a segment command ends too early"},
        {"two sets of linking information", [](auto &image) { image.AddCommand(Command(image.dyldInfo)); },
         "has two commands with dynamic linking information"},
        {"streams past the file",
         [](auto &image) {
             image.dyldInfo.bindOffset = 0x2FFF;
             image.dyldInfo.bindSize = 2;
         },
         "the bind stream ends after the file"},
    };
    CheckFaults(faults);
}

TEST_CASE("What is not modelled is refused, not passed over") {
    static const BrokenImage faults[] = {
        {"an unknown command that must be obeyed",
         [](auto &image) {
             image.AddCommand(Command(macho::CommandHeader{0x33 | macho::kCommandRequired, 0}));
         },
         "has load command 51, which must be obeyed and is not modelled"},
        {"relocation tables",
         [](auto &image) {
             macho::DynamicSymbolTableCommand table{};
             table.command = macho::kDynamicSymbolTable;
             table.localRelocationCount = 1;
             image.AddCommand(Command(table));
         },
         "has relocation tables, which are not modelled"},
        {"coalesced symbols",
         [](auto &image) {
             image.dyldInfo.weakBindOffset = ImageBuilder::kLinkEdit;
             image.dyldInfo.weakBindSize = 1;
         },
         "has symbols to be coalesced with other images', which is not modelled"},
        {"symbol stubs",
         [](auto &image) {
             macho::SectionRecord stubs{};
             std::memcpy(stubs.name, "__stubs", 7);
             std::memcpy(stubs.segmentName, "__DATA", 6);
             stubs.address = ImageBuilder::kData;
             stubs.size = 6;
             stubs.flags = macho::kSectionSymbolStubs;
             image.dataSections = {stubs};
         },
         "section __DATA,__stubs holds symbol stubs; 32-bit ones jump to "
         "fixed addresses and cannot be moved"},
    };
    CheckFaults(faults);
}

TEST_CASE("An unknown command that need not be obeyed is passed over") {
    ImageBuilder builder = FullImage();
    builder.AddCommand(Command(macho::CommandHeader{0x33, 0}));
    CHECK(FaultIn(builder.Build()) == "");
}

TEST_CASE("A section must lie in its segment and in its segment's contents") {
    const struct {
        const char *what;
        uint32_t address = ImageBuilder::kData + 0x800;
        uint32_t flags = 0;
        bool hasRoom = false;
        const char *said;
    } rows[] = {
        {.what = "past the segment", .said = "file: section __DATA,__data lies outside its segment"},
        {.what = "before the segment",
         .address = 0x100,
         .said = "file: section __DATA,__data lies outside its segment"},
        {.what = "past the contents",
         .hasRoom = true,
         .said = "file: section __DATA,__data lies outside the contents of its segment"},
        {.what = "zeros have no contents", .flags = macho::kSectionZeroFill, .hasRoom = true, .said = ""},
    };
    for (const auto &row : rows) {
        CAPTURE(row.what);
        ImageBuilder builder = FullImage();
        macho::SectionRecord section{};
        std::memcpy(section.name, "__data", 6);
        std::memcpy(section.segmentName, "__DATA", 6);
        section.address = row.address;
        section.size = 0x1000;
        section.flags = row.flags;
        builder.dataSections = {section};
        if (row.hasRoom) {
            builder.data.memorySize = 0x2000;
            builder.linkEdit.address = 0x3000;
        }
        CHECK(FaultIn(builder.Build()) == row.said);
    }
}

// The full image with a symbol table: one defined symbol, one undefined, one for debuggers.
struct WithSymbols {
    ImageBuilder builder = FullImage();
    macho::SymbolTableCommand table{macho::kSymbolTable, 0, 0x2800, 3, 0x2900, 32};
    macho::SymbolRecord records[3] = {
        {1, macho::kSymbolInSection, 1, 0, 0x810}, {6, 0x01, 0, 0, 0}, {11, 0x24, 1, 0, 0x820}};

    Bytes Build() {
        builder.AddCommand(Command(table));
        Bytes bytes = builder.Build();
        std::memcpy(bytes.data() + 0x2800, records, sizeof records);
        std::memcpy(bytes.data() + 0x2900, "\0_one\0_two\0_bug", 16);
        return bytes;
    }
};

TEST_CASE("Of the symbols those are kept that the image itself defines") {
    const Image image = ReadImage(WithSymbols().Build(), "file");
    REQUIRE(image.symbols.size() == 1);
    CHECK(image.symbols[0].name == "_one");
    CHECK(image.symbols[0].address == 0x810);
}

TEST_CASE("A symbol table that reaches past the file or its names is refused") {
    const struct {
        const char *what;
        void (*change)(WithSymbols &image);
        const char *said;
    } rows[] = {
        {"records", [](auto &image) { image.table.symbolCount = 0x1000; },
         "file: the symbol table ends after the file"},
        {"records beyond counting", [](auto &image) { image.table.symbolCount = 0x80000001; },
         "file: the symbol table ends after the file"},
        {"names", [](auto &image) { image.table.stringSize = 0x1000; },
         "file: the list of symbol names ends after the file"},
        {"a name", [](auto &image) { image.records[0].nameOffset = 33; },
         "file: the list of symbol names points past its end"},
        {"the end of a name", [](auto &image) { image.table.stringSize = 4; },
         "file: the list of symbol names ends inside a string"},
    };
    for (const auto &row : rows) {
        CAPTURE(row.what);
        WithSymbols image;
        row.change(image);
        CHECK(FaultIn(image.Build()) == row.said);
    }
}

TEST_CASE("A file cut short anywhere is refused") {
    const Bytes whole = FullImage().Build();
    size_t refused = 0;
    for (size_t length = 0; length < whole.size(); ++length) {
        const std::string fault = FaultIn({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
        CAPTURE(length);
        CHECK(fault != "");
        refused += fault.starts_with("file: ");
    }
    CHECK(refused == whole.size());
}

TEST_CASE("Streams cut short anywhere are refused where a number or a name is broken off") {
    const ImageBuilder builder = FullImage();
    for (size_t length = 0; length < builder.bindStream.size(); ++length) {
        ImageBuilder cut = builder;
        cut.bindStream.resize(length);
        const std::string fault = FaultIn(cut.Build());
        CAPTURE(length);
        CHECK((fault.empty() || fault.starts_with("file: the bind stream ends")));
    }
}

TEST_CASE("No change of bytes makes the reader do anything but read or refuse") {
    const Bytes whole = FullImage().Build();
    std::mt19937 random(20090215);
    const auto below = [&](size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(random); };
    const auto interesting = std::to_array<uint8_t>({0x00, 0x01, 0x7F, 0x80, 0xFF, 0x10, 0x40, 0xC0});
    size_t read = 0;
    size_t refused = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes changed = whole;
        for (size_t count = 1 + below(4); count > 0; --count) {
            // The commands and the streams; everything else is contents, which the reader does not look at.
            const size_t place = below(2) ? below(0x300) : ImageBuilder::kLinkEdit + below(0x80);
            changed[place] = below(2) ? interesting[below(interesting.size())] : static_cast<uint8_t>(below(256));
        }
        ++(FaultIn(changed).empty() ? read : refused);
    }
    CHECK(read > 0);
    CHECK(refused > 0);
}

} // namespace
} // namespace sim::loader
