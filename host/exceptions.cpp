#include "host/exceptions.h"

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <typeinfo>

#include "host/objects.h"
#include "host/strings.h"
#include "host/zeroed_buffer.h"

namespace {

constexpr size_t kRangeMessageSize = 205;

// What the host throws while a property is set is dropped: the raise goes on without it.
void SetExceptionMessage(REALobjectStruct *exception, REALstringStruct *message) {
    try {
        REALSetPropValueString(exception, "Message", message);
    } catch (...) {
    }
}
void SetExceptionNumber(REALobjectStruct *exception) {
    try {
        // Deliberate: the number is 0 whatever the caller passed.
        REALSetPropValueInteger(exception, "ErrorNumber", 0);
    } catch (...) {
    }
}

/// Raises for a C++ exception. One that is caught while the message of another is built is raised without a message, so
/// that the chain ends there on a host that cannot build any.
void RaiseCaught(const char *name, const char *message) {
    static constinit bool isRaising = false;
    if (isRaising) {
        RaiseException(name, nullptr);
        return;
    }
    struct Raising {
        Raising() { isRaising = true; }
        ~Raising() { isRaising = false; }
    };
    const Raising raising;
    RaiseException(name, message);
}

} // namespace

void RaiseException(const char *name, const char *message, uint32_t, int32_t) {
    const auto text = message ? ASCIIText(message) : OwnedString();
    const auto exception = NewInstance(name, "RuntimeException");
    if (!exception)
        return;
    if (text)
        SetExceptionMessage(exception.Get(), text.Get());
    SetExceptionNumber(exception.Get());
    REALRaiseException(exception.Get());
}

void RaiseOutOfBoundsException(int64_t value, int64_t count, int64_t, const char *, const char *) {
    const auto message = NewZeroedBuffer<char>(kRangeMessageSize);
    if (!message) {
        RaiseException("OutOfBoundsException", "Out of Bounds");
        return;
    }
    const char *format = value < 0 ? "Parameter %s %s%s is too small. Range is %lld to %lld, but value is %lld."
                                   : "Parameter %s %s%s is too big. Range is %lld to %lld, but value is %lld.";
    // Deliberate: the empty texts leave two blanks after the parameter's name.
    std::snprintf(message.get(), kRangeMessageSize, format, "index", "", "", 0LL, static_cast<long long>(count - 1),
                  static_cast<long long>(value));
    RaiseException("OutOfBoundsException", message.get());
}

void RaiseCaughtException() {
    try {
        throw;
    } catch (const std::range_error &error) {
        RaiseCaught("OutOfBoundsException", error.what());
    } catch (const std::out_of_range &error) {
        RaiseCaught("OutOfBoundsException", error.what());
    } catch (const std::overflow_error &error) {
        RaiseCaught("OutOfBoundsException", error.what());
    } catch (const std::underflow_error &error) {
        RaiseCaught("OutOfBoundsException", error.what());
    } catch (const std::bad_cast &error) {
        RaiseCaught("IllegalCastException", error.what());
    } catch (const std::exception &error) {
        RaiseCaught("RuntimeException", error.what());
    } catch (...) {
        RaiseCaught("RuntimeException", "Sorry, but there was an unnamed C++ Exception.");
    }
}
