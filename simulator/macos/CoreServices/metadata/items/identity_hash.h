// File identities as keys of hash tables.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"

#include <cstddef>
#include <functional>

namespace sim::macos {

/// Without the birth: files that were made one after the other then lie beside each other in a table, as they do in
/// memory.
struct IdentityHash {
    std::size_t operator()(const FileIdentity &identity) const {
        const std::hash<std::uint64_t> hash;
        return hash(identity.volume) * 31 + hash(identity.file);
    }
};

} // namespace sim::macos
