#include "simulator/loader/elf_imports.h"

#include "simulator/loader/byte_cursor.h"

#include <elf.h>
#include <vector>

namespace sim::loader {
namespace {

// The bytes of one section, which the file must hold.
std::span<uint8_t> Contents(std::span<uint8_t> bytes, const Elf32_Shdr &section, std::string_view file) {
    if (section.sh_offset > bytes.size() || section.sh_size > bytes.size() - section.sh_offset)
        throw LoadError(file, "a section ends after the file");
    return bytes.subspan(section.sh_offset, section.sh_size);
}

std::vector<Elf32_Shdr> Sections(std::span<const uint8_t> bytes, std::string_view file) {
    ByteCursor cursor(bytes, file, "the file");
    const auto header = cursor.Read<Elf32_Ehdr>();
    if (header.e_ident[EI_CLASS] != ELFCLASS32 || header.e_machine != EM_386 || header.e_type != ET_DYN)
        throw LoadError(file, "is not a shared library for 32-bit Intel");
    if (header.e_shentsize != sizeof(Elf32_Shdr))
        throw LoadError(file, "has section headers of an unknown size");
    cursor.Seek(header.e_shoff);
    std::vector<Elf32_Shdr> sections;
    for (unsigned i = 0; i < header.e_shnum; ++i)
        sections.push_back(cursor.Read<Elf32_Shdr>());
    return sections;
}

} // namespace

void HideImports(std::span<uint8_t> bytes, const std::set<std::string> &names, std::string_view file) {
    const std::vector<Elf32_Shdr> sections = Sections(bytes, file);
    for (const Elf32_Shdr &section : sections) {
        if (section.sh_type != SHT_DYNSYM)
            continue;
        if (section.sh_link >= sections.size())
            throw LoadError(file, "the dynamic symbols have no names");
        const auto strings = Contents(bytes, sections[section.sh_link], file);
        const auto symbols = Contents(bytes, section, file);
        ByteCursor nameCursor(strings, file, "the dynamic symbol names");
        for (size_t offset = 0; offset + sizeof(Elf32_Sym) <= symbols.size(); offset += sizeof(Elf32_Sym)) {
            Elf32_Sym symbol;
            std::memcpy(&symbol, symbols.data() + offset, sizeof symbol);
            nameCursor.Seek(symbol.st_name);
            const std::string name(nameCursor.CString());
            if (symbol.st_shndx != SHN_UNDEF || !names.contains(name))
                continue;
            if (ELF32_ST_BIND(symbol.st_info) != STB_WEAK)
                throw LoadError(file, "symbols not found: " + name + " (not a weak import)");
            ++symbol.st_name;
            std::memcpy(symbols.data() + offset, &symbol, sizeof symbol);
        }
    }
}

} // namespace sim::loader
