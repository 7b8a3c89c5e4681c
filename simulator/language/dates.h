// Arithmetic with the fields of a date, without time zones: what the host's dates mean is GMT.
#pragma once

#include "simulator/host/entities/value.h"

namespace sim::language {

/// Seconds since 1904-01-01, as a host counts them.
int64_t TotalSeconds(const host::DateFields &fields);
host::DateFields FieldsAt(int64_t totalSeconds);
/// The same moment with every field in its range: the 32nd of January is the 1st of February.
host::DateFields Normalised(const host::DateFields &fields);
/// The moment by the clock that the stand-ins live by.
host::DateFields Now();
/// 1 for Sunday to 7 for Saturday.
int32_t DayOfWeek(const host::DateFields &fields);

} // namespace sim::language
