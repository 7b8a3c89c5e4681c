// Makes the bytes of small i386 Mach-O libraries, right ones and, by changing what is about to be written, wrong ones.
// Layout: __TEXT (header, commands, code at 0x800), __DATA and __LINKEDIT, a page each, in the file and from address 0.
#pragma once

#include "simulator/loader/macho_format.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace sim::loader {

using Bytes = std::vector<uint8_t>;

/// Number and text as the streams hold them.
Bytes Uleb(uint64_t value);
Bytes Text(const std::string &text);
Bytes operator+(Bytes left, const Bytes &right);

class ImageBuilder {
public:
    static constexpr uint32_t kCode = 0x800;
    static constexpr uint32_t kData = 0x1000;
    static constexpr uint32_t kLinkEdit = 0x2000;
    static constexpr uint8_t kDataSegment = 1;

    /// Adds a library; its ordinal is the result.
    uint8_t AddLibrary(const std::string &installName, uint32_t command = macho::kLoadDylib);
    /// Binds the word at kData + offset to a symbol.
    void Bind(const std::string &symbol, uint8_t ordinal, uint32_t offset, bool weak = false, int8_t addend = 0);
    /// The word at kData + offset holds an address of the image.
    void Rebase(uint32_t offset);
    void SetWord(uint32_t offset, uint32_t value);
    void SetCode(const Bytes &code) { code_ = code; }
    /// Adds a leaf to the export tree's root.
    void Export(const std::string &symbol, uint32_t address);

    // The finished parts, for tests that write their own.
    Bytes rebaseStream;
    Bytes bindStream;
    Bytes lazyBindStream;
    Bytes exportTree;
    /// A load command behind all others, as it is.
    void AddCommand(const Bytes &command) {
        extraCommands.insert(extraCommands.end(), command.begin(), command.end());
        ++extraCommandCount;
    }

    Bytes extraCommands;
    uint32_t extraCommandCount = 0;
    macho::Header header{macho::kMagic32, macho::kCpuTypeI386, 3, macho::kFileTypeDylib, 0, 0, 0x85};
    macho::SegmentCommand text;
    macho::SegmentCommand data;
    macho::SegmentCommand linkEdit;
    std::vector<macho::SectionRecord> dataSections;
    macho::DyldInfoCommand dyldInfo{macho::kDyldInfoOnly, sizeof(macho::DyldInfoCommand), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

    ImageBuilder();
    /// The file. Offsets and sizes that are still 0 are filled in.
    Bytes Build() const;

private:
    struct Leaf {
        std::string symbol;
        uint32_t address;
    };

    Bytes ExportTree() const;

    Bytes commands_;
    uint32_t commandCount_ = 0;
    uint8_t libraries_ = 0;
    Bytes code_;
    Bytes words_;
    std::vector<Leaf> leaves_;
};

/// A segment command of one page in the file and in memory.
macho::SegmentCommand SegmentOf(const std::string &name, uint32_t address, uint32_t protection);

} // namespace sim::loader
