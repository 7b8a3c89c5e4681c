#include "simulator/language/program_object.h"

namespace sim::language {

ProgramPart &PartOf(const host::Object &object) { return dynamic_cast<ProgramPart &>(*object.Get()); }

std::unique_ptr<host::Class> HostClassFor(const std::string &name, const host::Class *super) {
    auto made = super ? std::make_unique<host::Class>(*super) : std::make_unique<host::Class>();
    made->name = name;
    made->super = super;
    if (!super)
        made->dataOffset = host::Runtime::Current().options.rootDataOffset;
    return made;
}

} // namespace sim::language
