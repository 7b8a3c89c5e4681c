// File identities as keys of hash tables.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"

#include <cstddef>
#include <functional>

namespace sim::macos::query {

struct IdentityHash {
    std::size_t operator()(const FileIdentity &identity) const {
        const std::hash<std::uint64_t> hash;
        return (hash(identity.volume) * 31 + hash(identity.file)) * 31 +
               hash(static_cast<std::uint64_t>(identity.birth));
    }
};

} // namespace sim::macos::query
