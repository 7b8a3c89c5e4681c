// What the parser knows of a query's text, for those who ask before they make a query of it.
#include "simulator/macos/control/query_text.h"

#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreServices/metadata/expression/parser.h"

#include <variant>

namespace sim::macos {

namespace {

void Collect(const expression::Node &node, std::vector<std::string> &names) {
    if (const auto *junction = std::get_if<expression::Junction>(&node.content)) {
        for (const expression::Node &part : junction->parts)
            Collect(part, names);
    } else if (const auto *comparison = std::get_if<expression::Comparison>(&node.content)) {
        names.push_back(comparison->attribute);
    } else if (const auto *presence = std::get_if<expression::Presence>(&node.content)) {
        names.push_back(presence->attribute);
    } else if (const auto *range = std::get_if<expression::Range>(&node.content)) {
        names.push_back(range->attribute);
    }
}

} // namespace

std::optional<QueryMistake> MistakeIn(std::string_view query) {
    const std::u16string text = Utf16(query);
    expression::Mistake mistake;
    if (expression::Parse(text, &mistake))
        return std::nullopt;
    return QueryMistake{Utf8(std::u16string_view(text).substr(0, mistake.at)).size(), std::string(mistake.expected)};
}

std::vector<std::string> AttributesIn(std::string_view query) {
    std::vector<std::string> names;
    if (const auto root = expression::Parse(Utf16(query)))
        Collect(*root, names);
    return names;
}

} // namespace sim::macos
