// What stands in for the libraries that an image names: each answers for exactly the symbols that the real one has, so
// that a symbol recorded from the wrong library is not found, as on the real system.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace sim::loader {

class Library {
public:
    virtual ~Library() = default;

    // The address of a function or variable by the name in the image (with the underscore), or null.
    virtual void *Find(const std::string &symbol) const = 0;
};

// Gives the library that stands in for an install name, or null when nothing does.
using LibraryOpener = std::function<std::unique_ptr<Library>(const std::string &installName)>;

// The stand-in frameworks by the last component of their path, the C library and the C++ runtime. Throws
// std::runtime_error when the stand-in is not where the program was built to find it.
std::unique_ptr<Library> OpenStandIn(const std::string &installName);

} // namespace sim::loader
