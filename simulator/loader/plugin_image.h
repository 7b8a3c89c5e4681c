// A plugin loaded into this process, whichever kind of file it comes from: the i386 Mach-O library that ships, or the
// same sources built as a shared library of this system. Every load is a fresh copy with fresh static data.
#pragma once

#include "simulator/loader/library.h"
#include "simulator/loader/load_error.h"

#include <filesystem>
#include <memory>
#include <set>
#include <string>

namespace sim::loader {

struct LoadOptions {
    // C names of symbols that the running system lacks. Weak imports of them become null; a strong one fails the load.
    std::set<std::string> absentSymbols = {};
    // What stands in for the libraries that a Mach-O image names. A shared library of this system finds its own.
    LibraryOpener openLibrary = OpenStandIn;
};

class PluginImage {
public:
    using Function = void (*)();
    using Resolver = Function (*)(const char *name);
    using EntryPointFunction = void (*)(Resolver resolver);

    // Loads the file, of the kind that its first four bytes tell. Throws LoadError.
    static PluginImage Load(const std::filesystem::path &path, const LoadOptions &options = {});

    PluginImage(PluginImage &&) noexcept;
    PluginImage &operator=(PluginImage &&) noexcept;
    // Takes the code away: nobody may be left who could call it.
    ~PluginImage();

    // REALPluginMain. Throws LoadError when the plugin does not export it.
    EntryPointFunction EntryPoint() const;

    // The address of an export by its C name, or null.
    void *Find(const std::string &name) const;

    // Names an address in any living image that the dynamic linker does not know, "MyCallBack+0x12"; "" for others.
    static std::string Describe(const void *address);

private:
    class Kind;
    template <class Image> class KindOf;

    PluginImage(std::filesystem::path path, std::unique_ptr<Kind> kind);

    std::filesystem::path path_;
    std::unique_ptr<Kind> kind_;
};

} // namespace sim::loader
