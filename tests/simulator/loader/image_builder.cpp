#include "tests/simulator/loader/image_builder.h"

#include <algorithm>
#include <cstring>

namespace sim::loader {
namespace {

template <class Record> Bytes BytesOf(const Record &record) {
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

void Put(Bytes &file, size_t offset, const Bytes &bytes) {
    if (file.size() < offset + bytes.size())
        file.resize(offset + bytes.size());
    std::ranges::copy(bytes, file.begin() + static_cast<std::ptrdiff_t>(offset));
}

} // namespace

Bytes Uleb(uint64_t value) {
    Bytes bytes;
    do {
        const auto part = static_cast<uint8_t>(value & 0x7F);
        value >>= 7;
        bytes.push_back(static_cast<uint8_t>(part | (value ? 0x80 : 0)));
    } while (value);
    return bytes;
}

Bytes Text(const std::string &text) {
    Bytes bytes(text.begin(), text.end());
    bytes.push_back(0);
    return bytes;
}

Bytes operator+(Bytes left, const Bytes &right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

macho::SegmentCommand SegmentOf(const std::string &name, uint32_t address, uint32_t protection) {
    macho::SegmentCommand segment{};
    segment.command = macho::kSegment;
    segment.size = sizeof segment;
    std::ranges::copy(name, segment.name);
    segment.address = segment.fileOffset = address;
    segment.memorySize = segment.fileSize = macho::kPageSize;
    segment.maximumProtection = 7;
    segment.initialProtection = protection;
    return segment;
}

ImageBuilder::ImageBuilder()
    : text(SegmentOf("__TEXT", 0, macho::kProtectionRead | macho::kProtectionExecute)),
      data(SegmentOf("__DATA", kData, macho::kProtectionRead | macho::kProtectionWrite)),
      linkEdit(SegmentOf("__LINKEDIT", kLinkEdit, macho::kProtectionRead)) {}

uint8_t ImageBuilder::AddLibrary(const std::string &installName, uint32_t command) {
    macho::DylibCommand record{command, 0, sizeof(macho::DylibCommand), 2, 0x10000, 0x10000};
    Bytes name = Text(installName);
    name.resize((name.size() + 3) / 4 * 4);
    record.size = static_cast<uint32_t>(sizeof record + name.size());
    commands_ = commands_ + BytesOf(record) + name;
    ++commandCount_;
    return command == macho::kIdDylib ? uint8_t{0} : ++libraries_;
}

void ImageBuilder::Bind(const std::string &symbol, uint8_t ordinal, uint32_t offset, bool weak, int8_t addend) {
    const auto flags = static_cast<uint8_t>(weak ? macho::kSymbolFlagWeakImport : 0);
    bindStream = bindStream + Bytes{static_cast<uint8_t>(macho::kBindSetOrdinal | ordinal)} +
                 Bytes{static_cast<uint8_t>(macho::kBindSetSymbol | flags)} + Text(symbol) +
                 Bytes{macho::kBindSetType | macho::kFixupTypePointer} +
                 Bytes{macho::kBindSetAddend, static_cast<uint8_t>(addend & 0x7F)} +
                 Bytes{macho::kBindSetSegmentAndOffset | kDataSegment} + Uleb(offset) + Bytes{macho::kBindOnce};
}

void ImageBuilder::Rebase(uint32_t offset) {
    rebaseStream = rebaseStream + Bytes{macho::kRebaseSetType | macho::kFixupTypePointer} +
                   Bytes{macho::kRebaseSetSegmentAndOffset | kDataSegment} + Uleb(offset) +
                   Bytes{macho::kRebaseTimes | 1};
}

void ImageBuilder::SetWord(uint32_t offset, uint32_t value) { Put(words_, offset, BytesOf(value)); }

void ImageBuilder::Export(const std::string &symbol, uint32_t address) { leaves_.push_back({symbol, address}); }

Bytes ImageBuilder::ExportTree() const {
    if (leaves_.empty())
        return exportTree;
    // Every offset is written in two bytes, so that the size of the root is known before the leaves are placed.
    const auto offsetOf = [](size_t offset) {
        return Bytes{static_cast<uint8_t>(offset | 0x80), static_cast<uint8_t>(offset >> 7)};
    };
    size_t place = 2;
    for (const Leaf &leaf : leaves_)
        place += leaf.symbol.size() + 1 + 2;
    Bytes root{0, static_cast<uint8_t>(leaves_.size())};
    Bytes rest;
    for (const Leaf &leaf : leaves_) {
        root = root + Text(leaf.symbol) + offsetOf(place + rest.size());
        const Bytes payload = Uleb(0) + Uleb(leaf.address);
        rest = rest + Uleb(payload.size()) + payload + Bytes{0};
    }
    return root + rest;
}

Bytes ImageBuilder::Build() const {
    Bytes linkEditBytes;
    macho::DyldInfoCommand info = dyldInfo;
    const auto place = [&](uint32_t &offset, uint32_t &size, const Bytes &bytes) {
        if (offset != 0 || size != 0 || bytes.empty())
            return;
        offset = kLinkEdit + static_cast<uint32_t>(linkEditBytes.size());
        size = static_cast<uint32_t>(bytes.size());
        linkEditBytes = linkEditBytes + bytes;
    };
    place(info.rebaseOffset, info.rebaseSize, rebaseStream);
    place(info.bindOffset, info.bindSize, bindStream);
    place(info.lazyBindOffset, info.lazyBindSize, lazyBindStream);
    place(info.exportOffset, info.exportSize, ExportTree());

    macho::SegmentCommand dataCommand = data;
    dataCommand.sectionCount += static_cast<uint32_t>(dataSections.size());
    dataCommand.size += static_cast<uint32_t>(dataSections.size() * sizeof(macho::SectionRecord));
    Bytes commands = BytesOf(text) + BytesOf(dataCommand);
    for (const macho::SectionRecord &section : dataSections)
        commands = commands + BytesOf(section);
    commands = commands + BytesOf(linkEdit) + commands_ + BytesOf(info) + extraCommands;

    macho::Header head = header;
    if (head.commandCount == 0)
        head.commandCount = 4 + commandCount_ + extraCommandCount;
    if (head.commandBytes == 0)
        head.commandBytes = static_cast<uint32_t>(commands.size());

    Bytes file(kLinkEdit + macho::kPageSize);
    Put(file, 0, BytesOf(head) + commands);
    Put(file, kCode, code_);
    Put(file, kData, words_);
    Put(file, kLinkEdit, linkEditBytes);
    return file;
}

} // namespace sim::loader
