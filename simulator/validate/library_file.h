// The library as a file: what the loader's reader makes of it, and beside that what only a validator wants to know.
#pragma once

#include "simulator/loader/image.h"
#include "simulator/loader/macho_format.h"

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim::validate {

struct Command {
    uint32_t kind = 0;
    std::vector<uint8_t> body; // from the command's first byte

    /// The record at the command's beginning. Throws std::runtime_error when it is too short.
    template <class Record> Record As() const;
    /// The 32-bit word at an offset.
    uint32_t Word(size_t offset) const;
};

struct LibraryFile {
    std::vector<uint8_t> bytes;
    loader::Image image;
    loader::macho::Header header{};
    std::vector<Command> commands;
    std::vector<loader::macho::SegmentCommand> segments;
    std::vector<loader::macho::SectionRecord> sections;
    /// Where functions begin, by address, from the table that the linker leaves for tools.
    std::vector<uint32_t> functions;
    /// Where jump tables begin among the code, by address.
    std::vector<uint32_t> jumpTables;

    /// Throws loader::LoadError or std::runtime_error.
    static LibraryFile Read(const std::filesystem::path &path);

    /// The part of the file that a command names by its two words behind kind and size.
    std::span<const uint8_t> LinkEdit(const Command &command) const;
    std::vector<const Command *> CommandsOf(uint32_t kind) const;
    /// The section's bytes in the file. Throws std::runtime_error when there is no such section.
    std::span<const uint8_t> Contents(const std::string &segment, const std::string &section) const;
    const loader::Section &SectionNamed(const std::string &segment, const std::string &section) const;
    bool IsFunction(uint32_t address) const;
    /// The word at an address, as the file has it.
    uint32_t WordAt(uint32_t address) const;
};

/// The text of a fixed field, which has a terminator only when it is not full.
std::string FixedText(const char (&field)[16]);

/// "15.5.0" of a packed version: 16 bits, then twice 8.
std::string VersionText(uint32_t packed);

/// "0x1f40".
std::string Hex(uint32_t number);

} // namespace sim::validate

template <class Record> Record sim::validate::Command::As() const {
    Record record;
    if (body.size() < sizeof record)
        throw std::runtime_error("load command " + Hex(kind) + " is too short");
    std::memcpy(&record, body.data(), sizeof record);
    return record;
}
