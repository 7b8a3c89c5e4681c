#include "simulator/loader/elf_library.h"

#include <algorithm>
#include <dlfcn.h>
#include <link.h>
#include <stdexcept>
#include <string_view>

namespace sim::loader {
namespace {

const link_map *EntryOf(void *handle) {
    const link_map *map = nullptr;
    dlinfo(handle, RTLD_DI_LINKMAP, &map);
    return map;
}

// The names under which the library was linked with others.
std::vector<std::string_view> NeededBy(const link_map &map) {
    const char *strings = nullptr;
    for (const ElfW(Dyn) *entry = map.l_ld; entry->d_tag != DT_NULL; ++entry)
        if (entry->d_tag == DT_STRTAB)
            strings = reinterpret_cast<const char *>(entry->d_un.d_ptr);
    std::vector<std::string_view> names;
    for (const ElfW(Dyn) *entry = map.l_ld; entry->d_tag != DT_NULL; ++entry)
        if (entry->d_tag == DT_NEEDED)
            names.emplace_back(strings + entry->d_un.d_val);
    return names;
}

void AddReexports(const link_map &map, std::span<const char *const> reexports, std::vector<const link_map *> &members) {
    for (const std::string_view needed : NeededBy(map)) {
        if (std::ranges::find(reexports, needed) == reexports.end())
            continue;
        void *handle = dlopen(std::string(needed).c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (!handle)
            continue;
        const link_map *member = EntryOf(handle);
        dlclose(handle); // whoever needs it keeps it loaded
        if (std::ranges::find(members, member) != members.end())
            continue;
        members.push_back(member);
        AddReexports(*member, reexports, members);
    }
}

} // namespace

ElfLibrary::ElfLibrary(const std::string &name, std::span<const char *const> reexports)
    : handle_(dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (!handle_)
        throw std::runtime_error(dlerror());
    members_.push_back(EntryOf(handle_));
    AddReexports(*members_.front(), reexports, members_);
}

ElfLibrary::~ElfLibrary() { dlclose(handle_); }

void *ElfLibrary::FindOwn(const std::string &name) const {
    void *address = dlsym(handle_, name.c_str());
    if (!address)
        return nullptr;
    Dl_info info;
    void *owner = nullptr;
    if (!dladdr1(address, &info, &owner, RTLD_DL_LINKMAP))
        return nullptr;
    const bool own = std::ranges::find(members_, static_cast<const link_map *>(owner)) != members_.end();
    return own ? address : nullptr;
}

} // namespace sim::loader
