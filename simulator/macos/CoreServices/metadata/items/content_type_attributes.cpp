// Type and kind of a file.
#include "simulator/macos/CoreServices/metadata/items/attribute_reader.h"
#include "simulator/macos/CoreServices/metadata/items/values.h"

namespace sim::macos {

namespace {

CFTypeRef ContentType(FileFacts &file) {
    const UniformType *type = file.Type();
    return type ? TextValue(type->identifier) : nullptr;
}

CFTypeRef ContentTypeTree(FileFacts &file) {
    const UniformType *type = file.Type();
    return type ? ListValue(ConformanceTree(*type)) : nullptr;
}

CFTypeRef Kind(FileFacts &file) {
    const UniformType *type = file.Type();
    return type ? TextValue(type->kind) : nullptr;
}

constexpr AttributeReader kContentTypeReaders[] = {
    {"kMDItemContentType", ContentType},
    {"kMDItemContentTypeTree", ContentTypeTree},
    {"kMDItemKind", Kind},
};

} // namespace

std::span<const AttributeReader> ContentTypeAttributes() { return kContentTypeReaders; }

} // namespace sim::macos
