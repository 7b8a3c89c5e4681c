// What the plugin asks of a host, one line a service: the name to call it by here, its shape, the name it is looked up
// by, and the older name where it has one. "+1" marks a result whose reference the caller owns. Two services are not
// here, because start-up calls them before anything else, in plugin/main.cpp: the host's version is read and the
// declaration layout is told.
#pragma once

#include <CoreServices/CoreServices.h>

#include "host/entry_point.h"

struct REALclassDefinition;
struct REALmethodDefinition;
struct REALmoduleDefinition;

// Registration, at start-up.
inline constinit EntryPoint<HostBoolean()> REALinRuntime{"REALinRuntime"};
inline constinit EntryPoint<void(REALclassDefinition *)> REALRegisterClass{"PluginRegisterClass"};
inline constinit EntryPoint<void(REALmoduleDefinition *)> REALRegisterModule{"PluginRegisterModule"};
inline constinit EntryPoint<void(REALmethodDefinition *)> REALRegisterMethod{"PluginRegisterMethod"};

// Objects.
/// +1; null for a class that the application does not have.
inline constinit EntryPoint<REALobjectStruct *(const char *className)> REALnewInstance{"PluginNewInstance"};
inline constinit EntryPoint<REALclassStruct *(const char *className)> REALGetClassRef{"pluginObjectType"};
inline constinit EntryPoint<HostBoolean(REALobjectStruct *, REALclassStruct *)> REALObjectIsA{"RuntimeObjectIsa"};
inline constinit EntryPoint<void(REALobjectStruct *)> REALLockObject{"REALLockObject"};
inline constinit EntryPoint<void(REALobjectStruct *)> REALUnlockObject{"REALUnlockObject"};
/// The handler that host code attached to an event of an object, or null.
inline constinit EntryPoint<HostCode(REALobjectStruct *, uint32_t event)> REALGetEventInstance{"GetEventInstance"};
/// Takes effect when the plugin returns to the host.
inline constinit EntryPoint<void(REALobjectStruct *exception)> REALRaiseException{"RuntimeRaiseException"};

// Functions of the host language, by declaration.
inline constinit EntryPoint<HostCode(REALmoduleStruct *, const char *declaration)> REALLoadGlobalMethod{
    "REALLoadGlobalMethod"};
inline constinit EntryPoint<HostCode(REALobjectStruct *, const char *declaration)> REALLoadObjectMethod{
    "REALLoadObjectMethod"};

// Properties by name.
template <class Value> using PropertyGetter = EntryPoint<HostBoolean(REALobjectStruct *, const char *name, Value *out)>;
inline constinit PropertyGetter<int32_t> REALGetPropValueInteger{"REALGetPropValueInteger", "REALGetPropValueInt"};
inline constinit PropertyGetter<int32_t> REALGetPropValueInt32{"REALGetPropValueInt"};
inline constinit PropertyGetter<int64_t> REALGetPropValueInt64{"REALGetPropValueInt64"};
inline constinit PropertyGetter<float> REALGetPropValueSingle{"REALGetPropValueSingle"};
inline constinit PropertyGetter<double> REALGetPropValueDouble{"REALGetPropValueDouble"};
/// The string is +1.
inline constinit PropertyGetter<REALstringStruct *> REALGetPropValueString{"REALGetPropValueString"};
inline constinit EntryPoint<void(REALobjectStruct *, const char *name, int32_t value)> REALSetPropValueInteger{
    "REALSetPropValueInteger", "REALSetPropValueInt"};
inline constinit EntryPoint<void(REALobjectStruct *, const char *name, REALstringStruct *value)> REALSetPropValueString{
    "REALSetPropValueString"};

// Strings.
inline constinit EntryPoint<void(REALstringStruct *)> REALLockString{"REALLockString"};
inline constinit EntryPoint<void(REALstringStruct *)> REALUnlockString{"REALUnlockString"};
inline constinit EntryPoint<HostBoolean(REALstringStruct *, CFStringEncoding, REALstringDataStruct *out)>
    REALGetStringData{"PluginGetStringData"};
inline constinit EntryPoint<void(REALstringDataStruct *)> REALDisposeStringData{"PluginDisposeStringData"};
/// +1.
inline constinit EntryPoint<CFStringRef(REALstringStruct *, int32_t flags)> REALGetStringCFString{
    "REALGetStringCFString"};
inline constinit EntryPoint<CFStringEncoding(REALstringStruct *)> REALGetStringEncoding{"REALGetStringEncoding"};
inline constinit EntryPoint<void(REALstringStruct *, CFStringEncoding)> REALSetStringEncoding{"REALSetStringEncoding"};
/// +1.
inline constinit EntryPoint<REALstringStruct *(REALstringStruct *, CFStringEncoding)> REALConvertString{
    "REALConvertString"};
/// +1.
inline constinit EntryPoint<REALstringStruct *(const void *bytes, int32_t length)> REALBuildString{"REALBuildString"};
/// +1.
inline constinit EntryPoint<REALstringStruct *(const void *bytes, int32_t length, CFStringEncoding)>
    REALBuildStringWithEncoding{"REALBuildStringWithEncoding"};
/// The bytes, borrowed from the string.
inline constinit EntryPoint<const UInt8 *(REALstringStruct *)> REALGetStringContents{"StringGetCString"};

