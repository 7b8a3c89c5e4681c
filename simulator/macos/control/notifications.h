// How many observer entries the local notification centre holds: an observer that outlives its object is a mistake like
// a leaked reference, and no ledger of objects shows it.
#pragma once

#include <cstddef>

namespace sim::macos::notifications {

std::size_t RegistrationCount();
std::size_t RegistrationCount(const void *observer);

} // namespace sim::macos::notifications
