// A host that is no more than the calls of start-up, and believes everything: it keeps the words that it is handed and
// looks behind none of them. The stand-in host would stop at a table that is not there.
#pragma once

#include "simulator/loader/plugin_image.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tests {

/// A fresh copy of the plugin under test, started by a host of that version; 0 stands for none. One at a time.
class BareStart {
public:
    explicit BareStart(double version);

    using Words = std::vector<uint32_t>;

    struct Handed {
        /// The class records by their names.
        std::map<std::string, Words> classes;
        std::optional<Words> module;
        std::optional<Words> method;
    };
    const Handed &Arrived() const { return handed_; }

    /// The names of services that the plugin has asked for, in its order, since the start of the last one.
    static const std::vector<std::string> &Asked() { return asked_; }

private:
    static void (*Resolve(const char *name))();

    static inline BareStart *current_ = nullptr;
    static inline std::vector<std::string> asked_;

    double version_;
    Handed handed_;
    sim::loader::PluginImage image_;
};

} // namespace tests
