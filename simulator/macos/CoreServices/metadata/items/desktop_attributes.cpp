// What programs of a Linux desktop write down with a file, under the common names of extended attributes, as the
// attributes that mean the same. Lists are separated by commas there. A rating counts half stars, up to ten.
#include "simulator/macos/CoreServices/metadata/items/attribute_reader.h"
#include "simulator/macos/CoreServices/metadata/items/values.h"
#include "simulator/macos/CoreServices/metadata/items/words.h"

#include <algorithm>
#include <charconv>

namespace sim::macos {

namespace {

/// The name of an extended attribute as a template argument.
template <std::size_t size> struct Name {
    char text[size];
    // NOLINTNEXTLINE: a literal is meant to become a name.
    constexpr Name(const char (&literal)[size]) { std::copy_n(literal, size, text); }
};

template <Name name> CFTypeRef Text(FileFacts &file) {
    const auto value = file.ExtendedAttribute(name.text);
    return value ? TextValue(*value) : nullptr;
}

template <Name name> CFTypeRef List(FileFacts &file) {
    const auto value = file.ExtendedAttribute(name.text);
    return value ? ListValue(Words(*value, ',')) : nullptr;
}

/// Where it was downloaded from, then the page that led there.
CFTypeRef WhereFroms(FileFacts &file) {
    const auto origin = file.ExtendedAttribute("user.xdg.origin.url");
    const auto referrer = file.ExtendedAttribute("user.xdg.referrer.url");
    std::vector<std::string_view> addresses;
    if (origin)
        addresses.push_back(*origin);
    if (referrer)
        addresses.push_back(*referrer);
    return ListValue(addresses);
}

CFTypeRef StarRating(FileFacts &file) {
    const std::string text = file.ExtendedAttribute("user.baloo.rating").value_or("");
    int halfStars = 0;
    const auto end = text.data() + text.size();
    if (text.empty() || std::from_chars(text.data(), end, halfStars).ptr != end || halfStars < 0 || halfStars > 10)
        return nullptr;
    return halfStars % 2 == 0 ? NumberValue(std::int64_t{halfStars / 2}) : NumberValue(halfStars / 2.0);
}

constexpr AttributeReader kDesktopReaders[] = {
    {"kMDItemFinderComment", Text<"user.xdg.comment">},
    {"kMDItemComment", Text<"user.xdg.comment">},
    {"kMDItemKeywords", List<"user.xdg.tags">},
    {"kMDItemStarRating", StarRating},
    {"kMDItemWhereFroms", WhereFroms},
    {"kMDItemCreator", Text<"user.xdg.creator">},
    {"kMDItemTitle", Text<"user.dublincore.title">},
    {"kMDItemAuthors", List<"user.dublincore.creator">},
    {"kMDItemSubject", Text<"user.dublincore.subject">},
    {"kMDItemDescription", Text<"user.dublincore.description">},
    {"kMDItemPublishers", List<"user.dublincore.publisher">},
    {"kMDItemContributors", List<"user.dublincore.contributor">},
    {"kMDItemIdentifier", Text<"user.dublincore.identifier">},
    {"kMDItemLanguages", List<"user.dublincore.language">},
    {"kMDItemCoverage", List<"user.dublincore.coverage">},
    {"kMDItemRights", Text<"user.dublincore.rights">},
};

} // namespace

std::span<const AttributeReader> DesktopAttributes() { return kDesktopReaders; }

} // namespace sim::macos
