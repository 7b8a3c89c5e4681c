// What the output says of an item, read through its methods and properties as a program would.
#pragma once

#include "simulator/host/host.h"

#include <filesystem>
#include <string>

namespace sim::cli {

struct ItemFacts {
    std::string name;
    host::Value kind;
    /// Bytes; nil for a folder, which has no size of its own.
    host::Value size;
    host::Value modified;
    std::string path;
};

/// Reads one item after another. The keys' names are asked for once.
class ItemReader {
public:
    explicit ItemReader(host::Host &host);

    ItemFacts Read(host::Object &item) const;

private:
    std::string kind_;
    std::string size_;
    std::string modified_;
};

/// The path as seen from a folder that it lies in; as it is when it lies elsewhere.
std::string PathFrom(const std::filesystem::path &folder, const std::string &path);

} // namespace sim::cli
