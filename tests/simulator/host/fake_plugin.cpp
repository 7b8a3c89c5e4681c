#include "tests/simulator/host/fake_plugin.h"

#include <cstring>
#include <deque>
#include <string>
#include <vector>

namespace tests {

int32_t announcedVersion = 13;
bool registersModule = true;
int32_t lampsConstructed = 0;
int32_t lampsDestroyed = 0;

namespace {

using Word = uint32_t;

constexpr Word kStandard = 0xFFFFFFFF;

sim::host::Host::Resolver hostResolver = nullptr;

template <class Signature> Signature *Find(const char *name) {
    return reinterpret_cast<Signature *>(hostResolver(name));
}

template <class T> Word WordOf(T *address) { return static_cast<Word>(reinterpret_cast<uintptr_t>(address)); }

void *NewText(const std::string &text) {
    auto build = Find<void *(const char *, int32_t)>("REALBuildString");
    auto tag = Find<void(void *, uint32_t)>("REALSetStringEncoding");
    void *string = build(text.data(), static_cast<int32_t>(text.size()));
    tag(string, 0x0600);
    return string;
}

// Lamp's functions.

void ConstructLamp(void *) { ++lampsConstructed; }

void DestroyLamp(void *self) {
    ++lampsDestroyed;
    LampData *data = DataOf(self);
    if (data->tag)
        Find<void(void *)>("REALUnlockObject")(data->tag);
    if (data->note)
        Find<void(void *)>("REALUnlockString")(data->note);
    std::memset(data, 0, sizeof *data);
}

void *GetTitle(void *self, int32_t param) {
    return NewText("lamp " + std::to_string(DataOf(self)->handle) + "/" + std::to_string(param));
}
int32_t GetBrightness(void *self, int32_t) { return DataOf(self)->brightness; }
void SetBrightness(void *self, int32_t param, int32_t value) { DataOf(self)->brightness = value + param; }

int32_t Add(void *, int32_t a, int32_t b) { return a + b; }
void *DescribeText(void *, void *) { return NewText("a text"); }
void *DescribeInteger(void *, int32_t) { return NewText("an integer"); }
void *DescribeDouble(void *, double) { return NewText("a double"); }
void *DescribeLamp(void *, void *lamp) { return NewText(lamp ? "a lamp" : "no lamp"); }
void *DescribeTexts(void *, void *) { return NewText("an array of texts"); }
void *DescribeVariant(void *, void *) { return NewText("a variant"); }
int64_t Twice64(void *, int64_t value) { return value * 2; }
double Half(void *, double value) { return value / 2; }
float HalfSingle(void *, float value) { return value / 2; }
uint32_t Inverted(void *, uint32_t value) { return ~value; }
/// Dirty upper bytes, as a real plugin's boolean results have.
uint32_t IsBright(void *self) { return 0xDEADBE00 | (DataOf(self)->brightness > 100 ? 1 : 0); }
uint32_t Negated(void *, uint32_t value) { return 0x12345600 | !(value & 0xFF); }
void TurnOff(void *self) { DataOf(self)->brightness = 0; }

void *Another(void *self) {
    void *lamp = Find<void *(const char *)>("PluginNewInstance")("Lamp");
    DataOf(lamp)->handle = DataOf(self)->handle + 1;
    return lamp;
}

void *Echo(void *, void *variant) {
    if (variant)
        Find<void(void *)>("REALLockObject")(variant);
    return variant;
}

void *EchoTexts(void *, void *texts) { return Echo(nullptr, texts); }

void *Others(void *self, int32_t count) {
    void *array = Find<void *(int32_t, int32_t)>("RuntimeArrayCreateSingleDimBoundedArray")(4, -1);
    auto factory = Find<sim::host::Host::Function(void *)>("PluginObjectArrayInsertProc");
    for (int32_t index = 0; index < count; ++index) {
        auto insert = reinterpret_cast<void (*)(void *, int32_t, void *)>(factory(array));
        void *lamp = Another(self);
        insert(array, index, lamp);
        Find<void(void *)>("REALUnlockObject")(lamp);
    }
    return array;
}

void *Nothing(void *) { return nullptr; }

/// Where a Shade keeps its only field.
void *WidthOf(void *shade);

void *GetShade(void *self) {
    void *shade = Find<void *(const char *)>("PluginNewInstance")("Shade");
    std::memcpy(WidthOf(shade), &DataOf(self)->handle, 4);
    return shade;
}

void SetShade(void *self, void *shade) {
    if (shade)
        std::memcpy(&DataOf(self)->handle, WidthOf(shade), 4);
}

int32_t SharedSum(int32_t a, int32_t b) { return a + b; }
int32_t SwitchAll(void *text) { return text ? 7 : -1; }

// Records. Every one lives as long as the program: a host keeps what it is given.

template <class T> Word Function(T *function) { return WordOf(reinterpret_cast<void *>(function)); }

struct Table {
    std::vector<Word> words;
    Word count = 0;

