#include "bench/bare_host.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

namespace {

constexpr int32_t kObjectType = 9;
constexpr int32_t kDateType = 7;

Age hostAge = Age::kNew;
FSRef file;
CFStringRef sampleCFString;
String sample;
std::vector<Object *> pool;
std::map<std::string, uint32_t *, std::less<>> classes;
const uint32_t *globalMethod;
alignas(16) char blockBytes[64];
volatile uint32_t written;

bool IsOld() { return hostAge == Age::kOld; }

Object *NewObject(int32_t type, const char *className) {
    constexpr size_t kAtOnce = 4096;
    if (pool.empty()) {
        auto *objects = static_cast<Object *>(std::calloc(kAtOnce, sizeof(Object)));
        for (size_t i = 0; i < kAtOnce; i++)
            pool.push_back(objects + i);
    }
    Object *object = pool.back();
    pool.pop_back();
    object->references = 1;
    object->type = type;
    object->className = className;
    return object;
}

void Die(Object *object) {
    if (object->elements) {
        for (int32_t i = 0; i <= object->upperBound; i++)
            if (object->elements[i])
                UnlockObject(object->elements[i]);
        std::free(object->elements);
    }
    *object = {};
    pool.push_back(object);
}

// Elements are kept only in arrays that are made with room for them.
Object *GetElement(Object *array, int32_t index) {
    Object *element = array->elements[index];
    LockObject(element);
    return element;
}
void InsertElement(Object *, int32_t index, Object *) { written = static_cast<uint32_t>(index); }
void SetElement(Object *array, Object *element, int32_t index) {
    LockObject(element);
    if (Object *previous = array->elements[index])
        UnlockObject(previous);
    array->elements[index] = element;
}
void InsertString(Object *, int32_t index, String *) { written = static_cast<uint32_t>(index); }

void ConstructDate(Object *, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t) {}
void SetEntry(Object *, Object *, Object *) {}
Object *EntryOf(Object *, Object *key) { return IntegerToVariant(key->integer); }
Object *KeyAt(Object *, int32_t index) { return IntegerToVariant(index); }
void Handle(Object *, Object *, Object *, Object *) {}

struct Service {
    std::string_view name;
    Code code;
};

template <class Function> Service Serves(std::string_view name, Function *function) {
    return {name, reinterpret_cast<Code>(function)};
}

const Service kServices[] = {
    Serves("REALGetRBVersion", HostVersion),
    Serves("RegisterPluginVersion", RegisterVersion),
    Serves("REALinRuntime", RunsBuiltApplication),
    Serves("PluginRegisterClass", RegisterClass),
    Serves("PluginRegisterModule", RegisterModule),
    Serves("PluginRegisterMethod", RegisterMethod),
    Serves("PluginNewInstance", NewInstance),
    Serves("pluginObjectType", ClassNamed),
    Serves("RuntimeObjectIsa", ObjectIsA),
    Serves("REALLockObject", LockObject),
    Serves("REALUnlockObject", UnlockObject),
    Serves("GetEventInstance", EventInstance),
    Serves("REALLoadGlobalMethod", LoadGlobalMethod),
    Serves("REALLoadObjectMethod", LoadObjectMethod),
    Serves("REALGetPropValueInteger", GetPropertyInteger),
    Serves("REALLockString", LockString),
    Serves("REALUnlockString", UnlockString),
    Serves("REALGetStringCFString", GetStringCFString),
    Serves("REALGetStringEncoding", GetStringEncoding),
    Serves("REALSetStringEncoding", SetStringEncoding),
    Serves("REALBuildString", BuildString),
    Serves("StringGetCString", GetStringContents),
    Serves("RuntimeArrayCreateSingleDimBoundedArray", CreateArray),
    Serves("RuntimeUBound", GetUpperBound),
    Serves("RuntimeDirectReadStringArray", ReadStringArray),
    Serves("PluginObjectArrayGetProc", ObjectGetterOf),
    Serves("PluginObjectArrayInsertProc", ObjectInserterOf),
    Serves("PluginObjectArraySetProc", ObjectSetterOf),
    Serves("PluginStringArrayInsertProc", StringInserterOf),
    Serves("StringToVariant", StringToVariant),
    Serves("BooleanToVariant", BooleanToVariant),
    Serves("DoubleToVariant", DoubleToVariant),
    Serves("IntegerToVariant", IntegerToVariant),
    Serves("Int64ToVariant", Int64ToVariant),
    Serves("VariantToString", VariantToString),
    Serves("VariantToInt32", VariantToInt32),
    Serves("VariantToInt64", VariantToInt64),
    Serves("VariantToSingle", VariantToSingle),
    Serves("VariantToDouble", VariantToDouble),
    Serves("newMemoryBlock", NewMemoryBlock),
    Serves("memoryBlockGetSize", GetMemoryBlockSize),
    Serves("memoryBlockGetPtr", GetMemoryBlockPointer),
    Serves("REALFSRefFromFolderItem", FSRefFromFolderItem),
    Serves("REALFolderItemFromParentFSRef", FolderItemFromParent),
};
int32_t requests[std::size(kServices)];

template <class Function> Code CodeOf(Function *function) { return reinterpret_cast<Code>(function); }

} // namespace

