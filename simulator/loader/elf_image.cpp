#include "simulator/loader/elf_image.h"

#include "simulator/loader/elf_imports.h"
#include "simulator/loader/load_error.h"
#include "simulator/loader/static_data.h"

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

} // namespace

ElfImage::ElfImage(std::span<const uint8_t> bytes, std::string_view file, const std::set<std::string> &absent) {
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
}

ElfImage::~ElfImage() {
    for (const auto &data : StaticData())
        KeepReachable(data);
    dlclose(handle_);
    close(descriptor_);
}

void *ElfImage::Find(const std::string &name) const { return dlsym(handle_, name.c_str()); }

std::vector<std::span<uint8_t>> ElfImage::StaticData() const {
    const link_map *map = nullptr;
    dlinfo(handle_, RTLD_DI_LINKMAP, &map);
    std::vector<std::span<uint8_t>> result;
    const auto collect = [&](const dl_phdr_info &info) {
        for (unsigned i = 0; i < info.dlpi_phnum; ++i) {
            const ElfW(Phdr) &segment = info.dlpi_phdr[i];
            if (segment.p_type == PT_LOAD && (segment.p_flags & PF_W))
                result.emplace_back(reinterpret_cast<uint8_t *>(info.dlpi_addr + segment.p_vaddr), segment.p_memsz);
        }
    };
    struct Search {
        const link_map *map;
        const decltype(collect) *found;
    } search{map, &collect};
    dl_iterate_phdr(
        [](dl_phdr_info *info, size_t, void *context) {
            const auto *wanted = static_cast<Search *>(context);
            if (info->dlpi_addr != wanted->map->l_addr)
                return 0;
            (*wanted->found)(*info);
            return 1;
        },
        &search);
    return result;
}

} // namespace sim::loader
