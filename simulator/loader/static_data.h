// A plugin is never unloaded by its host, so what its static data points to is not lost when the process ends. The
// leak checker has to be told so twice: about memory that it does not know to be static data, and, when a test gives
// up an image for a fresh one, about what the old one held.
#pragma once

#include <cstdint>
#include <span>

namespace sim::loader {

// Makes the leak checker, where there is one, look for references in `data`, until EndLeakRoot.
void BeginLeakRoot(std::span<uint8_t> data);
void EndLeakRoot(std::span<uint8_t> data);

// Keeps what `data` refers to reachable after its memory is gone, for the rest of the process's life.
void KeepReachable(std::span<const uint8_t> data);

} // namespace sim::loader
