// The barest host there can be: it serves every service that the benchmarks need and does next to nothing, so that what
// is counted is the plugin. Its objects are blocks from a pool, its strings are one string, and its arrays forget what
// is inserted into them. A library of its own, so that a count can tell its instructions from the rest.
#pragma once

#include <CoreServices/CoreServices.h>

#include <cstdint>

namespace bench {

/// What the host hands out for every kind of object. The plugin's data begins at `data`, and that is also where arrays
/// of old hosts are known to keep the table of their elements, in the second word.
struct Object {
    int32_t references;
    /// The code of a variant's type; for arrays and objects too.
    int32_t type;
    const char *className;
    int32_t upperBound;
    union {
        int32_t integer;
        int64_t wide;
        double real;
        float narrow;
    };
    uint32_t data[4];
    /// Of every array that has any; only old hosts show them in `data`.
    Object **elements;
    uint32_t more;
};

/// An old host's string: the words that plugins know.
struct String {
    int32_t references;
    const char *storage;
    uint32_t encoding;
    int32_t length;
};

using Code = void (*)();
/// Gives the address of a service by its name, or null.
using Resolver = Code (*)(const char *name);

/// How old the host is from now on: which version it reports, and whether it shows its layouts.
enum class Age { kOld, kNew };
void BecomeHost(Age age);
Code Resolve(const char *name);
/// How often the name that was asked for most often has been asked for since the host became what it is.
int32_t MostRequestsOfOneName();

/// The text of every string; borrowed. A host that has a CFString for it gives that to whoever asks.
void SetSampleText(const char *bytes, int32_t length, uint32_t encoding, CFStringRef asCFString);
String *SampleString();

// The services, for floors that call them with the pointers at hand.
constexpr int32_t kObjectElements = 4;
Object *NewInstance(const char *className);
const void *ClassNamed(const char *className);
unsigned char ObjectIsA(Object *object, const void *classRef);
void LockObject(Object *object);
void UnlockObject(Object *object);
Code EventInstance(Object *object, uint32_t event);
Code LoadGlobalMethod(const void *module, const char *declaration);
Code LoadObjectMethod(Object *object, const char *declaration);
unsigned char GetPropertyInteger(Object *object, const char *name, int32_t *out);
void LockString(String *string);
void UnlockString(String *string);
CFStringRef GetStringCFString(String *string, int32_t flags);
uint32_t GetStringEncoding(String *string);
void SetStringEncoding(String *string, uint32_t encoding);
String *BuildString(const void *bytes, int32_t length);
const uint8_t *GetStringContents(String *string);
Object *CreateArray(int32_t elementType, int32_t upperBound);
int32_t GetUpperBound(Object *array);
using ObjectGetter = Object *(*)(Object *array, int32_t index);
using ObjectInserter = void (*)(Object *array, int32_t index, Object *element);
using ObjectSetter = void (*)(Object *array, Object *element, int32_t index);
using StringInserter = void (*)(Object *array, int32_t index, String *element);
ObjectGetter ObjectGetterOf(Object *array);
ObjectInserter ObjectInserterOf(Object *array);
ObjectSetter ObjectSetterOf(Object *array);
StringInserter StringInserterOf(Object *array);
String *ReadStringArray(Object *array, int32_t index);
Object *StringToVariant(String *string);
Object *BooleanToVariant(unsigned char value);
Object *DoubleToVariant(double value);
Object *IntegerToVariant(int32_t value);
Object *Int64ToVariant(int64_t value);
String *VariantToString(Object *variant);
int32_t VariantToInt32(Object *variant);
int64_t VariantToInt64(Object *variant);
float VariantToSingle(Object *variant);
double VariantToDouble(Object *variant);
Object *NewMemoryBlock(int32_t size);
int32_t GetMemoryBlockSize(Object *block);
void *GetMemoryBlockPointer(Object *block);
unsigned char FSRefFromFolderItem(Object *item, FSRef *out, HFSUniStr255 *name);
Object *FolderItemFromParent(const FSRef *parent, const HFSUniStr255 *name);

// Functions of the host's language.
int32_t VarType(Object *variant);
int32_t LenB(String *string);

// What start-up registers.
void RegisterVersion(int32_t layout);
void RegisterClass(uint32_t *record);
void RegisterModule(const uint32_t *record);
void RegisterMethod(const uint32_t *record);
unsigned char RunsBuiltApplication();
double HostVersion();

/// What was registered last under that name, as the words of the plugin's record; null for none.
uint32_t *ClassRecord(const char *name);
/// The record of the global method, in the layout that the host asked for.
const uint32_t *GlobalMethod();

/// What folder items lead to from now on.
void SetFile(const FSRef &file);

} // namespace bench
