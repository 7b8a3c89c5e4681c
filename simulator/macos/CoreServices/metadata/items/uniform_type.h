// Uniform type identifiers: the types of content, what each conforms to, and the kind of file a person calls it. A
// small part of the platform's own list; a type that is not in it is plain data.
#pragma once

#include <string_view>
#include <vector>

namespace sim::macos {

struct UniformType {
    std::string_view identifier;
    /// Identifiers of the types it conforms to directly, separated by blanks.
    std::string_view conformsTo;
    /// Lower-case file name extensions without the dot, separated by blanks.
    std::string_view extensions;
    /// What a person calls such a file; empty for types that no file has by itself.
    std::string_view kind;
};

/// Null for an identifier that is not in the list.
const UniformType *FindUniformType(std::string_view identifier);

/// The identifier must be in the list.
const UniformType &UniformTypeNamed(std::string_view identifier);

/// The type of a file, or of a package when a folder is asked for, by its extension in any case; null when the
/// extension says nothing.
const UniformType *UniformTypeForExtension(std::string_view extension, bool isFolder);

bool ConformsTo(const UniformType &type, std::string_view identifier);

/// The type and all it conforms to, each once: the type first, then the ancestors of its first parent, and so on.
std::vector<std::string_view> ConformanceTree(const UniformType &type);

} // namespace sim::macos
