// What bytes mean, said by ICU: the other opinion against which the conversions are held.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fuzz {

/// The text of bytes in a one-byte encoding or UTF-8 as a strict reader takes them; nothing when they are malformed.
std::optional<std::u16string> Decoded(std::string_view bytes, const char *converter);

/// Text in UTF-8; nothing when it has a lone surrogate.
std::optional<std::string> InUTF8(std::u16string_view text);

} // namespace fuzz
