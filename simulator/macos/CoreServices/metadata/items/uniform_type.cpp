#include "simulator/macos/CoreServices/metadata/items/uniform_type.h"

#include "simulator/macos/CoreServices/metadata/items/uniform_type_table.h"
#include "simulator/macos/CoreServices/metadata/items/words.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <unordered_map>

namespace sim::macos {

namespace {

using TypeIndex = std::unordered_map<std::string_view, const UniformType *>;

TypeIndex IndexByIdentifier() {
    TypeIndex index;
    for (const UniformType &type : kUniformTypes)
        index.emplace(type.identifier, &type);
    return index;
}

TypeIndex IndexByExtension() {
    TypeIndex index;
    for (const UniformType &type : kUniformTypes)
        for (std::string_view extension : Words(type.extensions, ' '))
            index.emplace(extension, &type);
    return index;
}

void AppendWithAncestors(const UniformType &type, std::vector<std::string_view> &tree) {
    if (std::find(tree.begin(), tree.end(), type.identifier) != tree.end())
        return;
    tree.push_back(type.identifier);
    for (std::string_view parent : Words(type.conformsTo, ' '))
        AppendWithAncestors(UniformTypeNamed(parent), tree);
}

} // namespace

const UniformType *FindUniformType(std::string_view identifier) {
    static const TypeIndex index = IndexByIdentifier();
    const auto found = index.find(identifier);
    return found == index.end() ? nullptr : found->second;
}

const UniformType &UniformTypeNamed(std::string_view identifier) {
    const UniformType *type = FindUniformType(identifier);
    if (!type)
        std::abort();
    return *type;
}

const UniformType *UniformTypeForExtension(std::string_view extension, bool isFolder) {
    static const TypeIndex index = IndexByExtension();
    const auto found = index.find(LowerCaseASCII(extension));
    if (found == index.end() || ConformsTo(*found->second, "public.directory") != isFolder)
        return nullptr;
    return found->second;
}

bool ConformsTo(const UniformType &type, std::string_view identifier) {
    if (type.identifier == identifier)
        return true;
    const auto parents = Words(type.conformsTo, ' ');
    return std::any_of(parents.begin(), parents.end(),
                       [&](std::string_view parent) { return ConformsTo(UniformTypeNamed(parent), identifier); });
}

std::vector<std::string_view> ConformanceTree(const UniformType &type) {
    std::vector<std::string_view> tree;
    AppendWithAncestors(type, tree);
    return tree;
}

} // namespace sim::macos
