#include "simulator/macos/CoreServices/metadata/query/batch_pace.h"

#include <algorithm>

namespace sim::macos::query {

void BatchPace::Begin(Phase phase, CFAbsoluteTime now) {
    phase_ = phase;
    since_ = now;
    waiting_ = false;
}

void BatchPace::NoteWaiting(CFAbsoluteTime now) {
    if (phase_ == Phase::kUpdate && !waiting_)
        since_ = now;
    waiting_ = true;
}

std::size_t BatchPace::MostChanges() const {
    const std::size_t counts[] = {parameters_.first_max_num, parameters_.progress_max_num, parameters_.update_max_num};
    return std::max<std::size_t>(counts[static_cast<int>(phase_)], 1);
}

CFAbsoluteTime BatchPace::Deadline() const {
    constexpr double kMillisecondsPerSecond = 1000;
    const std::size_t times[] = {parameters_.first_max_ms, parameters_.progress_max_ms, parameters_.update_max_ms};
    return since_ + static_cast<double>(times[static_cast<int>(phase_)]) / kMillisecondsPerSecond;
}

} // namespace sim::macos::query
