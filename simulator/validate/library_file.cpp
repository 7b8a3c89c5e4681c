#include "simulator/validate/library_file.h"

#include "simulator/loader/image_reader.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace sim::validate {
namespace {

namespace macho = loader::macho;

std::vector<uint8_t> Bytes(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error(path.string() + ": cannot be read");
    return {std::istreambuf_iterator<char>(file), {}};
}

// The loader's reader has checked that the commands lie inside the file and follow one another.
std::vector<Command> Commands(const std::vector<uint8_t> &bytes, const macho::Header &header) {
    std::vector<Command> commands;
    size_t at = sizeof header;
    for (uint32_t i = 0; i < header.commandCount; i++) {
        macho::CommandHeader head;
        std::memcpy(&head, bytes.data() + at, sizeof head);
        const auto begin = bytes.begin() + static_cast<ptrdiff_t>(at);
        commands.push_back({head.command, {begin, begin + static_cast<ptrdiff_t>(head.size)}});
        at += head.size;
    }
    return commands;
}

// Distances from one function to the next, in groups of seven bits.
std::vector<uint32_t> FunctionStarts(std::span<const uint8_t> table, uint32_t base) {
    std::vector<uint32_t> starts;
    uint32_t address = base;
    uint32_t distance = 0;
    unsigned shift = 0;
    for (const uint8_t byte : table) {
        distance |= static_cast<uint32_t>(byte & 0x7F) << shift;
        shift += 7;
        if (byte & 0x80)
            continue;
        if (distance == 0)
            break;
        starts.push_back(address += distance);
        distance = shift = 0;
    }
    return starts;
}

// Records of a distance from the header, a length and a kind.
std::vector<uint32_t> DataStarts(std::span<const uint8_t> table, uint32_t base) {
    constexpr size_t kRecord = 8;
    std::vector<uint32_t> starts;
    for (size_t at = 0; at + kRecord <= table.size(); at += kRecord) {
        uint32_t distance = 0;
        std::memcpy(&distance, table.data() + at, sizeof distance);
        starts.push_back(base + distance);
    }
    std::ranges::sort(starts);
    return starts;
}

} // namespace

LibraryFile LibraryFile::Read(const std::filesystem::path &path) {
    LibraryFile file;
    file.bytes = Bytes(path);
    file.image = loader::ReadImage(file.bytes, path.filename().string());
    std::memcpy(&file.header, file.bytes.data(), sizeof file.header);
    file.commands = Commands(file.bytes, file.header);
    for (const Command &command : file.commands) {
        if (command.kind == macho::kFunctionStarts)
            file.functions = FunctionStarts(file.LinkEdit(command), file.image.base);
        if (command.kind == macho::kDataInCode)
            file.jumpTables = DataStarts(file.LinkEdit(command), file.image.base);
        if (command.kind != macho::kSegment)
            continue;
        const auto segment = command.As<macho::SegmentCommand>();
        file.segments.push_back(segment);
        for (uint32_t i = 0; i < segment.sectionCount; i++) {
            macho::SectionRecord section;
            std::memcpy(&section, command.body.data() + sizeof segment + i * sizeof section, sizeof section);
            file.sections.push_back(section);
        }
    }
    return file;
}

std::span<const uint8_t> LibraryFile::LinkEdit(const Command &command) const {
    const uint32_t offset = command.Word(8), size = command.Word(12);
    if (offset > bytes.size() || size > bytes.size() - offset)
        throw std::runtime_error("load command " + Hex(command.kind) + " names more than the file has");
    return std::span(bytes).subspan(offset, size);
}

std::vector<const Command *> LibraryFile::CommandsOf(uint32_t kind) const {
    std::vector<const Command *> found;
    for (const Command &command : commands)
        if (command.kind == kind)
            found.push_back(&command);
    return found;
}

const loader::Section &LibraryFile::SectionNamed(const std::string &segment, const std::string &section) const {
    const loader::Section *found = image.FindSection(segment, section);
    if (!found)
        throw std::runtime_error("there is no section " + segment + "," + section);
    return *found;
}

std::span<const uint8_t> LibraryFile::Contents(const std::string &segment, const std::string &section) const {
    for (const macho::SectionRecord &record : sections)
        if (FixedText(record.segmentName) == segment && FixedText(record.name) == section) {
            if (record.fileOffset > bytes.size() || record.size > bytes.size() - record.fileOffset)
                throw std::runtime_error("section " + section + " ends after the file");
            return std::span(bytes).subspan(record.fileOffset, record.size);
        }
    throw std::runtime_error("there is no section " + segment + "," + section);
}

bool LibraryFile::IsFunction(uint32_t address) const { return std::ranges::binary_search(functions, address); }

uint32_t LibraryFile::WordAt(uint32_t address) const {
    for (const macho::SegmentCommand &segment : segments)
        if (address >= segment.address && address - segment.address < segment.fileSize &&
            segment.fileSize - (address - segment.address) >= sizeof(uint32_t)) {
            uint32_t word = 0;
            std::memcpy(&word, bytes.data() + segment.fileOffset + (address - segment.address), sizeof word);
            return word;
        }
    throw std::runtime_error("nothing of the file lies at " + Hex(address));
}

uint32_t Command::Word(size_t offset) const {
    uint32_t word = 0;
    if (offset + sizeof word > body.size())
        throw std::runtime_error("load command " + Hex(kind) + " is too short");
    std::memcpy(&word, body.data() + offset, sizeof word);
    return word;
}

std::string FixedText(const char (&field)[16]) { return {field, std::find(field, field + 16, '\0')}; }

std::string VersionText(uint32_t packed) {
    return std::to_string(packed >> 16) + "." + std::to_string(packed >> 8 & 0xFF) + "." +
           std::to_string(packed & 0xFF);
}

std::string Hex(uint32_t number) {
    std::string text;
    do
        text.insert(text.begin(), "0123456789abcdef"[number % 16]);
    while (number /= 16);
    return "0x" + text;
}

} // namespace sim::validate
