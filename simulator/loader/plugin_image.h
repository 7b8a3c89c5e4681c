// A plugin loaded into this process, whichever kind of file it comes from: the i386 Mach-O library that ships, or the
// same sources built as a shared library of this system. However it got here, its static data is its own and in its
// first state.
#pragma once

#include "simulator/loader/import_watch.h"
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
    // Hears of the plugin's calls; borrowed for as long as the plugin is loaded.
    ImportWatch *watch = nullptr;
};

class PluginImage {
public:
    using Function = void (*)();
    using Resolver = Function (*)(const char *name);
    using EntryPointFunction = void (*)(Resolver resolver);

    // Loads a fresh copy of the file, of the kind that its first four bytes tell. Throws LoadError.
    static PluginImage Load(const std::filesystem::path &path, const LoadOptions &options = {});

    // A copy in its first state for less work: one that was borrowed before and given back, if this file has not
    // changed since, else a fresh one, loaded with `openLibrary`. For plugins none of whose code runs before their
    // entry point is called. Who hears of its calls hears of those of later borrowers too, and must live for ever.
    static PluginImage Borrow(const std::filesystem::path &path, const LibraryOpener &openLibrary = OpenStandIn,
                              ImportWatch *watch = nullptr);

    PluginImage(PluginImage &&) noexcept;
    // Takes the code away, or gives it back: nobody may be left who could call it.
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

    class Lender;

    PluginImage(std::filesystem::path path, std::unique_ptr<Kind> kind, Lender *lender);

    std::filesystem::path path_;
    std::unique_ptr<Kind> kind_;
    Lender *lender_; // null when it is nobody's
};

} // namespace sim::loader
