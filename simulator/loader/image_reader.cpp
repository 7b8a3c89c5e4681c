#include "simulator/loader/image_reader.h"

#include "simulator/loader/byte_cursor.h"
#include "simulator/loader/export_trie.h"
#include "simulator/loader/fixup_reader.h"
#include "simulator/loader/macho_format.h"

#include <algorithm>
#include <optional>

namespace sim::loader {
namespace {

constexpr uint32_t kLargestImage = 256u << 20;

// The text of a fixed field, which has a terminator only when it is not full.
template <size_t Size> std::string FixedText(const char (&field)[Size]) {
    return {field, std::find(field, field + Size, '\0')};
}

class Reader {
public:
    Reader(std::span<const uint8_t> bytes, std::string_view file) : bytes_(bytes), file_(file) {}

    Image Read() {
        ReadHeader();
        ReadCommands();
        CheckLayout();
        ReadLinkEdit();
        ReadSymbols();
        return std::move(image_);
    }

private:
    [[noreturn]] void Fail(const std::string &fault) const { throw LoadError(file_, fault); }

    void ReadHeader();
    void ReadCommands();
    void ReadCommand(uint32_t command, std::span<const uint8_t> body);
    void ReadSegment(std::span<const uint8_t> body);
    void ReadSection(const Segment &segment, const macho::SectionRecord &record);
    void ReadDylib(uint32_t command, std::span<const uint8_t> body);
    void CheckLayout();
    void ReadLinkEdit();
    void ReadSymbols();
    std::span<const uint8_t> LinkEdit(uint32_t offset, uint32_t size, const char *what) const;

