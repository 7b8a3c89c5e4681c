// Attributes that a test adds to the schema, for what the system's own list does not show: other types of value, and
// descriptions that lack an entry or hold an unexpected one.
#pragma once

#include "simulator/macos/CoreServices/metadata/schema/schema.h"

#include <string>

namespace sim::macos {

/// An attribute that the schema knows for as long as this object lives. Stops for a name that the schema has.
class AddedSchemaAttribute {
public:
    explicit AddedSchemaAttribute(SchemaAttribute attribute);

    /// One that is described by a dictionary of the caller's, whatever it holds; the dictionary is retained.
    AddedSchemaAttribute(std::string name, CFDictionaryRef metaAttributes);

    ~AddedSchemaAttribute();
    AddedSchemaAttribute(const AddedSchemaAttribute &) = delete;
    AddedSchemaAttribute &operator=(const AddedSchemaAttribute &) = delete;

private:
    std::string name_;
};

} // namespace sim::macos
