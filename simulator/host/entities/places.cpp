#include "simulator/host/entities/places.h"

namespace sim::host {

std::string Place::Describe() const {
    std::string text = service ? std::string(service) + " (call " + std::to_string(call) + ")" : "the program";
    if (during && !during->empty())
        text += " during " + *during;
    return text;
}

Place Places::Now() const {
    Running running = services_.empty() ? Running{nullptr, 0} : services_.back();
    return {running.service, running.call, during_.empty() ? nullptr : during_.back()};
}

Places::During::During(Places &places, const std::string &what) : places_(places) {
    places_.during_.push_back(&*places_.names_.insert(what).first);
}

} // namespace sim::host
