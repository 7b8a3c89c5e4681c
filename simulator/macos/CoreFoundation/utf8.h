// Strict UTF-8: what is malformed is refused, not repaired.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sim::macos {

/// Nothing for overlong forms, surrogates, code points beyond the last, and sequences cut short.
std::optional<std::u16string> DecodeUtf8(std::string_view bytes);
/// Nothing when there is a lone surrogate.
std::optional<std::string> EncodeUtf8(std::u16string_view text);

} // namespace sim::macos
