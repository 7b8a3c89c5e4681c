#include "simulator/host/entities/reference.h"

#include "simulator/host/entities/heap.h"

#include <utility>

namespace sim::host {

Reference Reference::Adopt(Entity *entity) {
    if (entity)
        ++entity->programReferences;
    return Reference(entity);
}

Reference Reference::Share(Entity *entity) {
    if (entity)
        entity->heap->Lock(*entity);
    return Adopt(entity);
}

Reference::Reference(const Reference &other) : Reference(Share(other.entity_)) {}

Reference::Reference(Reference &&other) noexcept : entity_(std::exchange(other.entity_, nullptr)) {}

Reference &Reference::operator=(Reference other) noexcept {
    std::swap(entity_, other.entity_);
    return *this;
}

Reference::~Reference() {
    if (!entity_)
        return;
    --entity_->programReferences;
    entity_->heap->Unlock(*entity_);
}

std::string Reference::ClassName() const { return entity_ ? entity_->ClassName() : "nil"; }

int32_t Reference::TypeCode() const { return entity_ ? entity_->TypeCode() : 0; }

void *Reference::Address() const { return entity_ ? entity_->address : nullptr; }

int32_t Reference::References() const { return entity_ ? entity_->references : 0; }

std::string Reference::Describe() const { return entity_ ? entity_->Describe() : "nil"; }

} // namespace sim::host
