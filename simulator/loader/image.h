// A Mach-O library as plain data: what its load commands and link-edit streams say, checked, with no memory mapped
// and no name looked up. Addresses are those the linker assigned, before any slide.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sim::loader {

struct Segment {
    std::string name;
    uint32_t address = 0;
    uint32_t memorySize = 0;
    uint32_t fileOffset = 0;
    uint32_t fileSize = 0;
    uint32_t protection = 0; // the format's read, write and execute bits
};

struct Section {
    std::string name;
    std::string segmentName;
    uint32_t address = 0;
    uint32_t size = 0;
    uint32_t type = 0;
};

struct Dylib {
    std::string installName;
    uint32_t currentVersion = 0;       // packed: 16 bits, then twice 8
    uint32_t compatibilityVersion = 0; // packed in the same way
    bool weak = false;                 // its absence is no error
    bool reexported = false;
};

struct Import {
    std::string symbol;  // as recorded, with the underscore
    int32_t ordinal = 0; // 1 is the first of `dylibs`; 0 the image itself; below it, the format's special places
    bool weak = false;

    bool operator==(const Import &) const = default;
};

struct Bind {
    uint32_t address = 0; // the word to fill
    int32_t addend = 0;
    uint32_t import = 0; // index into `imports`
    bool lazy = false;
};

struct Export {
    std::string symbol;
    uint32_t address = 0;
};

// A function or variable of the image itself, exported or not; for messages only.
struct Symbol {
    std::string name; // as recorded
    uint32_t address = 0;
};

struct Image {
    std::string installName;
    std::vector<Segment> segments;
    std::vector<Section> sections;
    std::vector<Dylib> dylibs;
    std::vector<uint32_t> rebases; // addresses of words that hold an address of the image itself
    std::vector<Import> imports;   // each once
    std::vector<Bind> binds;
    std::vector<Export> exports;
    std::vector<Symbol> symbols; // by address
    uint32_t base = 0;           // address of the header, lowest of all
    uint32_t imageSize = 0;      // from base to the end of the last segment

    // The section, or null.
    const Section *FindSection(const std::string &segmentName, const std::string &name) const {
        for (const Section &section : sections)
            if (section.segmentName == segmentName && section.name == name)
                return &section;
        return nullptr;
    }

    // The exported symbol with its underscore, or null.
    const Export *FindExport(const std::string &symbol) const {
        for (const Export &entry : exports)
            if (entry.symbol == symbol)
                return &entry;
        return nullptr;
    }
};

} // namespace sim::loader
