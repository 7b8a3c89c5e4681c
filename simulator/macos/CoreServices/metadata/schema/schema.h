// What is known about attributes, whatever file they belong to: name, type, whether there may be several values, and
// the words for a person. One table of all the system's attributes (attributes.def), to which a test can add
// (CoreServices/metadata/schema/schema_attributes.h).
#pragma once

#include "simulator/macos/CoreFoundation/ref.h"

#include <CoreFoundation/CoreFoundation.h>

#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sim::macos {

/// The type of one value.
enum class ElementType { String, Number, Date, Boolean, Data, Dictionary, UUID };

/// The run-time identifier of values of that type.
CFTypeID TypeIDOf(ElementType type);

struct SchemaAttribute {
    std::string name;
    ElementType type = ElementType::String;
    bool isMultiValued = false;
    /// No text, as for an attribute that the running system has no words for, gives null.
    std::string displayName = {};
    std::string displayDescription = {};
};

/// The dictionary that describes the attribute to programs, +1. A multi-valued attribute has the type of an array.
CFMutableDictionaryRef CreateMetaAttributes(const SchemaAttribute &attribute);

class Schema {
public:
    /// The schema of this process.
    static Schema &Current();

    /// Null for an attribute that it does not know.
    const SchemaAttribute *Find(std::string_view name) const;

    /// The names of all attributes: the system's in the order of its headers, then those that were added.
    std::vector<std::string_view> Names() const;

    /// +1, or null for an unknown attribute.
    CFDictionaryRef CopyMetaAttributes(std::string_view name) const;

    /// Adds an attribute. Its dictionary is the given one, or the one that describes it when null is given. Stops for a
    /// name that the schema has.
    void Add(SchemaAttribute attribute, CFRef<CFDictionaryRef> metaAttributes);
    /// Takes an added attribute away again.
    void Remove(std::string_view name);

private:
    struct Entry {
        SchemaAttribute attribute;
        /// Empty: made from the attribute when asked for.
        CFRef<CFDictionaryRef> metaAttributes;
    };

    Schema();
    const Entry *FindEntry(std::string_view name) const;

    std::list<Entry> entries_;
    std::unordered_map<std::string_view, std::list<Entry>::iterator> byName_;
};

} // namespace sim::macos
