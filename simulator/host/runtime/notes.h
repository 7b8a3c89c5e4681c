// What a host notes of a plugin: what it asked for, what it called, what it raised.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sim::host {

/// One question to the resolver, or one load by declaration.
struct Request {
    std::string name;
    bool answered = false;
    /// Whether this stand-in has such a service at all; a name that it does not know deserves a look.
    bool known = false;
};

/// One call of a service.
struct ServiceCall {
    std::string name;
    /// The name with its text and integer arguments: `PluginNewInstance("Date")`.
    std::string text;
};

/// An exception object as it was when it was raised.
struct RaisedException {
    std::string className;
    /// Nothing when "Message" or "ErrorNumber" was never set.
    std::optional<std::string> message;
    std::optional<uint32_t> messageEncoding;
    std::optional<int32_t> errorNumber;

    bool Is(std::string_view name, std::string_view text) const { return className == name && message == text; }
};

} // namespace sim::host
