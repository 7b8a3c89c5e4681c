#include "simulator/macos/CoreServices/metadata/items/words.h"

#include <algorithm>

namespace sim::macos {

std::vector<std::string_view> Words(std::string_view text, char separator) {
    std::vector<std::string_view> words;
    while (!text.empty()) {
        const size_t end = std::min(text.find(separator), text.size());
        if (std::string_view word = WithoutBlanksAround(text.substr(0, end)); !word.empty())
            words.push_back(word);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

std::string_view WithoutBlanksAround(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string LowerCaseASCII(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

} // namespace sim::macos