    void Add(std::vector<Word> record, size_t shortWords) {
        if (announcedVersion == 9)
            record.resize(shortWords);
        words.insert(words.end(), record.begin(), record.end());
        ++count;
    }
};

struct Records {
    Table properties, methods, events, constants, shared, shadeProperties;
    std::vector<Word> lamp = std::vector<Word>(29);
    std::vector<Word> shade = std::vector<Word>(29);
    std::vector<Word> global;
    std::vector<Word> module = std::vector<Word>(24);
};

std::deque<Records> &Kept() {
    static std::deque<Records> kept;
    return kept;
}

void *WidthOf(void *shade) { return static_cast<char *>(shade) + static_cast<int32_t>(Kept().back().shade[4]); }

void AddProperty(Table &table, const char *name, const char *type, Word getter, Word setter, Word param) {
    table.Add({0, WordOf(name), WordOf(type), 6, getter, setter, param, 0, 0, 0, 0, 0}, 10);
}

void AddMethod(Table &table, const char *declaration, Word function, Word setter = 0) {
    table.Add({function, setter, WordOf(declaration), 4, 0, 0}, 4);
}

void FillProperties(Table &table) {
    AddProperty(table, "Handle", "Integer", kStandard, kStandard, 0);
    AddProperty(table, "Tag", "Variant", kStandard, kStandard, 4);
    AddProperty(table, "Note", "String", kStandard, kStandard, 8);
    AddProperty(table, "Title", "String", Function(GetTitle), 0, 5);
    AddProperty(table, "Brightness", "Integer", Function(GetBrightness), Function(SetBrightness), 1);
}

void FillMethods(Table &table) {
    AddMethod(table, "Add(a as integer, b as integer = 10) as integer", Function(Add));
    AddMethod(table, "Describe(what as string) as string", Function(DescribeText));
    AddMethod(table, "Describe(what as integer) as string", Function(DescribeInteger));
    AddMethod(table, "Describe(what as double) as string", Function(DescribeDouble));
    AddMethod(table, "Describe(what as Lamp) as string", Function(DescribeLamp));
    AddMethod(table, "Describe(what() as string) as string", Function(DescribeTexts));
    AddMethod(table, "Describe(what as variant) as string", Function(DescribeVariant));
    AddMethod(table, "Twice(value as int64) as int64", Function(Twice64));
    AddMethod(table, "Half(value as double) as double", Function(Half));
    AddMethod(table, "HalfSingle(value as single) as single", Function(HalfSingle));
    AddMethod(table, "Inverted(value as UInt32) as UInt32", Function(Inverted));
    AddMethod(table, "IsBright as boolean", Function(IsBright));
    AddMethod(table, "Negated(value as boolean) as boolean", Function(Negated));
    AddMethod(table, "TurnOff", Function(TurnOff));
    AddMethod(table, "Another as Lamp", Function(Another));
    AddMethod(table, "Echo(value as variant) as variant", Function(Echo));
    AddMethod(table, "EchoTexts(values() as string) as string()", Function(EchoTexts));
    AddMethod(table, "Others(count as integer) as Lamp()", Function(Others));
    AddMethod(table, "WrongOthers(count as integer) as Shade()", Function(Others));
    AddMethod(table, "NoText as string", Function(Nothing));
    AddMethod(table, "Shade as Shade", Function(GetShade), Function(SetShade));
}

void FillLamp(Records &records) {
    FillProperties(records.properties);
    FillMethods(records.methods);
    records.events.Add({WordOf("TurnedOn()"), 0, 0, 0}, 2);
    records.events.Add({WordOf("Dimmed(names() as string, from as integer, to as double)"), 0, 0, 0}, 2);
    records.constants.Add({WordOf("kLampOn=1"), 0, 0, 0, 0}, 3);
    records.constants.Add({WordOf("kLampName=\"Lamp\""), 0, 0, 0, 0}, 3);
    AddMethod(records.shared, "Sum(a as integer, b as integer) as integer", Function(SharedSum));

    std::vector<Word> &lamp = records.lamp;
    lamp[1] = WordOf("Lamp");
    lamp[3] = sizeof(LampData);
    lamp[5] = Function(ConstructLamp);
    lamp[6] = Function(DestroyLamp);
    auto table = [&](size_t word, Table &records_) {
        lamp[word] = WordOf(records_.words.data());
        lamp[word + 1] = records_.count;
    };
    table(7, records.properties);
    table(9, records.methods);
    table(11, records.events);
    table(18, records.constants);
    table(23, records.shared);
    lamp[20] = 4;
}

void FillShade(Records &records) {
    AddProperty(records.shadeProperties, "Width", "Integer", kStandard, kStandard, 0);
    records.shade[1] = WordOf("Shade");
    records.shade[3] = 16;
    records.shade[7] = WordOf(records.shadeProperties.words.data());
    records.shade[8] = records.shadeProperties.count;
}

} // namespace

LampData *DataOf(void *lamp) {
    return reinterpret_cast<LampData *>(static_cast<char *>(lamp) + static_cast<int32_t>(LampRecord()[4]));
}

uint32_t *LampRecord() { return Kept().back().lamp.data(); }

uint32_t *LampEventRecords() { return Kept().back().events.words.data(); }

uint32_t EventIdentifier(int position) {
    const int words = announcedVersion == 9 ? 2 : 4;
    return LampEventRecords()[position * words + 1];
}

bool RaiseTurnedOn(void *lamp) {
    auto handler = Find<sim::host::Host::Function(void *, uint32_t)>("GetEventInstance")(lamp, EventIdentifier(0));
    if (!handler)
        return false;
    reinterpret_cast<void (*)(void *)>(handler)(lamp);
    return true;
}

bool RaiseDimmed(void *lamp, void *names, int32_t from, double to) {
    auto handler = Find<sim::host::Host::Function(void *, uint32_t)>("GetEventInstance")(lamp, EventIdentifier(1));
    if (!handler)
        return false;
    reinterpret_cast<void (*)(void *, void *, int32_t, double)>(handler)(lamp, names, from, to);
    return true;
}

void FakePluginMain(sim::host::Host::Resolver resolver) {
    hostResolver = resolver;
    lampsConstructed = lampsDestroyed = 0;
    Records &records = Kept().emplace_back();
    const auto version = static_cast<Word>(announcedVersion);
    records.lamp[0] = records.shade[0] = records.module[0] = version;
    FillLamp(records);
    FillShade(records);
    Find<void(int32_t)>("RegisterPluginVersion")(announcedVersion);
    auto registerClass = Find<void(Word *)>("PluginRegisterClass");
    registerClass(records.lamp.data());
    registerClass(records.shade.data());
    records.global = {Function(SwitchAll),        0, WordOf("SwitchAll(how as string) as integer"),
                      registersModule ? 20u : 4u, 0, 0};
    records.module[1] = WordOf("LampGlobals");
    records.module[2] = WordOf(records.global.data());
    records.module[3] = 1;
    if (registersModule)
        Find<void(Word *)>("PluginRegisterModule")(records.module.data());
    else
        Find<void(Word *)>("PluginRegisterMethod")(records.global.data());
}

} // namespace tests
