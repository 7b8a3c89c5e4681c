// The lists in platform/imports: which library of the system provides what, read here anew so that a mistake of the
// build's own reader shows.
#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace sim::validate {

struct Home {
    std::string library;
    bool isFunction = false;
    bool isWeak = false;
};

struct ProvidingLibrary {
    uint32_t currentVersion = 0;       // packed as in a library: 16 bits, then twice 8
    uint32_t compatibilityVersion = 0; // likewise
};

struct ImportLists {
    std::map<std::string, Home> homes;                 // by symbol, with the underscore
    std::map<std::string, ProvidingLibrary> libraries; // by install name

    /// Reads every list of the folder. Throws std::runtime_error for one in another form, or when there is none.
    static ImportLists Read(const std::filesystem::path &folder);
};

} // namespace sim::validate
