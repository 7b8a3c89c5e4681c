// What goes wrong while a plugin is loaded: one exception whose message names the file and the fault.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace sim::loader {

class LoadError : public std::runtime_error {
public:
    LoadError(std::string_view file, std::string_view fault)
        : std::runtime_error(std::string(file) + ": " + std::string(fault)) {}
};

} // namespace sim::loader
