#include "simulator/host/runtime/runtime.h"

#include "simulator/host/classes/overloads.h"
#include "simulator/host/ground/stop.h"

#include <cstring>

namespace sim::host {

namespace {

Runtime *current = nullptr;

Instance &MakeInstance(Heap &heap, const Class &itsClass) {
    size_t size = Instance::SizeFor(itsClass);
    switch (itsClass.kind) {
    case ClassKind::kPlugin:
    case ClassKind::kCompanion:
        return heap.Make<Instance>(size, itsClass);
    case ClassKind::kDate:
        return heap.Make<DateInstance>(size, itsClass);
    case ClassKind::kDictionary:
        return heap.Make<DictionaryInstance>(size, itsClass);
    case ClassKind::kMemoryBlock:
        return heap.Make<MemoryBlockInstance>(size, itsClass);
    case ClassKind::kFolderItem:
        return heap.Make<FolderItemInstance>(size, itsClass);
    case ClassKind::kException:
        return heap.Make<ExceptionInstance>(size, itsClass);
    }
    Stop("a class of no kind");
}

} // namespace

Runtime::Runtime(HostOptions given, std::span<const ServiceRow> rows)
    : options(std::move(given)), heap(options.reuseAddresses), services(rows, options, heap), classes(options) {
    if (current)
        Stop("one host is alive already");
    current = this;
}

Runtime::~Runtime() {
    heap.VisitLive([](Entity &entity) {
        if (entity.programReferences)
            Stop("the program still holds " + entity.Describe() + " while its host ends");
    });
    current = nullptr;
}

Runtime &Runtime::Current() {
    if (!current)
        Stop("a service was called while no host is alive");
    return *current;
}

Runtime *Runtime::CurrentOrNull() { return current; }

StringEntity &Runtime::NewString(Text text) { return MakeString(heap, std::move(text), IsOlderThan(2016.0)); }

ArrayEntity &Runtime::NewArray(std::string typeName) {
    StorageView view = !IsOlderThan(2016.0)         ? StorageView::kTrap
                       : options.directArrayStorage ? StorageView::kShown
                                                    : StorageView::kNone;
    auto &array = heap.Make<ArrayEntity>(ArrayEntity::kHandleSize, std::move(typeName), view);
    array.LayOut();
    return array;
}

Instance &Runtime::NewInstance(const Class &itsClass) {
    Instance &instance = MakeInstance(heap, itsClass);
    instance.LayOut();
    if (itsClass.constructor) {
        const HeardCall heard(heap.places.listener, Callee::kPlugin, [&] { return instance.Describe() + " begins"; });
        reinterpret_cast<void (*)(void *)>(static_cast<uintptr_t>(itsClass.constructor))(instance.address);
    }
    return instance;
}

Instance *Runtime::NewInstanceNamed(std::string_view className) {
    const Class *itsClass = classes.Find(className);
    return itsClass ? &NewInstance(*itsClass) : nullptr;
}

Entity *Runtime::Box(const Value &value) {
    if (value.IsNil())
        return nullptr;
    if (value.Is<Reference>()) {
        Entity *entity = value.As<Reference>().Get();
        heap.Lock(*entity);
        return entity;
    }
    auto &box = heap.Make<VariantEntity>(VariantEntity::kHandleSize, ScalarTypeCode(value), value);
    ForbidAccess(box.address, box.size);
    return &box;
}

Value Runtime::Unbox(Entity *entity) {
    if (!entity)
        return nullptr;
    if (auto *variant = dynamic_cast<VariantEntity *>(entity); variant && variant->IsPlain())
        return variant->Held();
    if (auto *string = dynamic_cast<StringEntity *>(entity))
        Stop(string->Describe() + " was given as a variant");
    return Reference::Share(entity);
}

Value Runtime::ElementOf(const ArrayEntity &array, int32_t index) {
    switch (array.Kind()) {
    case ElementKind::kBoolean:
        return array.Get<uint8_t>(index) != 0;
    case ElementKind::kInt32:
        return array.Get<int32_t>(index);
    case ElementKind::kInt64:
        return array.Get<int64_t>(index);
    case ElementKind::kSingle:
        return array.Get<float>(index);
    case ElementKind::kDouble:
        return array.Get<double>(index);
    case ElementKind::kObject:
        return Unbox(array.Held(index));
    case ElementKind::kString:
        if (auto *string = dynamic_cast<StringEntity *>(array.Held(index)))
            return string->GetText();
        return nullptr;
    }
    Stop("an array of no kind");
}

void Runtime::PutElement(ArrayEntity &array, int32_t index, const Value &value) {
    Entity *held = nullptr;
    switch (array.Kind()) {
    case ElementKind::kBoolean:
        return array.Set<uint8_t>(index, value.As<bool>());
    case ElementKind::kInt32:
        return array.Set(index, value.As<int32_t>());
    case ElementKind::kInt64:
        return array.Set(index, value.As<int64_t>());
    case ElementKind::kSingle:
        return array.Set(index, value.As<float>());
    case ElementKind::kDouble:
        return array.Set(index, value.As<double>());
    case ElementKind::kString:
        held = value.IsNil() ? nullptr : &NewString(value.As<Text>());
        break;
    case ElementKind::kObject:
        RequireElementFits(array, value);
        held = Box(value);
        break;
    }
    array.Hold(index, held);
    if (held)
        heap.Unlock(*held);
}

void Runtime::Raise(std::string className, std::string message) {
    raised.push_back({std::move(className), std::move(message), kUTF8, 0});
}

} // namespace sim::host
