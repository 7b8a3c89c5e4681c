// One reference to something that lives in the host, held by a program: given up when the C++ object dies. What a
// program can do with the thing is Object's.
#pragma once

#include <cstdint>
#include <string>

namespace sim::host {

struct Entity;

/// One reference; none when nil.
class Reference {
public:
    Reference() = default;
    Reference(const Reference &other);
    Reference(Reference &&other) noexcept;
    Reference &operator=(Reference other) noexcept;
    ~Reference();

    /// Takes over one reference that the caller holds.
    static Reference Adopt(Entity *entity);
    /// Takes a reference of its own.
    static Reference Share(Entity *entity);

    bool IsNil() const { return entity_ == nullptr; }
    explicit operator bool() const { return entity_ != nullptr; }
    /// The same thing of the host, not an equal one.
    bool operator==(const Reference &other) const { return entity_ == other.entity_; }

    /// "MDQueryQTX", "Date", "Dictionary", "FolderItem", "MemoryBlock", "string()", "variant"...
    std::string ClassName() const;
    /// What VarType answers for it.
    int32_t TypeCode() const;
    /// The address that the plugin knows it by.
    void *Address() const;
    /// References held on it now, by whomever.
    int32_t References() const;
    Entity *Get() const { return entity_; }
    /// "MDItemQTX #12", or "nil".
    std::string Describe() const;
    /// Gives up the reference early.
    void Release() { *this = Reference(); }

private:
    explicit Reference(Entity *entity) : entity_(entity) {}

    Entity *entity_ = nullptr;
};

} // namespace sim::host
