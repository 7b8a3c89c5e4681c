// Empties the cell of a host service's wrapper for a test, and again behind it: the process keeps what one test looked
// up, and the next test's host is another one.
#pragma once

#include <cstring>

namespace whitebox {

template <class Service> class Restored {
public:
    explicit Restored(Service &service) : cell_(reinterpret_cast<unsigned char *>(&service + 1) - sizeof(void *)) {
        Empty();
    }
    ~Restored() { Empty(); }
    Restored(const Restored &) = delete;
    Restored &operator=(const Restored &) = delete;

private:
    void Empty() { std::memset(cell_, 0, sizeof(void *)); }

    /// The last word of the wrapper.
    unsigned char *cell_;
};

} // namespace whitebox
