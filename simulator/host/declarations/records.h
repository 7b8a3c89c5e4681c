// What a plugin hands over at registration, exactly as it arrived: every record is kept as its raw words with the
// address it was read from, beside the fields decoded by the layout that its declaration version prescribes. Version 9
// knows the short records, 10 to 13 the long ones. Nothing is interpreted beyond the layout; that is Classes' work.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sim::host {

using Word = uint32_t;

/// A function as it passes between host and plugin; who calls it knows its shape.
using Function = void (*)();

/// The words of one record in the plugin's memory. The host writes to it only where the interface gives it a word.
struct RawRecord {
    Word *address = nullptr;
    std::vector<Word> words;
};

struct PropertyRecord : RawRecord {
    std::string group;
    std::string name;
    std::string type;
    Word flags = 0;
    Word getter = 0; ///< −1: the host's own accessor
    Word setter = 0; ///< −1: the host's own accessor, 0: read-only
    int32_t param = 0;
};

struct MethodRecord : RawRecord {
    Word function = 0;
    Word setterFunction = 0;
    std::string declaration;
    Word flags = 0;
};

struct EventRecord : RawRecord {
    std::string declaration;
    /// Word 1 as it arrived, and what the host then wrote there.
    Word linkWord = 0;
    Word identifier = 0;
};

struct ConstantRecord : RawRecord {
    std::string declaration;
};

struct ClassRecord : RawRecord {
    int32_t version = 0;
    std::string name;
    std::string superName;
    uint32_t dataSize = 0;
    Word constructor = 0;
    Word destructor = 0;
    /// What the host wrote into word 4 last.
    int32_t forSystemUse = 0;
    Word flags = 0;
    std::vector<PropertyRecord> properties;
    std::vector<MethodRecord> methods;
    std::vector<EventRecord> events;
    std::vector<ConstantRecord> constants;
    std::vector<PropertyRecord> sharedProperties;
    std::vector<MethodRecord> sharedMethods;
};

struct ModuleRecord : RawRecord {
    int32_t version = 0;
    std::string name;
    std::vector<MethodRecord> methods;
};

/// Everything that arrived, in the order of its arrival.
struct Arrivals {
    /// The arguments of "RegisterPluginVersion".
    std::vector<int32_t> pluginVersions;
    std::vector<ClassRecord> classes;
    std::vector<ModuleRecord> modules;
    /// What "PluginRegisterMethod" was given.
    std::vector<MethodRecord> globalMethods;

    /// Stops when there is none of that name.
    const ClassRecord &Class(std::string_view name) const;
};

/// One record in readable form, a line per field, pointers shown as present or absent: the same text for the same
/// declarations wherever the plugin was loaded.
std::string Dump(const ClassRecord &record);
std::string Dump(const ModuleRecord &record);
std::string Dump(const MethodRecord &record);

/// Reading from the plugin's memory. Versions outside 9 to 13 and counts without a table stop the host.
ClassRecord ReadClass(Word *address);
ModuleRecord ReadModule(Word *address);
MethodRecord ReadMethod(Word *address, int32_t version);

} // namespace sim::host
