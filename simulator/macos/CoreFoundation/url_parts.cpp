// Taking URL strings apart, and percent escapes.
#include "simulator/macos/CoreFoundation/url.h"

#include <algorithm>

namespace sim::macos {

namespace {

bool IsLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

bool IsSchemeCharacter(char character) {
    return IsLetter(character) || IsDigit(character) || character == '+' || character == '-' || character == '.';
}

int HexValue(char character) {
    if (IsDigit(character))
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    return character >= 'A' && character <= 'F' ? character - 'A' + 10 : -1;
}

// What may stand in a path as it is.
bool StaysInPath(char character) {
    constexpr std::string_view kMarks = "-_.!~*'():@&=+$,/";
    return IsLetter(character) || IsDigit(character) || kMarks.find(character) != std::string_view::npos;
}

} // namespace

UrlParts UrlParts::Parse(std::string_view text) {
    UrlParts parts;
    if (const std::size_t mark = text.find('#'); mark != std::string_view::npos) {
        parts.fragment = text.substr(mark + 1);
        text = text.substr(0, mark);
    }
    if (const std::size_t mark = text.find('?'); mark != std::string_view::npos) {
        parts.query = text.substr(mark + 1);
        text = text.substr(0, mark);
    }
    if (const std::size_t mark = text.find(';'); mark != std::string_view::npos) {
        parts.parameters = text.substr(mark + 1);
        text = text.substr(0, mark);
    }
    const std::size_t colon = text.find(':');
    if (colon != std::string_view::npos && colon > 0 && IsLetter(text.front()) &&
        std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(colon), IsSchemeCharacter)) {
        parts.scheme = text.substr(0, colon);
        text = text.substr(colon + 1);
    }
    if (text.starts_with("//")) {
        const std::size_t end = std::min(text.find('/', 2), text.size());
        parts.authority = text.substr(2, end - 2);
        text = text.substr(end);
    }
    parts.path = text;
    return parts;
}

std::string UrlParts::ToString() const {
    return (scheme ? *scheme + ":" : "") + (authority ? "//" + *authority : "") + path +
           (parameters ? ";" + *parameters : "") + (query ? "?" + *query : "") + (fragment ? "#" + *fragment : "");
}

bool UrlParts::IsOpaque() const { return scheme && !authority && !path.starts_with('/'); }

std::string EscapedPath(std::string_view bytes) {
    constexpr char kHex[] = "0123456789ABCDEF";
    std::string text;
    for (char byte : bytes) {
        if (StaysInPath(byte)) {
            text += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        text += '%';
        text += kHex[value >> 4];
        text += kHex[value & 15];
    }
    return text;
}

std::string Unescaped(std::string_view text) {
    std::string bytes;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const bool escape = text[index] == '%' && index + 2 < text.size() && HexValue(text[index + 1]) >= 0 &&
                            HexValue(text[index + 2]) >= 0;
        if (!escape) {
            bytes += text[index];
            continue;
        }
        bytes += static_cast<char>(HexValue(text[index + 1]) * 16 + HexValue(text[index + 2]));
        index += 2;
    }
    return bytes;
}

} // namespace sim::macos
