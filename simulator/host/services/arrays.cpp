// Arrays. Elements are reached in two steps: a service is asked, with the array, for the function that serves that
// array's elements, and the function is then called with the array and an index. Element functions give owned
// references and take their own; an index outside the array raises "OutOfBoundsException" and does nothing.
#include "simulator/host/ground/stop.h"
#include "simulator/host/runtime/runtime.h"
#include "simulator/host/services/table.h"
#include "simulator/host/services/truth.h"

namespace sim::host {

namespace {

ArrayEntity &ArrayAt(const void *array) { return Runtime::Current().heap.Require<ArrayEntity>(array, "an array"); }

bool RaiseUnlessIn(int32_t index, int32_t count) {
    if (index >= 0 && index < count)
        return true;
    Runtime::Current().Raise("OutOfBoundsException", "");
    return false;
}

void *Create(int32_t elementType, int32_t upperBound) {
    if (elementType != 3 && elementType != 4)
        Stop("an array of the element type " + std::to_string(elementType) + " was asked for; 3 and 4 are modelled");
    if (upperBound < -1)
        Stop("an array with the upper bound " + std::to_string(upperBound) + " was asked for");
    ArrayEntity &array = Runtime::Current().NewArray(elementType == 3 ? "string" : "variant");
    array.Resize(upperBound + 1);
    return array.address;
}

int32_t UBound(const void *array) { return ArrayAt(array).Count() - 1; }

void *GetCounted(const void *array, int32_t index) {
    ArrayEntity &entity = ArrayAt(array);
    if (!RaiseUnlessIn(index, entity.Count()))
        return nullptr;
    Entity *element = entity.Held(index);
    if (element)
        entity.heap->Lock(*element);
    return element ? element->address : nullptr;
}

template <class T> T GetPlain(const void *array, int32_t index) {
    ArrayEntity &entity = ArrayAt(array);
    return RaiseUnlessIn(index, entity.Count()) ? entity.Get<T>(index) : T();
}

Truth GetBoolean(const void *array, int32_t index) { return TruthOf(GetPlain<uint8_t>(array, index) != 0); }

void *GetString(const void *array, int32_t index) { return GetCounted(array, index); }
void *GetObject(const void *array, int32_t index) { return GetCounted(array, index); }

Entity *ElementFor(const ArrayEntity &array, const void *handle) {
    Runtime &runtime = Runtime::Current();
    if (array.Kind() == ElementKind::kString)
        return runtime.heap.RequireOrNull<StringEntity>(handle, "a string for an array");
    Entity *element = handle ? &runtime.heap.At(handle, "an object for an array") : nullptr;
    if (dynamic_cast<StringEntity *>(element))
        Stop(element->Describe() + " was to be put into " + array.Describe());
    return element;
}

void Insert(const void *array, int32_t index, const void *handle) {
    ArrayEntity &entity = ArrayAt(array);
    Entity *element = ElementFor(entity, handle);
    if (!RaiseUnlessIn(index, entity.Count() + 1))
        return;
    entity.Open(index);
    entity.Hold(index, element);
}

void InsertString(const void *array, int32_t index, const void *string) { Insert(array, index, string); }
void InsertObject(const void *array, int32_t index, const void *object) { Insert(array, index, object); }

/// The order of the two last arguments is the host's choice; a plugin that takes the other is found out, because no
/// handle is a small number.
void SetObject(const void *array, uint32_t second, uint32_t third) {
    ArrayEntity &entity = ArrayAt(array);
    bool valueFirst = Runtime::Current().options.setterOrder == SetterOrder::kValueThenIndex;
    auto index = static_cast<int32_t>(valueFirst ? third : second);
    const void *handle = reinterpret_cast<const void *>(static_cast<uintptr_t>(valueFirst ? second : third));
    if (Runtime::Current().heap.IsLive(reinterpret_cast<const void *>(static_cast<uintptr_t>(index))))
        Stop(std::string("the set function of an array takes ") +
             (valueFirst ? "the element, then the index" : "the index, then the element"));
    Entity *element = ElementFor(entity, handle);
    if (RaiseUnlessIn(index, entity.Count()))
        entity.Hold(index, element);
}

struct ElementFunctions {
    ElementKind kind;
    const char *get;
    const char *insert;
    const char *set;
};

constexpr ElementFunctions kElementFunctions[] = {
    {ElementKind::kString, "string array get", "string array insert", nullptr},
    {ElementKind::kObject, "object array get", "object array insert", "object array set"},
    {ElementKind::kBoolean, "boolean array get", nullptr, nullptr},
    {ElementKind::kInt32, "integer array get", nullptr, nullptr},
    {ElementKind::kInt64, "int64 array get", nullptr, nullptr},
    {ElementKind::kSingle, "single array get", nullptr, nullptr},
    {ElementKind::kDouble, "double array get", nullptr, nullptr},
};

Function ElementFunction(const ArrayEntity &array, const char *ElementFunctions::*which) {
    for (const ElementFunctions &row : kElementFunctions)
        if (row.kind == array.Kind()) {
            if (!(row.*which))
                Stop("inserting into or setting elements of " + array.Describe() + " is not modelled");
            return Runtime::Current().services.Element(row.*which);
        }
    return nullptr;
}

/// The services for one kind of element insist on an array of that kind.
template <ElementKind kind, const char *ElementFunctions::*which> Function ProcFor(const void *array) {
    ArrayEntity &entity = ArrayAt(array);
    if (entity.Kind() != kind)
        Stop("an element function for another kind of array was asked for " + entity.Describe());
    return ElementFunction(entity, which);
}

template <const char *ElementFunctions::*which> Function DirectProc(const void *array) {
    return ElementFunction(ArrayAt(array), which);
}

constexpr auto kGet = &ElementFunctions::get;
constexpr auto kInsert = &ElementFunctions::insert;
constexpr auto kSet = &ElementFunctions::set;

} // namespace

std::span<const ServiceRow> ArrayServices() {
    static const ServiceRow rows[] = {
        Service<"RuntimeArrayCreateSingleDimBoundedArray", Create>(),
        Service<"RuntimeUBound", UBound>(),
        Service<"RuntimeDirectReadStringArray", GetCounted>(),
        Service<"PluginStringArrayGetProc", ProcFor<ElementKind::kString, kGet>, Reach::kFirstName>(),
        Service<"PluginObjectArrayGetProc", ProcFor<ElementKind::kObject, kGet>, Reach::kFirstName>(),
        Service<"PluginBooleanArrayGetProc", ProcFor<ElementKind::kBoolean, kGet>, Reach::kFirstName>(),
        Service<"PluginIntegerArrayGetProc", ProcFor<ElementKind::kInt32, kGet>, Reach::kFirstName>(),
        Service<"PluginInt64ArrayGetProc", ProcFor<ElementKind::kInt64, kGet>, Reach::kFirstName>(),
        Service<"PluginSingleArrayGetProc", ProcFor<ElementKind::kSingle, kGet>, Reach::kFirstName>(),
        Service<"PluginDoubleArrayGetProc", ProcFor<ElementKind::kDouble, kGet>, Reach::kFirstName>(),
        Service<"PluginStringArrayInsertProc", ProcFor<ElementKind::kString, kInsert>, Reach::kFirstName>(),
        Service<"PluginObjectArrayInsertProc", ProcFor<ElementKind::kObject, kInsert>, Reach::kFirstName>(),
        Service<"PluginObjectArraySetProc", ProcFor<ElementKind::kObject, kSet>, Reach::kFirstName>(),
        Service<"RuntimeArrayDirectGetGetProc", DirectProc<kGet>>(),
        Service<"RuntimeArrayDirectGetInsertProc", DirectProc<kInsert>>(),
        Service<"RuntimeArrayDirectGetSetProc", DirectProc<kSet>>(),
        Service<"string array get", GetString, Reach::kElement>(),
        Service<"object array get", GetObject, Reach::kElement>(),
        Service<"boolean array get", GetBoolean, Reach::kElement>(),
        Service<"integer array get", GetPlain<int32_t>, Reach::kElement>(),
        Service<"int64 array get", GetPlain<int64_t>, Reach::kElement>(),
        Service<"single array get", GetPlain<float>, Reach::kElement>(),
        Service<"double array get", GetPlain<double>, Reach::kElement>(),
        Service<"string array insert", InsertString, Reach::kElement>(),
        Service<"object array insert", InsertObject, Reach::kElement>(),
        Service<"object array set", SetObject, Reach::kElement>(),
    };
    return rows;
}

} // namespace sim::host
