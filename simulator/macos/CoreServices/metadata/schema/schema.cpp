#include "simulator/macos/CoreServices/metadata/schema/schema.h"

#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/control/stop.h"

#include <CoreServices/MDSchema.h>

namespace sim::macos {

namespace {

struct Row {
    std::string_view name;
    ElementType type;
    bool isMultiValued;
    std::string_view displayName;
    std::string_view displayDescription;
};

constexpr bool Single = false;
constexpr bool Multiple = true;

constexpr Row kRows[] = {
#define SCHEMA_ATTRIBUTE(key, type, multiplicity, displayName, displayDescription)                                     \
    {#key, ElementType::type, multiplicity, displayName, displayDescription},
#include "simulator/macos/CoreServices/metadata/schema/attributes.def"
};

} // namespace

CFTypeID TypeIDOf(ElementType type) {
    switch (type) {
    case ElementType::String:
        return CFStringGetTypeID();
    case ElementType::Number:
        return CFNumberGetTypeID();
    case ElementType::Date:
        return CFDateGetTypeID();
    case ElementType::Boolean:
        return CFBooleanGetTypeID();
    case ElementType::Data:
        return CFDataGetTypeID();
    case ElementType::Dictionary:
        return CFDictionaryGetTypeID();
    case ElementType::UUID:
        return CFUUIDGetTypeID();
    }
    Stop("The schema has no such type of value.");
}

CFMutableDictionaryRef CreateMetaAttributes(const SchemaAttribute &attribute) {
    const auto typeID = static_cast<SInt64>(attribute.isMultiValued ? CFArrayGetTypeID() : TypeIDOf(attribute.type));
    const auto name = MakeString(attribute.name);
    const auto type = CFRef<CFNumberRef>::Adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &typeID));
    const CFMutableDictionaryRef dictionary = CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(dictionary, kMDAttributeName, name.Get());
    CFDictionarySetValue(dictionary, kMDAttributeType, type.Get());
    CFDictionarySetValue(dictionary, kMDAttributeMultiValued,
                         attribute.isMultiValued ? kCFBooleanTrue : kCFBooleanFalse);
    return dictionary;
}

Schema::Schema() {
    for (const Row &row : kRows)
        Add({std::string(row.name), row.type, row.isMultiValued, std::string(row.displayName),
             std::string(row.displayDescription)},
            {});
}

Schema &Schema::Current() {
    static Schema *schema = new Schema;
    return *schema;
}

const Schema::Entry *Schema::FindEntry(std::string_view name) const {
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : &*found->second;
}

const SchemaAttribute *Schema::Find(std::string_view name) const {
    const Entry *entry = FindEntry(name);
    return entry ? &entry->attribute : nullptr;
}

std::vector<std::string_view> Schema::Names() const {
    std::vector<std::string_view> names;
    for (const Entry &entry : entries_)
        names.push_back(entry.attribute.name);
    return names;
}

CFDictionaryRef Schema::CopyMetaAttributes(std::string_view name) const {
    const Entry *entry = FindEntry(name);
    if (!entry)
        return nullptr;
    return entry->metaAttributes ? entry->metaAttributes.Copy().Give() : CreateMetaAttributes(entry->attribute);
}

void Schema::Add(SchemaAttribute attribute, CFRef<CFDictionaryRef> metaAttributes) {
    if (Find(attribute.name))
        Stop("The schema has an attribute " + attribute.name + " already.");
    entries_.push_back({std::move(attribute), std::move(metaAttributes)});
    const auto entry = std::prev(entries_.end());
    byName_.emplace(entry->attribute.name, entry);
}

void Schema::Remove(std::string_view name) {
    const auto found = byName_.find(name);
    if (found == byName_.end())
        Stop("The schema has no attribute " + std::string(name) + " to take away.");
    const auto entry = found->second;
    byName_.erase(found);
    entries_.erase(entry);
}

} // namespace sim::macos