// Arrays. Elements come out with a reference of their own (+1) and go in without giving theirs away.
/// +1.
inline constinit EntryPoint<_REALarray *(int32_t elementType, int32_t upperBound)> REALCreateArray{
    "RuntimeArrayCreateSingleDimBoundedArray"};
inline constinit EntryPoint<int32_t(_REALarray *)> REALGetArrayUBound{"RuntimeUBound"};
inline constinit EntryPoint<REALstringStruct *(_REALarray *, int32_t index)> REALReadStringArray{
    "RuntimeDirectReadStringArray"};

// The older names serve arrays of every type of element.
inline constexpr const char *kGetterOfAnyArray = "RuntimeArrayDirectGetGetProc";
inline constexpr const char *kInserterOfAnyArray = "RuntimeArrayDirectGetInsertProc";
inline constexpr const char *kSetterOfAnyArray = "RuntimeArrayDirectGetSetProc";

template <class Value> using ArrayGetter = ElementEntryPoint<Value(_REALarray *, int32_t index)>;
inline constinit ArrayGetter<int32_t> REALGetArrayValueInteger{"PluginIntegerArrayGetProc", kGetterOfAnyArray};
inline constinit ArrayGetter<HostBoolean> REALGetArrayValueBoolean{"PluginBooleanArrayGetProc", kGetterOfAnyArray};
inline constinit ArrayGetter<int64_t> REALGetArrayValueInt64{"PluginInt64ArrayGetProc", kGetterOfAnyArray};
inline constinit ArrayGetter<float> REALGetArrayValueSingle{"PluginSingleArrayGetProc", kGetterOfAnyArray};
inline constinit ArrayGetter<double> REALGetArrayValueDouble{"PluginDoubleArrayGetProc", kGetterOfAnyArray};
inline constinit ArrayGetter<REALstringStruct *> REALGetArrayValueString{"PluginStringArrayGetProc", kGetterOfAnyArray};
inline constinit ArrayGetter<REALobjectStruct *> REALGetArrayValueObject{"PluginObjectArrayGetProc", kGetterOfAnyArray};

template <class Value> using ArrayInserter = ElementEntryPoint<void(_REALarray *, int32_t index, Value)>;
inline constinit ArrayInserter<REALstringStruct *> REALInsertArrayValueString{"PluginStringArrayInsertProc",
                                                                              kInserterOfAnyArray};
inline constinit ArrayInserter<REALobjectStruct *> REALInsertArrayValueObject{"PluginObjectArrayInsertProc",
                                                                              kInserterOfAnyArray};
/// Unlike insert and get, set takes the index last.
template <class Value> using ArraySetter = ElementEntryPoint<void(_REALarray *, Value, int32_t index)>;
inline constinit ArraySetter<REALobjectStruct *> REALSetArrayValueObject{"PluginObjectArraySetProc", kSetterOfAnyArray};

// Variants. Making one gives +1.
inline constinit EntryPoint<REALobjectStruct *(REALstringStruct *)> StringToVariant{"StringToVariant"};
inline constinit EntryPoint<REALobjectStruct *(HostBoolean)> BooleanToVariant{"BooleanToVariant"};
inline constinit EntryPoint<REALobjectStruct *(double)> DoubleToVariant{"DoubleToVariant"};
inline constinit EntryPoint<REALobjectStruct *(int32_t)> IntegerToVariant{"IntegerToVariant", "Int32ToVariant"};
inline constinit EntryPoint<REALobjectStruct *(int64_t)> Int64ToVariant{"Int64ToVariant"};
/// The string is +1.
inline constinit EntryPoint<REALstringStruct *(REALobjectStruct *)> VariantToString{"VariantToString"};
inline constinit EntryPoint<int32_t(REALobjectStruct *)> VariantToInt32{"VariantToInt32"};
inline constinit EntryPoint<int64_t(REALobjectStruct *)> VariantToInt64{"VariantToInt64"};
inline constinit EntryPoint<float(REALobjectStruct *)> VariantToSingle{"VariantToSingle"};
inline constinit EntryPoint<double(REALobjectStruct *)> VariantToDouble{"VariantToDouble"};

// Memory blocks.
/// +1; null when the memory cannot be had.
inline constinit EntryPoint<REALobjectStruct *(int32_t size)> newMemoryBlock{"newMemoryBlock"};
inline constinit EntryPoint<int32_t(REALobjectStruct *)> memoryBlockGetSize{"memoryBlockGetSize"};
/// Borrowed from the block.
inline constinit EntryPoint<void *(REALobjectStruct *)> memoryBlockGetPtr{"memoryBlockGetPtr"};

// Folder items. The structures are the File Manager's.
/// With a name buffer: the folder that contains the item and the item's own name, which need not exist.
inline constinit EntryPoint<HostBoolean(REALfolderItemStruct *, FSRef *out, HFSUniStr255 *name)>
    REALFSRefFromFolderItem{"REALFSRefFromFolderItem"};
/// +1.
inline constinit EntryPoint<REALfolderItemStruct *(const FSRef *parent, const HFSUniStr255 *name)>
    REALFolderItemFromParentFSRef{"REALFolderItemFromParentFSRef"};
/// +1.
inline constinit EntryPoint<REALfolderItemStruct *(const FSSpec *)> FolderItemFromFSSpec{"FolderItemFromFSSpec"};
