// The symbols of the C library and of the C++ runtime: same meaning on both systems, sometimes another name.
#pragma once

#include "simulator/loader/elf_library.h"

#include <string>

namespace sim::loader {

// The address that stands for a symbol of /usr/lib/libSystem.B.dylib, or null. Only names in the table are known.
void *FindSystemSymbol(const std::string &symbol);

// The address that stands for a symbol of /usr/lib/libstdc++.6.dylib, or null; `runtime` is this system's own.
void *FindCxxSymbol(const ElfLibrary &runtime, const std::string &symbol);

} // namespace sim::loader
