// A Mach-O library living in this process: mapped, bound, its frames known to the unwinder, its static data known to
// the leak checker, its initialisers run.
#pragma once

#include "simulator/loader/image.h"
#include "simulator/loader/image_mapper.h"
#include "simulator/loader/library.h"
#include "simulator/loader/unwind_table.h"

#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

namespace sim::loader {

class MachOImage {
public:
    // Brings the library in `bytes` to life; they are not needed afterwards. `absent` as for BindImports. Throws
    // LoadError.
    MachOImage(std::span<const uint8_t> bytes, std::string_view file, const LibraryOpener &open,
               const std::set<std::string> &absent);
    MachOImage(const MachOImage &) = delete;
    MachOImage &operator=(const MachOImage &) = delete;
    ~MachOImage(); // runs the terminators and takes everything away

    // The address of an export by its C name, or null.
    void *Find(const std::string &name) const;

    // The function or variable that an address of the image lies in, "MyCallBack+0x12"; "" for other addresses.
    std::string Describe(const void *address) const;

private:
    using Initialiser = void (*)();

    void ForEachFunction(uint32_t sectionType, void (*call)(Initialiser)) const;

    Image image_;
    MappedImage mapped_;
    std::optional<UnwindRegistration> unwind_;
};

} // namespace sim::loader
