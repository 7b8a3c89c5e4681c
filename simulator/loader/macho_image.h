// A Mach-O library living in this process: mapped, bound, its frames known to the unwinder, its static data known to
// the leak checker, its initialisers run.
#pragma once

#include "simulator/loader/image.h"
#include "simulator/loader/image_mapper.h"
#include "simulator/loader/import_watch.h"
#include "simulator/loader/library.h"
#include "simulator/loader/static_data.h"
#include "simulator/loader/unwind_table.h"

#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

namespace sim::loader {

class MachOImage {
public:
    // Brings the library in `bytes` to life; they are not needed afterwards. `absent` as for BindImports; `watch`
    // hears of its calls and may be null. Throws LoadError.
    MachOImage(std::span<const uint8_t> bytes, std::string_view file, const LibraryOpener &open,
               const std::set<std::string> &absent, ImportWatch *watch = nullptr);
    MachOImage(const MachOImage &) = delete;
    MachOImage &operator=(const MachOImage &) = delete;
    ~MachOImage(); // runs the terminators and takes everything away

    static bool CanRest() { return true; }
    // Between uses: ends this one as the destructor does, with static data as it was at first and all memory out of
    // reach, so that whoever still holds an address of the image is caught.
    void Rest();
    // Begins the next use as the constructor does.
    void Wake();

    // The address of an export by its C name, or null.
    void *Find(const std::string &name) const;

    // The function or variable that an address of the image lies in, "MyCallBack+0x12"; "" for other addresses.
    std::string Describe(const void *address) const;

private:
    using Initialiser = void (*)();

    void Begin();
    void End();
    void ForEachFunction(uint32_t sectionType, void (*call)(Initialiser)) const;

    ImportStubs stubs_;
    Image image_;
    MappedImage mapped_;
    std::optional<UnwindRegistration> unwind_;
    std::optional<StaticData> staticData_;
    bool resting_ = false;
};

} // namespace sim::loader
