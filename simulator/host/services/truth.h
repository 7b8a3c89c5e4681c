// A boolean result as it really comes back from a host: only the low byte of the register is meant.
#pragma once

#include <cstdint>

namespace sim::host {

inline uint32_t Truth(bool value) { return 0xA5A5A500 | static_cast<uint32_t>(value); }

} // namespace sim::host
