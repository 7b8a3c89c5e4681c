// The one way in which failures reach a host program: as host exceptions, raised by class name with a message. A raise
// takes effect when the plugin returns to the host, so callers return their neutral value straight after it.
#pragma once

#include <cstdint>

/// Raises an exception of the named class, or a "RuntimeException" where the application has no such class. The message
/// is 7-bit ASCII; null leaves it unset. The number and the flags are not used.
void RaiseException(const char *name, const char *message, uint32_t errorNumber = 0, int32_t flags = 0);

/// Raises "OutOfBoundsException" for a value outside 0 to count - 1. The further arguments are not used.
void RaiseOutOfBoundsException(int64_t value, int64_t count, int64_t lowerBound = 0, const char *prefix = "",
                               const char *suffix = "");

/// Only inside a catch block: raises the host exception that stands for the C++ exception being handled. Inside another
/// such raise it comes without a message.
void RaiseCaughtException();