    std::span<const uint8_t> bytes_;
    std::string_view file_;
    macho::Header header_{};
    std::optional<macho::DyldInfoCommand> dyldInfo_;
    std::optional<macho::SymbolTableCommand> symbolTable_;
    Image image_;
};

void Reader::ReadHeader() {
    uint32_t magic = 0;
    if (bytes_.size() >= sizeof magic)
        std::memcpy(&magic, bytes_.data(), sizeof magic);
    if (magic == macho::kMagic64)
        Fail("is a 64-bit Mach-O file; only 32-bit Intel libraries can be loaded");
    if (magic == macho::kMagicFat)
        Fail("holds several architectures; extract the i386 one first");
    if (magic != macho::kMagic32)
        Fail("is not a Mach-O file");
    header_ = ByteCursor(bytes_, file_, "the header").Read<macho::Header>();
    if (header_.cpuType != macho::kCpuTypeI386)
        Fail("is for processor type " + std::to_string(header_.cpuType) + ", not for i386");
    if (header_.fileType != macho::kFileTypeDylib)
        Fail("is of file type " + std::to_string(header_.fileType) + ", not a dynamic library");
}

void Reader::ReadCommands() {
    if (header_.commandBytes > bytes_.size() - sizeof(macho::Header))
        Fail("the load commands end after the file");
    const auto area = bytes_.subspan(sizeof(macho::Header), header_.commandBytes);
    ByteCursor cursor(area, file_, "the list of load commands");
    for (uint32_t i = 0; i < header_.commandCount; ++i) {
        const size_t start = cursor.Position();
        const auto head = cursor.Read<macho::CommandHeader>();
        if (head.size < sizeof head || head.size % 4 != 0 || head.size > area.size() - start)
            Fail("load command " + std::to_string(i) + " has the impossible size " + std::to_string(head.size));
        ReadCommand(head.command, area.subspan(start, head.size));
        cursor.Seek(start + head.size);
    }
}

void Reader::ReadCommand(uint32_t command, std::span<const uint8_t> body) {
    switch (command) {
    case macho::kSegment:
        ReadSegment(body);
        break;
    case macho::kIdDylib:
    case macho::kLoadDylib:
    case macho::kLoadWeakDylib:
    case macho::kReexportDylib:
        ReadDylib(command, body);
        break;
    case macho::kDyldInfo:
    case macho::kDyldInfoOnly:
        if (dyldInfo_)
            Fail("has two commands with dynamic linking information");
        dyldInfo_ = ByteCursor(body, file_, "the dynamic linking command").Read<macho::DyldInfoCommand>();
        break;
    case macho::kSymbolTable:
        symbolTable_ = ByteCursor(body, file_, "the symbol table command").Read<macho::SymbolTableCommand>();
        break;
    case macho::kDynamicSymbolTable: {
        const auto table =
            ByteCursor(body, file_, "the dynamic symbol table command").Read<macho::DynamicSymbolTableCommand>();
        if (table.externalRelocationCount != 0 || table.localRelocationCount != 0)
            Fail("has relocation tables, which are not modelled");
        break;
    }
    default:
        if (command & macho::kCommandRequired)
            Fail("has load command " + std::to_string(command & ~macho::kCommandRequired) +
                 ", which must be obeyed and is not modelled");
    }
}

void Reader::ReadSegment(std::span<const uint8_t> body) {
    ByteCursor cursor(body, file_, "a segment command");
    const auto command = cursor.Read<macho::SegmentCommand>();
    const Segment segment{FixedText(command.name), command.address,  command.memorySize,
                          command.fileOffset,      command.fileSize, command.initialProtection};
    const std::string name = "segment " + segment.name;
    if (segment.address % macho::kPageSize != 0)
        Fail(name + " does not begin on a page");
    if (segment.memorySize > UINT32_MAX - segment.address)
        Fail(name + " ends past the last address");
    if (segment.fileOffset > bytes_.size() || segment.fileSize > bytes_.size() - segment.fileOffset)
        Fail(name + " ends after the file");
    if (segment.fileSize > segment.memorySize)
        Fail(name + " has more contents than room");
    for (uint32_t i = 0; i < command.sectionCount; ++i)
        ReadSection(segment, cursor.Read<macho::SectionRecord>());
    image_.segments.push_back(segment);
}

void Reader::ReadSection(const Segment &segment, const macho::SectionRecord &record) {
    const Section section{FixedText(record.name), FixedText(record.segmentName), record.address, record.size,
                          record.flags & macho::kSectionTypeMask};
    const std::string name = "section " + section.segmentName + "," + section.name;
    const uint32_t offset = section.address - segment.address;
    if (section.address < segment.address || offset > segment.memorySize || section.size > segment.memorySize - offset)
        Fail(name + " lies outside its segment");
    const bool zeroFilled = section.type == macho::kSectionZeroFill || section.type == macho::kSectionGigabyteZeroFill;
    if (!zeroFilled && section.size > 0 && (offset > segment.fileSize || section.size > segment.fileSize - offset))
        Fail(name + " lies outside the contents of its segment");
    if (record.relocationCount != 0)
        Fail(name + " has relocations, which are not modelled");
    if (section.type == macho::kSectionSymbolStubs && section.size > 0)
        Fail(name + " holds symbol stubs; 32-bit ones jump to fixed addresses and cannot be moved");
    image_.sections.push_back(section);
}

void Reader::ReadDylib(uint32_t command, std::span<const uint8_t> body) {
    ByteCursor cursor(body, file_, "a library command");
    const auto record = cursor.Read<macho::DylibCommand>();
    cursor.Seek(record.nameOffset);
    const std::string name(cursor.CString());
    if (command == macho::kIdDylib)
        image_.installName = name;
    else
        image_.dylibs.push_back({name, record.currentVersion, record.compatibilityVersion,
                                 command == macho::kLoadWeakDylib, command == macho::kReexportDylib});
}

void Reader::CheckLayout() {
    if (image_.segments.empty())
        Fail("has no segments");
    std::vector<const Segment *> byAddress;
    for (const Segment &segment : image_.segments)
        byAddress.push_back(&segment);
    std::ranges::sort(byAddress, {}, &Segment::address);
    for (size_t i = 1; i < byAddress.size(); ++i)
        if (byAddress[i]->address - byAddress[i - 1]->address < byAddress[i - 1]->memorySize)
            Fail("segments " + byAddress[i - 1]->name + " and " + byAddress[i]->name + " overlap");

    const Segment &first = *byAddress.front();
    if (first.fileOffset != 0 || first.fileSize < sizeof(macho::Header) + header_.commandBytes)
        Fail("the first segment does not hold the header");
    image_.base = first.address;
    image_.imageSize = byAddress.back()->address + byAddress.back()->memorySize - first.address;
    if (image_.imageSize > kLargestImage)
        Fail("spreads over " + std::to_string(image_.imageSize) + " bytes of memory, more than is reasonable");
}

std::span<const uint8_t> Reader::LinkEdit(uint32_t offset, uint32_t size, const char *what) const {
    if (offset > bytes_.size() || size > bytes_.size() - offset)
        Fail(std::string(what) + " ends after the file");
    return bytes_.subspan(offset, size);
}

void Reader::ReadLinkEdit() {
    if (!dyldInfo_)
        Fail("has no compressed dynamic linking information (it was made for a system before 10.6)");
    if (dyldInfo_->weakBindSize != 0)
        Fail("has symbols to be coalesced with other images', which is not modelled");
    ReadRebases(image_, LinkEdit(dyldInfo_->rebaseOffset, dyldInfo_->rebaseSize, "the rebase stream"), file_);
    ReadBinds(image_, LinkEdit(dyldInfo_->bindOffset, dyldInfo_->bindSize, "the bind stream"), false, file_);
    ReadBinds(image_, LinkEdit(dyldInfo_->lazyBindOffset, dyldInfo_->lazyBindSize, "the lazy bind stream"), true,
              file_);
    ReadExportTrie(image_, LinkEdit(dyldInfo_->exportOffset, dyldInfo_->exportSize, "the export tree"), file_);
}

void Reader::ReadSymbols() {
    if (!symbolTable_)
        return;
    constexpr uint32_t kMost = UINT32_MAX / sizeof(macho::SymbolRecord);
    if (symbolTable_->symbolCount > kMost)
        Fail("the symbol table ends after the file");
    const uint32_t size = symbolTable_->symbolCount * static_cast<uint32_t>(sizeof(macho::SymbolRecord));
    ByteCursor records(LinkEdit(symbolTable_->symbolOffset, size, "the symbol table"), file_, "the symbol table");
    ByteCursor names(LinkEdit(symbolTable_->stringOffset, symbolTable_->stringSize, "the list of symbol names"), file_,
                     "the list of symbol names");
    while (!records.AtEnd()) {
        const auto record = records.Read<macho::SymbolRecord>();
        if ((record.type & macho::kSymbolDebugMask) ||
            (record.type & macho::kSymbolTypeMask) != macho::kSymbolInSection)
            continue;
        names.Seek(record.nameOffset);
        const std::string_view name = names.CString();
        if (name.size() > macho::kLongestSymbol)
            Fail("the symbol table has a name of more than " + std::to_string(macho::kLongestSymbol) + " characters");
        image_.symbols.push_back({std::string(name), record.value});
    }
    std::ranges::stable_sort(image_.symbols, {}, &Symbol::address);
}

} // namespace

Image ReadImage(std::span<const uint8_t> bytes, std::string_view file) { return Reader(bytes, file).Read(); }

} // namespace sim::loader
