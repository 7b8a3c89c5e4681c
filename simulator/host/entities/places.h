// Where a run is: in the program, in a call of the program, in a service. Everything that lives remembers where it was
// made and where it died, so that a report can tell its story.
#pragma once

#include "simulator/host/ground/call_listener.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace sim::host {

/// Where in a run something happened: a service call, or the program itself, perhaps inside a call of the program.
struct Place {
    const char *service = nullptr;
    uint32_t call = 0;
    const std::string *during = nullptr;

    std::string Describe() const;
};

class Places {
public:
    Place Now() const;

    /// What the program is doing, for as long as the object lives.
    class During {
    public:
        During(Places &places, const std::string &what);
        During(const During &) = delete;
        During &operator=(const During &) = delete;
        ~During() { places_.during_.pop_back(); }

    private:
        Places &places_;
    };

    /// The service that is being carried out from now on; `name` must outlive the host.
    void Enter(const char *name, uint32_t call) { services_.push_back({name, call}); }
    void Leave() { services_.pop_back(); }

    /// Hears of the calls in which the run is; borrowed, null while nobody listens.
    CallListener *listener = nullptr;

private:
    struct Running {
        const char *service;
        uint32_t call;
    };

    std::set<std::string> names_;
    std::vector<const std::string *> during_;
    std::vector<Running> services_;
};

} // namespace sim::host
