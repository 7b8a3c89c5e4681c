// Gives every import of a mapped image its address. Only here do names matter.
#pragma once

#include "simulator/loader/image.h"
#include "simulator/loader/image_mapper.h"
#include "simulator/loader/import_watch.h"
#include "simulator/loader/library.h"

#include <set>
#include <string>
#include <string_view>

namespace sim::loader {

// Fills the bound words of `mapped`, lazy ones too, and does so before it is protected. `absent` holds the C names of
// symbols that no library is to have. A weak import that is not met becomes null; for the others LoadError names each
// with the library that it was recorded from. `stubs` may put something in front of what is met.
void BindImports(const Image &image, const MappedImage &mapped, const LibraryOpener &open,
                 const std::set<std::string> &absent, ImportStubs &stubs, std::string_view file);

} // namespace sim::loader
