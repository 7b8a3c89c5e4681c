// Byte buffers: a copy of the bytes they were made from, never changed. An empty buffer has no byte pointer.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/ref.h"

#include <CoreFoundation/CFData.h>

#include <span>
#include <vector>

namespace sim::macos {

class Data final : public Object {
public:
    explicit Data(std::span<const UInt8> bytes) : bytes_(bytes.begin(), bytes.end()) {}

    CFTypeID TypeID() const override { return CFDataGetTypeID(); }
    bool EqualTo(const Object &other) const override;
    CFHashCode Hash() const override;
    std::string Description() const override;

    std::span<const UInt8> Bytes() const { return bytes_; }

private:
    std::vector<UInt8> bytes_;
};

/// A new buffer with a copy of the bytes.
CFRef<CFDataRef> MakeData(std::span<const UInt8> bytes);

} // namespace sim::macos
