// The records in which a plugin declares its classes to the host: arrays of 32-bit words, laid out as the host reads
// them, and the builders that write them. All of them are writable, because the host fills in forSystemUse and
// registration rewrites records for old hosts in place.
#pragma once

#include <cstddef>

#include "host/capabilities.h"

/// One word that holds a function of any shape, null, or a number in place of a function.
union CodeWord {
    HostCode function;
    intptr_t number;
};

/// In place of a property's getter or setter: the host reads or writes the field itself.
inline constexpr CodeWord kHostStandard = {.number = -1};

/// Pointer and count, two words. Here they are made from the array they describe; registration puts other rows into the
/// place of these, and the count stays.
template <class Row> struct Table {
    Row *rows = nullptr;
    uint32_t count = 0;

    constexpr Table() = default;
    template <size_t n> constexpr Table(Row (&array)[n]) : rows(array), count(n) {}
};

struct REALproperty {
    const char *group;
    const char *name;
    const char *type;
    uint32_t flags;
    CodeWord getter;
    CodeWord setter;
    /// For a standard accessor the byte offset of the field in the plugin data; otherwise the accessor's second
    /// argument.
    int32_t param;
    const char *editor;
    uint32_t enumCount;
    const char **enumEntries;
    uint32_t attributeCount;
    const void *attributes;
};

struct REALmethodDefinition {
    CodeWord function;
    /// Only for a declaration that can be assigned to as well as read.
    CodeWord setterFunction;
    const char *declaration;
    uint32_t mFlags;
    uint32_t attributeCount;
    const void *attributes;
};

struct REALevent {
    const char *declaration;
    /// Filled in by the host: what it knows the event by. On old hosts the address of the converted copy, an
    /// OldREALevent, into which the host wrote that; 0 when there was no memory for the copy.
    uint32_t forSystemUse;
    uint32_t attributeCount;
    const void *attributes;
};

/// An event's record in the layout of old hosts.
struct OldREALevent {
    const char *declaration;
    uint32_t forSystemUse;
};

struct REALconstant {
    const char *declaration;
    uint32_t reserved[4];
};

struct REALclassDefinition {
    /// Registration puts the host's in.
    int32_t version = kNewestDeclarationLayout;
    const char *name;
    const char *superName;
    uint32_t dataSize;
    /// The offset of the plugin data inside an instance, owned by the host from registration on and read at each
    /// access.
    int32_t forSystemUse;
    void (*constructor)(REALobjectStruct *);
    void (*destructor)(REALobjectStruct *);
    Table<REALproperty> properties;
    Table<REALmethodDefinition> methods;
    Table<REALevent> events;
    const void *eventInstances;
    uint32_t eventInstanceCount;
    const void *interfaces;
    const void *bindDescriptions;
    uint32_t bindDescriptionCount;
    Table<REALconstant> constants;
    uint32_t mFlags;
    Table<REALproperty> sharedProperties;
    Table<REALmethodDefinition> sharedMethods;
    uint32_t further[4];
};

struct REALmoduleDefinition {
    int32_t version;
    const char *name;
    Table<REALmethodDefinition> methods;
    uint32_t further[20];
};

constexpr size_t kWord = 4;
static_assert(sizeof(void *) == kWord, "the host's records are made of 32-bit words");
static_assert(sizeof(REALproperty) == 12 * kWord && offsetof(REALproperty, param) == 6 * kWord);
static_assert(sizeof(REALmethodDefinition) == 6 * kWord && offsetof(REALmethodDefinition, mFlags) == 3 * kWord);
static_assert(sizeof(REALevent) == 4 * kWord && offsetof(REALevent, forSystemUse) == 1 * kWord);
static_assert(sizeof(OldREALevent) == 2 * kWord && offsetof(OldREALevent, forSystemUse) == 1 * kWord);
static_assert(sizeof(REALconstant) == 5 * kWord);
static_assert(sizeof(REALmoduleDefinition) == 24 * kWord && offsetof(REALmoduleDefinition, methods) == 2 * kWord);
static_assert(sizeof(REALclassDefinition) == 29 * kWord);
static_assert(offsetof(REALclassDefinition, dataSize) == 3 * kWord);
static_assert(offsetof(REALclassDefinition, forSystemUse) == 4 * kWord);
static_assert(offsetof(REALclassDefinition, properties) == 7 * kWord);
static_assert(offsetof(REALclassDefinition, methods) == 9 * kWord);
static_assert(offsetof(REALclassDefinition, events) == 11 * kWord);
static_assert(offsetof(REALclassDefinition, interfaces) == 15 * kWord);
static_assert(offsetof(REALclassDefinition, constants) == 18 * kWord);
static_assert(offsetof(REALclassDefinition, mFlags) == 20 * kWord);
static_assert(offsetof(REALclassDefinition, sharedMethods) == 23 * kWord);

// The flags that this plugin's declarations carry. The bits are the host's; these combinations are all that is used.
constexpr uint32_t kPropertyFlags = 6;
constexpr uint32_t kMethodFlags = 4;
constexpr uint32_t kClassFlags = 4;
/// Added to a method's flags when it stands in a module.
constexpr uint32_t kModuleMethodFlag = 16;

template <class Result, class... Arguments> constexpr CodeWord CodeOf(Result (*function)(Arguments...)) {
    return {.function = reinterpret_cast<HostCode>(function)};
}

/// A method of the class, implemented by a function whose first argument is the instance.
template <class Result, class... Arguments>
constexpr REALmethodDefinition Method(const char *declaration, Result (*function)(REALobjectStruct *, Arguments...)) {
    return {.function = CodeOf(function), .declaration = declaration, .mFlags = kMethodFlags};
}

/// A method that reads like a property and can be assigned to: both functions speak of the same type.
template <class Value>
constexpr REALmethodDefinition Accessors(const char *declaration, Value (*getter)(REALobjectStruct *),
                                         void (*setter)(REALobjectStruct *, Value)) {
    return {.function = CodeOf(getter),
            .setterFunction = CodeOf(setter),
            .declaration = declaration,
            .mFlags = kMethodFlags};
}

/// A method without an instance: of the class as a whole, or global.
template <class Result, class... Arguments>
constexpr REALmethodDefinition SharedMethod(const char *declaration, Result (*function)(Arguments...)) {
    return {.function = CodeOf(function), .declaration = declaration, .mFlags = kMethodFlags};
}

/// A property that the host reads and writes in the plugin data itself.
constexpr REALproperty Stored(const char *name, const char *type, size_t offset) {
    return {.name = name,
            .type = type,
            .flags = kPropertyFlags,
            .getter = kHostStandard,
            .setter = kHostStandard,
            .param = static_cast<int32_t>(offset)};
}

/// A read-only property that a function computes from the instance and a number that is always 0 here.
template <class Result>
constexpr REALproperty Computed(const char *name, const char *type, Result (*getter)(REALobjectStruct *, int32_t)) {
    return {.name = name, .type = type, .flags = kPropertyFlags, .getter = CodeOf(getter)};
}

constexpr REALevent Event(const char *declaration) { return {.declaration = declaration}; }

/// The declaration has the form name=value.
constexpr REALconstant Constant(const char *declaration) { return {.declaration = declaration}; }
