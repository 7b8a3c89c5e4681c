// The static data of an image: what it held at first, and how to get back to that. A plugin is never unloaded by its
// host, so what its static data points to is not lost when the process ends. The leak checker has to be told so twice:
// about memory that it does not know to be static data, and, when a test gives up an image or its contents, about what
// they held.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace sim::loader {

// Makes the leak checker, where there is one, look for references in `data`, until EndLeakRoot.
void BeginLeakRoot(std::span<uint8_t> data);
void EndLeakRoot(std::span<uint8_t> data);

class StaticData {
public:
    // Remembers what `parts`, the writable memory of an image, hold now.
    explicit StaticData(std::vector<std::span<uint8_t>> parts);

    const std::vector<std::span<uint8_t>> &Parts() const { return parts_; }

    // Puts the memory back to what it held at first. What it referred to meanwhile stays reachable.
    void Restore() const;

    // Keeps what the memory refers to reachable after it is gone, for the rest of the process's life.
    void KeepReachable() const;

private:
    std::vector<std::span<uint8_t>> parts_;
    std::vector<std::vector<uintptr_t>> first_; // the words of each part
};

} // namespace sim::loader
