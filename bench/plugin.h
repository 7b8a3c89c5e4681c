// A plugin started by the bare host, whichever kind of file it comes from, and the functions that it registered.
#pragma once

#include "bench/bare_host.h"
#include "simulator/loader/plugin_image.h"

#include <filesystem>
#include <string_view>

namespace bench {

class Plugin {
public:
    /// A fresh copy, which has not been started.
    explicit Plugin(const std::filesystem::path &file, Age age);

    /// REALPluginMain, which a host calls once.
    void (*EntryPoint() const)(Resolver) { return image_.EntryPoint(); }

    Age HostAge() const { return age_; }

    /// A method of a class, or what a property is computed by, from the records of the plugin that was started last.
    /// Stops when there is none with a declaration that begins so.
    template <class Function> Function Method(const char *className, std::string_view declaration) const {
        return reinterpret_cast<Function>(FindMethod(className, declaration));
    }
    /// The plugin's global method.
    template <class Function> Function GlobalMethod() const {
        return reinterpret_cast<Function>(bench::GlobalMethod()[0]);
    }

private:
    uint32_t FindMethod(const char *className, std::string_view declaration) const;

    Age age_;
    sim::loader::PluginImage image_;
};

} // namespace bench
