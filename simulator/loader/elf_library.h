// A shared library of this process, searched alone or with chosen ones of those it was linked with.
#pragma once

#include <span>
#include <string>
#include <vector>

struct link_map;

namespace sim::loader {

class ElfLibrary {
public:
    // Loads the library of that name, or finds it loaded. Of the libraries that it needs, directly or through one
    // another, those named in `reexports` answer for it too. Throws std::runtime_error.
    explicit ElfLibrary(const std::string &name, std::span<const char *const> reexports = {});
    ElfLibrary(const ElfLibrary &) = delete;
    ElfLibrary &operator=(const ElfLibrary &) = delete;
    ~ElfLibrary();

    // The address of the library's own (or re-exported) symbol of that C name, or null: what it merely needs from
    // elsewhere, the C library above all, is not found.
    void *FindOwn(const std::string &name) const;

private:
    void *handle_;
    std::vector<const link_map *> members_; // itself and what it re-exports
};

} // namespace sim::loader