void BecomeHost(Age age) {
    hostAge = age;
    std::fill(std::begin(requests), std::end(requests), 0);
    // Enough that making objects never asks the system for memory while something is counted.
    std::vector<Object *> taken;
    while (taken.size() < 250'000)
        taken.push_back(NewObject(0, nullptr));
    pool.insert(pool.end(), taken.begin(), taken.end());
}

Code Resolve(const char *name) {
    for (const Service &service : kServices)
        if (service.name == name) {
            requests[&service - kServices]++;
            return service.code;
        }
    return nullptr;
}

int32_t MostRequestsOfOneName() { return *std::max_element(std::begin(requests), std::end(requests)); }

void SetSampleText(const char *bytes, int32_t length, uint32_t encoding, CFStringRef asCFString) {
    sample.references = 1;
    sample.storage = bytes - 1; // a length byte would stand there, which nobody reads
    sample.encoding = encoding;
    sample.length = length;
    sampleCFString = asCFString;
}
String *SampleString() { return &sample; }

Object *NewInstance(const char *className) { return NewObject(kObjectType, className); }
const void *ClassNamed(const char *className) { return className; }
unsigned char ObjectIsA(Object *object, const void *classRef) {
    return std::strcmp(object->className, static_cast<const char *>(classRef)) == 0;
}
void LockObject(Object *object) { object->references++; }
void UnlockObject(Object *object) {
    if (--object->references == 0)
        Die(object);
}
Code EventInstance(Object *, uint32_t) { return CodeOf(Handle); }
Code LoadGlobalMethod(const void *, const char *declaration) {
    return declaration[0] == 'V' ? CodeOf(VarType) : CodeOf(LenB);
}
Code LoadObjectMethod(Object *object, const char *declaration) {
    switch (declaration[0]) {
    case 'Y':
        return CodeOf(ConstructDate);
    case 'V':
        return declaration[20] == ')' ? CodeOf(EntryOf) : CodeOf(SetEntry);
    case 'K':
        return CodeOf(KeyAt);
    default: // whether it has a TrueItem
        return object->className[0] == 'F' ? CodeOf(KeyAt) : nullptr;
    }
}
/// A dictionary's count, or any field of a date.
unsigned char GetPropertyInteger(Object *object, const char *, int32_t *out) {
    *out = object->integer;
    return 1;
}
void LockString(String *string) { string->references++; }
void UnlockString(String *string) { string->references--; }
CFStringRef GetStringCFString(String *, int32_t) {
    return sampleCFString ? static_cast<CFStringRef>(const_cast<void *>(CFRetain(sampleCFString))) : nullptr;
}
uint32_t GetStringEncoding(String *string) { return string->encoding; }
void SetStringEncoding(String *, uint32_t encoding) { written = encoding; }
String *BuildString(const void *, int32_t length) {
    written = static_cast<uint32_t>(length);
    sample.references++;
    return &sample;
}
const uint8_t *GetStringContents(String *string) { return reinterpret_cast<const uint8_t *>(string->storage) + 1; }

Object *CreateArray(int32_t elementType, int32_t upperBound) {
    constexpr int32_t kArrayOf = 4096;
    Object *array = NewObject(kArrayOf + (elementType == kObjectElements ? kObjectType : elementType), "");
    array->upperBound = upperBound;
    if (upperBound >= 0) {
        array->elements = static_cast<Object **>(std::calloc(static_cast<size_t>(upperBound) + 1, sizeof(Object *)));
        array->data[1] = IsOld() ? static_cast<uint32_t>(reinterpret_cast<uintptr_t>(array->elements)) : 0;
    }
    return array;
}
int32_t GetUpperBound(Object *array) { return array->upperBound; }
ObjectGetter ObjectGetterOf(Object *) { return GetElement; }
ObjectInserter ObjectInserterOf(Object *) { return InsertElement; }
ObjectSetter ObjectSetterOf(Object *) { return SetElement; }
StringInserter StringInserterOf(Object *) { return InsertString; }
String *ReadStringArray(Object *, int32_t) { return BuildString(nullptr, 0); }

Object *StringToVariant(String *) { return NewObject(8, "Variant"); }
Object *BooleanToVariant(unsigned char value) {
    Object *variant = NewObject(11, "Variant");
    variant->integer = value;
    return variant;
}
Object *DoubleToVariant(double value) {
    Object *variant = NewObject(5, "Variant");
    variant->real = value;
    return variant;
}
Object *IntegerToVariant(int32_t value) {
    Object *variant = NewObject(2, "Variant");
    variant->integer = value;
    return variant;
}
Object *Int64ToVariant(int64_t value) {
    Object *variant = NewObject(3, "Variant");
    variant->wide = value;
    return variant;
}
String *VariantToString(Object *) { return BuildString(nullptr, 0); }
int32_t VariantToInt32(Object *variant) { return variant->integer; }
int64_t VariantToInt64(Object *variant) { return variant->wide; }
float VariantToSingle(Object *variant) { return variant->narrow; }
double VariantToDouble(Object *variant) { return variant->real; }

Object *NewMemoryBlock(int32_t) { return NewInstance("MemoryBlock"); }
int32_t GetMemoryBlockSize(Object *) { return sizeof blockBytes; }
void *GetMemoryBlockPointer(Object *) { return blockBytes; }

void SetFile(const FSRef &given) { file = given; }
unsigned char FSRefFromFolderItem(Object *, FSRef *out, HFSUniStr255 *) {
    *out = file;
    return 1;
}
Object *FolderItemFromParent(const FSRef *, const HFSUniStr255 *) { return NewInstance("FolderItem"); }

int32_t VarType(Object *variant) {
    return variant->className[0] == 'D' && !variant->className[4] ? kDateType : variant->type;
}
int32_t LenB(String *string) { return string->length; }

void RegisterVersion(int32_t) {}
void RegisterClass(uint32_t *record) {
    record[4] = offsetof(Object, data);
    classes[reinterpret_cast<const char *>(record[1])] = record;
}
void RegisterModule(const uint32_t *record) { globalMethod = reinterpret_cast<const uint32_t *>(record[2]); }
void RegisterMethod(const uint32_t *record) { globalMethod = record; }
unsigned char RunsBuiltApplication() { return 1; }
double HostVersion() { return IsOld() ? 2011.04 : 2019.01; }

uint32_t *ClassRecord(const char *name) {
    const auto found = classes.find(name);
    return found == classes.end() ? nullptr : found->second;
}
const uint32_t *GlobalMethod() { return globalMethod; }

} // namespace bench
