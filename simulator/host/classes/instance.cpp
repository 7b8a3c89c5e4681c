#include "simulator/host/classes/instance.h"

#include "simulator/host/classes/classes.h"
#include "simulator/host/ground/stop.h"

#include <algorithm>
#include <cstring>

namespace sim::host {

namespace {

constexpr std::byte kHostsOwn{0xB0};
/// Stands in the wrapper's second word and must never change.
constexpr uint32_t kWrappersOwn = 0xC0FFEE11;

struct WrapperData {
    const void *reference;
    uint32_t other;
    uint32_t tag;
};

void ReleaseWrapped(const Instance &instance, const CompanionClass &companion) {
    WrapperData data;
    std::memcpy(&data, instance.Data(), sizeof data);
    if (data.other != kWrappersOwn)
        Stop("the word of " + instance.Describe() + " that belongs to the wrapper alone was changed");
    if (data.tag == CompanionClass::kWrapperTag && data.reference && companion.release)
        companion.release(data.reference);
}

} // namespace

Instance::Instance(const Class &itsClass) : class_(itsClass), dataOffset_(itsClass.dataOffset) {}

size_t Instance::SizeFor(const Class &itsClass) {
    return static_cast<size_t>(itsClass.dataOffset) + (itsClass.HasData() ? itsClass.dataSize : 0);
}

void Instance::LayOut() {
    std::fill_n(address, dataOffset_, kHostsOwn);
    ForbidAccess(address, static_cast<size_t>(dataOffset_));
    if (class_.companion && class_.companion->wraps) {
        if (DataSize() < sizeof(WrapperData))
            Stop("the wrapper class " + class_.name + " has no room for a wrapper's data");
        WrapperData data = {nullptr, kWrappersOwn, class_.companion->tag};
        std::memcpy(Data(), &data, sizeof data);
    }
}

std::string Instance::ClassName() const { return class_.name; }

int32_t Instance::TypeCode() const { return 9; }

void Instance::VisitHeld(const Visitor &visitor) const {
    for (const Property &property : class_.properties) {
        if (!class_.HoldsReference(property))
            continue;
        void *handle = nullptr;
        std::memcpy(&handle, Data() + property.param, sizeof handle);
        if (heap->IsLive(handle))
            visitor(heap->At(handle, "a stored property"));
    }
}

void Instance::Die() {
    if (class_.destructor) {
        Places::During during(heap->places, class_.name + "'s destructor");
        const HeardCall heard(heap->places.listener, Callee::kPlugin, [&] { return Describe() + " ends"; });
        reinterpret_cast<void (*)(void *)>(static_cast<uintptr_t>(class_.destructor))(address);
    }
    if (class_.companion && class_.companion->wraps)
        ReleaseWrapped(*this, *class_.companion);
    CheckHostWords();
}

void Instance::CheckHostWords() const {
    AllowAccess(address, static_cast<size_t>(dataOffset_));
    if (std::any_of(address, address + dataOffset_, [](std::byte byte) { return byte != kHostsOwn; }))
        Stop("the host's own words of " + Describe() + " were overwritten");
}

} // namespace sim::host
