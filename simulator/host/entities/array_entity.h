// A host array of one dimension. Its elements lie in storage of its own, which a host below 2016.0 may show through the
// eighth word of the handle: pointers for strings and objects, bytes for booleans. Where the storage shows, the plugin
// may read and write it, so the storage itself is the truth, and elements hold references that the array gives up when
// it shrinks or dies. Nobody may touch the storage beyond the last element.
#pragma once

#include "simulator/host/entities/heap.h"

#include <string_view>

namespace sim::host {

enum class ElementKind { kBoolean, kInt32, kInt64, kSingle, kDouble, kString, kObject };

enum class StorageView { kShown, kNone, kTrap };

class ArrayEntity : public Entity {
public:
    static constexpr size_t kHandleSize = 32;

    /// `typeName` is the element type as the host language has it; object elements may be nil.
    ArrayEntity(std::string typeName, StorageView view);
    ~ArrayEntity() override;
    /// Fills the handle's words; called once, when the handle is there.
    void LayOut();

    std::string ClassName() const override { return typeName_ + "()"; }
    int32_t TypeCode() const override;
    void VisitHeld(const Visitor &visitor) const override;
    void Die() override;

    const std::string &TypeName() const { return typeName_; }
    ElementKind Kind() const { return kind_; }
    int32_t Count() const { return count_; }
    /// Says what the objects of an array that was made without saying are.
    void DeclareAs(std::string typeName) { typeName_ = std::move(typeName); }
    bool Has(int32_t index) const { return index >= 0 && index < count_; }

    /// The raw element, which must exist.
    template <class T> T Get(int32_t index) const {
        T element;
        __builtin_memcpy(&element, storage_ + OffsetOf(index, sizeof(T)), sizeof(T));
        return element;
    }
    template <class T> void Set(int32_t index, T element) {
        __builtin_memcpy(storage_ + OffsetOf(index, sizeof(T)), &element, sizeof(T));
    }
    /// The thing that a string or object element names, borrowed, or null. A dead one stops the host.
    Entity *Held(int32_t index) const;
    /// Puts a thing in, taking a reference of it and giving up the one that the element held.
    void Hold(int32_t index, Entity *element);
    /// Makes room for a nil or zero element at `index`, which may be one past the end.
    void Open(int32_t index);
    void Resize(int32_t count);

private:
    size_t OffsetOf(int32_t index, size_t size) const;
    void Reserve(int32_t count);
    void ShowStorage();

    std::string typeName_;
    ElementKind kind_;
    size_t elementSize_;
    StorageView view_;
    std::byte *storage_ = nullptr;
    int32_t count_ = 0;
    int32_t capacity_ = 0;
};

/// How arrays of that element type of the host language keep their elements.
ElementKind ElementKindOf(std::string_view typeName);

} // namespace sim::host
