#include "simulator/loader/import_watch.h"

#include <cerrno>
#include <cstring>
#include <link.h>
#include <span>
#include <string_view>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace sim::loader {
namespace {

// The bytes that call Hear with the stub and the address of the caller's arguments, keeping the stack aligned, and then
// go on to the function as if nothing had been in between, or back to the caller with 0.
class Code {
public:
    Code &Bytes(std::initializer_list<uint8_t> bytes) {
        bytes_.insert(bytes_.end(), bytes);
        return *this;
    }
    Code &Word(const void *word) {
        const auto value = reinterpret_cast<uintptr_t>(word);
        for (unsigned shift = 0; shift < 32; shift += 8)
            bytes_.push_back(static_cast<uint8_t>(value >> shift));
        return *this;
    }
    std::span<const uint8_t> Get() const { return bytes_; }

private:
    std::vector<uint8_t> bytes_;
};

size_t PageSize() { return static_cast<size_t>(sysconf(_SC_PAGESIZE)); }

void *Executable(std::span<const uint8_t> code) {
    void *page = mmap(nullptr, PageSize(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED)
        throw std::system_error(errno, std::generic_category(), "memory for an import's stub");
    std::memcpy(page, code.data(), code.size());
    mprotect(page, PageSize(), PROT_READ | PROT_EXEC);
    return page;
}

// The value of one entry of a library's dynamic section, which the dynamic linker has made an address where it is one.
uintptr_t DynamicEntry(const link_map &library, ElfW(Sword) tag) {
    for (const ElfW(Dyn) *entry = library.l_ld; entry->d_tag != DT_NULL; ++entry)
        if (entry->d_tag == tag)
            return entry->d_un.d_val;
    return 0;
}

std::span<const ElfW(Rel)> Relocations(const link_map &library, ElfW(Sword) table, ElfW(Sword) size) {
    return {reinterpret_cast<const ElfW(Rel) *>(DynamicEntry(library, table)),
            DynamicEntry(library, size) / sizeof(ElfW(Rel))};
}

// The word may lie in memory that became read-only once it was bound, and stays so.
void Rebind(void **word, void *address) {
    const uintptr_t page = reinterpret_cast<uintptr_t>(word) & ~(PageSize() - 1);
    mprotect(reinterpret_cast<void *>(page), PageSize(), PROT_READ | PROT_WRITE);
    *word = address;
}

} // namespace

struct ImportStubs::Stub {
    Stub(ImportWatch &itsWatch, std::string itsName, const void *function) : watch(itsWatch), name(std::move(itsName)) {
        Code code;
        code.Bytes({0x8D, 0x44, 0x24, 0x04}) // lea eax, [esp + 4]
            .Bytes({0x83, 0xEC, 0x04, 0x50}) // sub esp, 4; push eax
            .Bytes({0x68})
            .Word(this) // push this
            .Bytes({0xB8})
            .Word(reinterpret_cast<const void *>(Hear)) // mov eax, Hear
            .Bytes({0xFF, 0xD0, 0x83, 0xC4, 0x0C})      // call eax; add esp, 12
            .Bytes({0x84, 0xC0, 0x74, 0x07})            // test al, al; jz past the jump
            .Bytes({0xB8})
            .Word(function)
            .Bytes({0xFF, 0xE0})        // mov eax, function; jmp eax
            .Bytes({0x31, 0xC0, 0xC3}); // xor eax, eax; ret
        entry = Executable(code.Get());
    }
    Stub(const Stub &) = delete;
    Stub &operator=(const Stub &) = delete;
    ~Stub() { munmap(entry, PageSize()); }

    static bool Hear(const Stub *stub, const uint32_t *arguments) noexcept {
        return stub->watch.Hear(stub->name.c_str(), arguments);
    }

    ImportWatch &watch;
    std::string name;
    void *entry;
};

ImportStubs::ImportStubs(ImportWatch *watch) : watch_(watch) {}
ImportStubs::~ImportStubs() = default;

void *ImportStubs::InFrontOf(const std::string &name, void *address) {
    if (!watch_ || !address || !watch_->Wants(name))
        return address;
    return stubs_.emplace_back(std::make_unique<Stub>(*watch_, name, address))->entry;
}

void ImportStubs::PutInFrontOf(const link_map &library) {
    const auto *symbols = reinterpret_cast<const ElfW(Sym) *>(DynamicEntry(library, DT_SYMTAB));
    const auto *names = reinterpret_cast<const char *>(DynamicEntry(library, DT_STRTAB));
    if (!watch_ || !symbols || !names)
        return;
    for (const auto relocations :
         {Relocations(library, DT_REL, DT_RELSZ), Relocations(library, DT_JMPREL, DT_PLTRELSZ)})
        for (const ElfW(Rel) & relocation : relocations) {
            const ElfW(Sym) &symbol = symbols[ELF32_R_SYM(relocation.r_info)];
            if (ELF32_R_SYM(relocation.r_info) == 0 || symbol.st_shndx != SHN_UNDEF)
                continue;
            auto **word = reinterpret_cast<void **>(library.l_addr + relocation.r_offset);
            void *stub = InFrontOf(names + symbol.st_name, *word);
            if (stub != *word)
                Rebind(word, stub);
        }
}

} // namespace sim::loader
