// Additions to the schema; the header stands with the other controls of the simulator.
#include "simulator/macos/CoreServices/metadata/schema/schema_attributes.h"

namespace sim::macos {

AddedSchemaAttribute::AddedSchemaAttribute(SchemaAttribute attribute) : name_(attribute.name) {
    Schema::Current().Add(std::move(attribute), {});
}

AddedSchemaAttribute::AddedSchemaAttribute(std::string name, CFDictionaryRef metaAttributes) : name_(std::move(name)) {
    Schema::Current().Add({.name = name_}, CFRef<CFDictionaryRef>::Retain(metaAttributes));
}

AddedSchemaAttribute::~AddedSchemaAttribute() { Schema::Current().Remove(name_); }

} // namespace sim::macos
