// A shared library of this system brought in as a copy of its file, so that each one has static data of its own even
// when the same file was loaded before.
#pragma once

#include "simulator/loader/import_watch.h"
#include "simulator/loader/static_data.h"

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct dl_phdr_info;

namespace sim::loader {

class ElfImage {
public:
    // Loads a copy of the library in `bytes`. Its imports of the C names in `absent` are not met: weak ones become
    // null, others fail the load. `watch` hears of its calls and may be null. Throws LoadError.
    ElfImage(std::span<const uint8_t> bytes, std::string_view file, const std::set<std::string> &absent,
             ImportWatch *watch = nullptr);
    ElfImage(const ElfImage &) = delete;
    ElfImage &operator=(const ElfImage &) = delete;
    ~ElfImage();

    // False for a library that counts how often its code ran: its counters are static data that must live on.
    bool CanRest() const { return !counts_; }
    // Between uses: static data is as it was once the library's initialisers had run, its code and data are out of
    // reach, so that whoever still holds an address of them is caught.
    void Rest();
    // Makes it ready for the next use. Initialisers do not run again.
    void Wake();

    // The address of an export by its C name, or null.
    void *Find(const std::string &name) const;

    // "": the dynamic linker knows these addresses better.
    static std::string Describe(const void *) { return ""; }

private:
    // A run of pages with one protection.
    struct Pages {
        uint8_t *begin;
        size_t size;
        int protection;
    };

    void FindSegments();
    void AddSegments(const dl_phdr_info &info);
    void Protect(bool accessible) const;

    ImportStubs stubs_;
    bool counts_;
    int descriptor_;
    void *handle_ = nullptr;
    std::vector<Pages> pages_; // of the code and of what stays writable once the library is relocated
    std::optional<StaticData> staticData_;
    bool resting_ = false;
};

} // namespace sim::loader
