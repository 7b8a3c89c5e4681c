// A boolean result as it really comes back from a host: only the low byte of the register is meant.
#pragma once

#include <cstdint>

namespace sim::host {

enum class Truth : uint32_t {};

inline Truth TruthOf(bool value) { return Truth{0xA5A5A500 | static_cast<uint32_t>(value)}; }
inline bool IsTrue(Truth truth) { return (static_cast<uint32_t>(truth) & 0xFF) != 0; }

} // namespace sim::host
