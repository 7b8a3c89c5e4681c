#include "simulator/host/declarations/records.h"

#include "simulator/host/ground/stop.h"

#include <algorithm>

namespace sim::host {

namespace {

/// The words that a record has, and the host therefore reads, under a declaration version.
struct Layout {
    size_t classWords;
    size_t propertyWords;
    size_t methodWords;
    size_t eventWords;
    size_t constantWords;
};

constexpr Layout kShortLayout = {25, 10, 4, 2, 3};
constexpr Layout kLongLayout = {29, 12, 6, 4, 5};
constexpr size_t kModuleWords = 24;

const Layout &LayoutFor(int32_t version) {
    if (version < 9 || version > 13)
        Stop("a record has the declaration version " + std::to_string(version) + "; 9 to 13 are known");
    return version == 9 ? kShortLayout : kLongLayout;
}

template <class T> T *At(Word word) { return reinterpret_cast<T *>(static_cast<uintptr_t>(word)); }

std::string TextAt(Word word) { return word ? At<const char>(word) : ""; }

void ReadWords(RawRecord &record, Word *address, size_t count) {
    record.address = address;
    record.words.assign(address, address + count);
}

void Read(PropertyRecord &record, Word *address, const Layout &layout) {
    ReadWords(record, address, layout.propertyWords);
    record.group = TextAt(record.words[0]);
    record.name = TextAt(record.words[1]);
    record.type = TextAt(record.words[2]);
    record.flags = record.words[3];
    record.getter = record.words[4];
    record.setter = record.words[5];
    record.param = static_cast<int32_t>(record.words[6]);
}

void Read(MethodRecord &record, Word *address, const Layout &layout) {
    ReadWords(record, address, layout.methodWords);
    record.function = record.words[0];
    record.setterFunction = record.words[1];
    record.declaration = TextAt(record.words[2]);
    record.flags = record.words[3];
}

void Read(EventRecord &record, Word *address, const Layout &layout) {
    ReadWords(record, address, layout.eventWords);
    record.declaration = TextAt(record.words[0]);
    record.linkWord = record.words[1];
}

void Read(ConstantRecord &record, Word *address, const Layout &layout) {
    ReadWords(record, address, layout.constantWords);
    record.declaration = TextAt(record.words[0]);
}

template <class Record>
std::vector<Record> ReadTable(Word table, Word count, size_t recordWords, const Layout &layout, const char *what) {
    if (count && !table)
        Stop("a record declares " + std::to_string(count) + " " + what + " without a table");
    std::vector<Record> records(count);
    for (size_t index = 0; index < count; ++index)
        Read(records[index], At<Word>(table) + index * recordWords, layout);
    return records;
}

} // namespace

ClassRecord ReadClass(Word *address) {
    ClassRecord record;
    record.version = static_cast<int32_t>(address[0]);
    const Layout &layout = LayoutFor(record.version);
    ReadWords(record, address, layout.classWords);
    const std::vector<Word> &words = record.words;
    record.name = TextAt(words[1]);
    record.superName = TextAt(words[2]);
    record.dataSize = words[3];
    record.forSystemUse = static_cast<int32_t>(words[4]);
    record.constructor = words[5];
    record.destructor = words[6];
    record.properties = ReadTable<PropertyRecord>(words[7], words[8], layout.propertyWords, layout, "properties");
    record.methods = ReadTable<MethodRecord>(words[9], words[10], layout.methodWords, layout, "methods");
    record.events = ReadTable<EventRecord>(words[11], words[12], layout.eventWords, layout, "events");
    record.constants = ReadTable<ConstantRecord>(words[18], words[19], layout.constantWords, layout, "constants");
    record.flags = words[20];
    record.sharedProperties =
        ReadTable<PropertyRecord>(words[21], words[22], layout.propertyWords, layout, "shared properties");
    record.sharedMethods = ReadTable<MethodRecord>(words[23], words[24], layout.methodWords, layout, "shared methods");
    return record;
}

ModuleRecord ReadModule(Word *address) {
    ModuleRecord record;
    record.version = static_cast<int32_t>(address[0]);
    const Layout &layout = LayoutFor(record.version);
    ReadWords(record, address, kModuleWords);
    record.name = TextAt(record.words[1]);
    record.methods = ReadTable<MethodRecord>(record.words[2], record.words[3], layout.methodWords, layout, "methods");
    return record;
}

MethodRecord ReadMethod(Word *address, int32_t version) {
    MethodRecord record;
    Read(record, address, LayoutFor(version));
    return record;
}

const ClassRecord &Arrivals::Class(std::string_view name) const {
    auto found =
        std::find_if(classes.begin(), classes.end(), [&](const ClassRecord &record) { return record.name == name; });
    if (found == classes.end())
        Stop("no class " + std::string(name) + " was registered");
    return *found;
}

} // namespace sim::host
