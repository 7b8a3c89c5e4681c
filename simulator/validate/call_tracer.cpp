#include "simulator/validate/call_tracer.h"

#include "simulator/validate/library_file.h"

#include <cerrno>
#include <dlfcn.h>
#include <elf.h>
#include <fstream>
#include <link.h>
#include <map>
#include <memory>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace sim::validate {
namespace {

CallTracer::Listener listener;
std::vector<std::string> functions;

extern "C" void NoteSystemCall(uint32_t number) { listener(functions[number]); }

uint32_t Address(const void *place) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(place)); }

/// Code that notes a call and goes on to where the call was going: the stack, the registers and the frames that an
/// exception passes are those of the call itself.
class Detours {
public:
    explicit Detours(size_t most) : size_(most * kSize) {
        void *memory = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            throw std::system_error(errno, std::generic_category(), "no memory for detours");
        memory_ = static_cast<uint8_t *>(memory);
    }
    Detours(const Detours &) = delete;
    Detours &operator=(const Detours &) = delete;
    ~Detours() { munmap(memory_, size_); }

    /// The address to call in place of `target`.
    uint32_t To(uint32_t number, uint32_t target) {
        uint8_t *code = memory_ + used_;
        used_ += kSize;
        const uint32_t note = Address(reinterpret_cast<const void *>(NoteSystemCall));
        uint8_t *at = code;
        Put(at, {0x60});             // pushal
        Put(at, {0x83, 0xEC, 0x08}); // subl $8, %esp: aligned again, with the argument
        Put(at, {0x68}, number);     // pushl $number
        Put(at, {0xB8}, note);       // movl $note, %eax
        Put(at, {0xFF, 0xD0});       // calll *%eax
        Put(at, {0x83, 0xC4, 0x0C}); // addl $12, %esp
        Put(at, {0x61});             // popal
        Put(at, {0xE9}, target - Address(at) - 5);
        return Address(code);
    }

    void Finish() const { mprotect(memory_, size_, PROT_READ | PROT_EXEC); }

private:
    static constexpr size_t kSize = 32;

    static void Put(uint8_t *&at, std::initializer_list<uint8_t> bytes) {
        for (const uint8_t byte : bytes)
            *at++ = byte;
    }
    static void Put(uint8_t *&at, std::initializer_list<uint8_t> bytes, uint32_t word) {
        Put(at, bytes);
        std::memcpy(at, &word, sizeof word);
        at += sizeof word;
    }

    uint8_t *memory_ = nullptr;
    size_t size_;
    size_t used_ = 0;
};

/// A word of the loaded plugin that holds the address of a function of the system.
struct CallingWord {
    uint32_t *word;
    std::string function; // its C name
};

bool IsOfFramework(const ImportLists &lists, const std::string &symbol) {
    const auto home = lists.homes.find(symbol);
    return home != lists.homes.end() && home->second.isFunction && home->second.library.starts_with("/System/");
}

std::vector<CallingWord> WordsOfMachO(const std::filesystem::path &path, const void *entryPoint,
                                      const ImportLists &lists) {
    const LibraryFile file = LibraryFile::Read(path);
    const loader::Export *entry = file.image.FindExport("_REALPluginMain");
    const uint32_t slide = Address(entryPoint) - entry->address;
    std::vector<CallingWord> words;
    for (const loader::Bind &bind : file.image.binds)
        if (const std::string &symbol = file.image.imports[bind.import].symbol; IsOfFramework(lists, symbol))
            words.push_back({reinterpret_cast<uint32_t *>(bind.address + slide), symbol.substr(1)});
    return words;
}

std::vector<CallingWord> WordsOfElf(const void *entryPoint, const ImportLists &lists) {
    Dl_info info;
    link_map *map = nullptr;
    if (!dladdr1(entryPoint, &info, reinterpret_cast<void **>(&map), RTLD_DL_LINKMAP))
        throw std::runtime_error("the native build is not where it was loaded");
    std::map<Elf32_Sword, Elf32_Addr> entries;
    for (const Elf32_Dyn *entry = map->l_ld; entry->d_tag != DT_NULL; entry++)
        entries[entry->d_tag] = entry->d_un.d_ptr;
    const auto *symbols = reinterpret_cast<const Elf32_Sym *>(entries[DT_SYMTAB]);
    const auto *names = reinterpret_cast<const char *>(entries[DT_STRTAB]);
    std::vector<CallingWord> words;
    for (const auto &[table, size] : {std::pair(DT_REL, DT_RELSZ), std::pair(DT_JMPREL, DT_PLTRELSZ)}) {
        const auto *relocations = reinterpret_cast<const Elf32_Rel *>(entries[table]);
        for (size_t i = 0; i < entries[size] / sizeof(Elf32_Rel); i++) {
            const auto type = ELF32_R_TYPE(relocations[i].r_info);
            const Elf32_Sym &symbol = symbols[ELF32_R_SYM(relocations[i].r_info)];
            const std::string name = names + symbol.st_name;
            if ((type == R_386_JMP_SLOT || type == R_386_GLOB_DAT || type == R_386_32) &&
                symbol.st_shndx == SHN_UNDEF && IsOfFramework(lists, "_" + name))
                words.push_back({reinterpret_cast<uint32_t *>(map->l_addr + relocations[i].r_offset), name});
        }
    }
    return words;
}

bool IsMachO(const std::filesystem::path &path) {
    uint32_t magic = 0;
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char *>(&magic), sizeof magic);
    return magic == loader::macho::kMagic32;
}

/// Some of the words lie in memory that is read-only by now.
void MakeWritable(const uint32_t *word) {
    const auto page = static_cast<uint32_t>(getpagesize());
    const uint32_t begin = Address(word) / page * page;
    if (mprotect(reinterpret_cast<void *>(begin), page, PROT_READ | PROT_WRITE) != 0)
        throw std::system_error(errno, std::generic_category(), "the plugin's words cannot be written");
}

std::unique_ptr<Detours> detours;

} // namespace

CallTracer::CallTracer(const std::filesystem::path &file, const void *entryPoint, const ImportLists &lists,
                       Listener toldOfEach) {
    const std::vector<CallingWord> words =
        IsMachO(file) ? WordsOfMachO(file, entryPoint, lists) : WordsOfElf(entryPoint, lists);
    if (words.empty())
        throw std::runtime_error(file.string() + ": it calls nothing of the system");
    listener = std::move(toldOfEach);
    detours = std::make_unique<Detours>(words.size());
    for (const CallingWord &word : words) {
        MakeWritable(word.word);
        *word.word = detours->To(static_cast<uint32_t>(functions.size()), *word.word);
        functions.push_back(word.function);
    }
    detours->Finish();
}

CallTracer::~CallTracer() {
    detours.reset();
    functions.clear();
    listener = {};
}

} // namespace sim::validate
