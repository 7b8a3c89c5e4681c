// What files about the order of calls expect of texts: how the host is asked for one, and the text that queries have.
#pragma once

#include <string>

namespace tests {

inline constexpr const char *kAsk = "REALGetStringCFString";

/// The host is asked for the text as a CFString.
inline std::string Asked(const std::string &text) { return std::string(kAsk) + "(\"" + text + "\", 0)"; }

inline const std::string kText = "kMDItemFSName == '*'";
inline const std::string kQuotedText = '"' + kText + '"';

} // namespace tests
