#include "simulator/macos/CoreServices/metadata/query/asked_values.h"

namespace sim::macos {

namespace {

AskedValues *current = nullptr;

} // namespace

AskedValues::AskedValues() : previous_(std::exchange(current, this)) {}

AskedValues::~AskedValues() { current = previous_; }

void AskedValues::Note(CFTypeRef value) {
    if (current)
        current->values_.push_back(CFRef<CFTypeRef>::Retain(value));
}

} // namespace sim::macos
