#include "simulator/host/entities/array_entity.h"

#include "simulator/host/ground/stop.h"
#include "simulator/host/ground/text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace sim::host {

namespace {

constexpr int32_t kArrayCode = 4096;
constexpr int kBeyondTheEnd = 0xDD;
/// The second word of the instance data, which begins at byte 24.
constexpr size_t kStorageOffset = 28;

struct ElementRow {
    std::string_view typeName;
    ElementKind kind;
    int32_t code;
};

constexpr ElementRow kElements[] = {
    {"boolean", ElementKind::kBoolean, 11}, {"integer", ElementKind::kInt32, 2}, {"int32", ElementKind::kInt32, 2},
    {"int64", ElementKind::kInt64, 3},      {"single", ElementKind::kSingle, 4}, {"double", ElementKind::kDouble, 5},
    {"date", ElementKind::kObject, 7},      {"string", ElementKind::kString, 8},
};

const ElementRow *FindElement(std::string_view typeName) {
    auto row = std::find_if(std::begin(kElements), std::end(kElements),
                            [&](const ElementRow &element) { return EqualIgnoringCase(element.typeName, typeName); });
    return row == std::end(kElements) ? nullptr : row;
}

size_t SizeOf(ElementKind kind) {
    switch (kind) {
    case ElementKind::kBoolean:
        return 1;
    case ElementKind::kInt64:
    case ElementKind::kDouble:
        return 8;
    default:
        return 4;
    }
}

bool Counts(ElementKind kind) { return kind == ElementKind::kString || kind == ElementKind::kObject; }

} // namespace

ElementKind ElementKindOf(std::string_view typeName) {
    const ElementRow *row = FindElement(typeName);
    return row ? row->kind : ElementKind::kObject;
}

ArrayEntity::ArrayEntity(std::string typeName, StorageView view)
    : typeName_(std::move(typeName)), kind_(ElementKindOf(typeName_)), elementSize_(SizeOf(kind_)), view_(view) {}

ArrayEntity::~ArrayEntity() {
    AllowAccess(storage_, static_cast<size_t>(capacity_) * elementSize_);
    std::free(storage_);
}

void ArrayEntity::LayOut() {
    std::memset(address, 0xB0, kHandleSize);
    ForbidAccess(address, view_ == StorageView::kTrap ? size : 24);
    Reserve(4);
}

int32_t ArrayEntity::TypeCode() const {
    constexpr int32_t kObjectCode = 9;
    const ElementRow *row = FindElement(typeName_);
    return kArrayCode + (row ? row->code : kObjectCode);
}

void ArrayEntity::VisitHeld(const Visitor &visitor) const {
    if (!Counts(kind_))
        return;
    for (int32_t index = 0; index < count_; ++index)
        if (Entity *element = Held(index))
            visitor(*element);
}

void ArrayEntity::Die() { Resize(0); }

size_t ArrayEntity::OffsetOf(int32_t index, size_t elementSize) const {
    if (!Has(index) || elementSize != elementSize_)
        Stop(Describe() + " has no such element: " + std::to_string(index) + " of " + std::to_string(elementSize) +
             " bytes");
    return static_cast<size_t>(index) * elementSize_;
}

Entity *ArrayEntity::Held(int32_t index) const {
    void *handle = Get<void *>(index);
    return handle ? &heap->At(handle, "an element of an array") : nullptr;
}

void ArrayEntity::Hold(int32_t index, Entity *element) {
    if (element)
        heap->Lock(*element);
    Entity *before = Held(index);
    Set<void *>(index, element ? element->address : nullptr);
    if (before)
        heap->Unlock(*before);
}

void ArrayEntity::Open(int32_t index) {
    int32_t before = count_;
    Resize(count_ + 1);
    std::byte *hole = storage_ + static_cast<size_t>(index) * elementSize_;
    std::memmove(hole + elementSize_, hole, static_cast<size_t>(before - index) * elementSize_);
    std::memset(hole, 0, elementSize_);
}

void ArrayEntity::Resize(int32_t count) {
    if (Counts(kind_))
        for (int32_t index = count; index < count_; ++index)
            Hold(index, nullptr);
    Reserve(count);
    // Only the difference is touched: growing one by one stays linear.
    std::byte *oldEnd = storage_ + static_cast<size_t>(count_) * elementSize_;
    std::byte *newEnd = storage_ + static_cast<size_t>(count) * elementSize_;
    if (newEnd > oldEnd) {
        AllowAccess(oldEnd, static_cast<size_t>(newEnd - oldEnd));
        std::memset(oldEnd, 0, static_cast<size_t>(newEnd - oldEnd));
    } else {
        std::memset(newEnd, kBeyondTheEnd, static_cast<size_t>(oldEnd - newEnd));
        ForbidAccess(newEnd, static_cast<size_t>(oldEnd - newEnd));
    }
    count_ = count;
}

void ArrayEntity::Reserve(int32_t count) {
    if (count <= capacity_ && storage_)
        return;
    size_t used = static_cast<size_t>(count_) * elementSize_;
    int32_t capacity = std::max(count, capacity_ * 2);
    size_t size = static_cast<size_t>(capacity) * elementSize_;
    auto *storage = static_cast<std::byte *>(std::malloc(size));
    std::memset(storage, kBeyondTheEnd, size);
    if (storage_)
        std::memcpy(storage, storage_, used);
    ForbidAccess(storage + used, size - used);
    AllowAccess(storage_, static_cast<size_t>(capacity_) * elementSize_);
    std::free(storage_);
    storage_ = storage;
    capacity_ = capacity;
    ShowStorage();
}

void ArrayEntity::ShowStorage() {
    if (view_ == StorageView::kTrap)
        AllowAccess(address, size);
    void *shown = view_ == StorageView::kShown ? storage_ : view_ == StorageView::kTrap ? TrapAddress() : nullptr;
    std::memcpy(address + kStorageOffset, &shown, sizeof shown);
    if (view_ == StorageView::kTrap)
        ForbidAccess(address, size);
}

} // namespace sim::host
