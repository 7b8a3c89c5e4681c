#include "simulator/loader/elf_image.h"

#include "simulator/loader/elf_imports.h"
#include "simulator/loader/load_error.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

namespace sim::loader {
namespace {

int DescriptorHolding(std::span<const uint8_t> bytes, std::string_view file) {
    const int descriptor = memfd_create("plugin", MFD_CLOEXEC);
    if (descriptor < 0)
        throw LoadError(file, std::string("cannot be copied: ") + std::strerror(errno));
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0) {
            const std::string reason = std::strerror(errno);
            close(descriptor);
            throw LoadError(file, "cannot be copied: " + reason);
        }
        bytes = bytes.subspan(static_cast<size_t>(written));
    }
    return descriptor;
}

// Whether clang's instrumentation for coverage put its section there.
bool HasCounters(std::span<const uint8_t> bytes) {
    constexpr std::string_view kSection = "__llvm_prf_cnts";
    return memmem(bytes.data(), bytes.size(), kSection.data(), kSection.size()) != nullptr;
}

ElfW(Addr) PageOf(ElfW(Addr) address) { return address & ~static_cast<ElfW(Addr)>(getpagesize() - 1); }

int ProtectionOf(ElfW(Word) flags) {
    return (flags & PF_R ? PROT_READ : 0) | (flags & PF_W ? PROT_WRITE : 0) | (flags & PF_X ? PROT_EXEC : 0);
}

const link_map &MapOf(void *handle) {
    const link_map *map = nullptr;
    dlinfo(handle, RTLD_DI_LINKMAP, &map);
    return *map;
}

} // namespace

ElfImage::ElfImage(std::span<const uint8_t> bytes, std::string_view file, const std::set<std::string> &absent,
                   ImportWatch *watch)
    : stubs_(watch), counts_(HasCounters(bytes)) {
    std::vector<uint8_t> copy(bytes.begin(), bytes.end());
    HideImports(copy, absent, file);
    descriptor_ = DescriptorHolding(copy, file);
    // The descriptor stays open as long as the library, because the system takes libraries of one path for the same.
    // The path names the process, so that a symboliser started by a sanitizer finds the file too.
    const std::string path = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(descriptor_);
    handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle_) {
        const std::string reason = dlerror();
        close(descriptor_);
        throw LoadError(file, reason.starts_with(path + ": ") ? reason.substr(path.size() + 2) : reason);
    }
    stubs_.PutInFrontOf(MapOf(handle_));
    FindSegments();
}

ElfImage::~ElfImage() {
    if (resting_)
        Wake();
    staticData_->KeepReachable();
    dlclose(handle_);
    close(descriptor_);
}

void ElfImage::Rest() {
    staticData_->Restore();
    Protect(false);
    resting_ = true;
}

void ElfImage::Wake() {
    Protect(true);
    resting_ = false;
}

void *ElfImage::Find(const std::string &name) const { return dlsym(handle_, name.c_str()); }

void ElfImage::FindSegments() {
    const link_map *map = &MapOf(handle_);
    struct Search {
        const link_map *map;
        ElfImage *image;
    } search{map, this};
    dl_iterate_phdr(
        [](dl_phdr_info *info, size_t, void *context) {
            const auto *wanted = static_cast<Search *>(context);
            if (info->dlpi_addr != wanted->map->l_addr)
                return 0;
            wanted->image->AddSegments(*info);
            return 1;
        },
        &search);
}

void ElfImage::AddSegments(const dl_phdr_info &info) {
    const std::span segments(info.dlpi_phdr, info.dlpi_phnum);
    // What only relocation writes to is read-only by now.
    ElfW(Addr) relocatedBegin = 0;
    ElfW(Addr) relocatedEnd = 0;
    for (const ElfW(Phdr) & segment : segments)
        if (segment.p_type == PT_GNU_RELRO) {
            relocatedBegin = PageOf(segment.p_vaddr);
            relocatedEnd = PageOf(segment.p_vaddr + segment.p_memsz);
        }
    std::vector<std::span<uint8_t>> data;
    for (const ElfW(Phdr) & segment : segments) {
        if (segment.p_type != PT_LOAD || !(segment.p_flags & (PF_W | PF_X)))
            continue;
        ElfW(Addr) begin = PageOf(segment.p_vaddr);
        const ElfW(Addr) end = segment.p_vaddr + segment.p_memsz;
        if (begin >= relocatedBegin && begin < relocatedEnd)
            begin = relocatedEnd;
        if (begin >= end)
            continue;
        auto *const first = reinterpret_cast<uint8_t *>(info.dlpi_addr + begin);
        pages_.push_back({first, end - begin, ProtectionOf(segment.p_flags)});
        if (segment.p_flags & PF_W)
            data.emplace_back(first, end - begin);
    }
    staticData_.emplace(std::move(data));
}

void ElfImage::Protect(bool accessible) const {
    for (const Pages &pages : pages_)
        mprotect(pages.begin, pages.size, accessible ? pages.protection : PROT_NONE);
}

} // namespace sim::loader
