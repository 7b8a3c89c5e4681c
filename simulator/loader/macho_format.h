// The numbers and records of the 32-bit Mach-O file format, as far as a dynamic library with compressed link-edit
// information uses them. Records are read with memcpy, so their layout here is their layout in the file.
#pragma once

#include <cstddef>
#include <cstdint>

namespace sim::loader::macho {

constexpr uint32_t kMagic32 = 0xFEEDFACE;
constexpr uint32_t kMagic64 = 0xFEEDFACF;
constexpr uint32_t kMagicFat = 0xBEBAFECA; // stored big-endian, seen by a little-endian reader
constexpr uint32_t kCpuTypeI386 = 7;
constexpr uint32_t kFileTypeDylib = 6;
constexpr uint32_t kPageSize = 4096;

struct Header {
    uint32_t magic;
    uint32_t cpuType;
    uint32_t cpuSubtype;
    uint32_t fileType;
    uint32_t commandCount;
    uint32_t commandBytes;
    uint32_t flags;
};
static_assert(sizeof(Header) == 28);

// A loader must not go on past a command with this bit that it does not know.
constexpr uint32_t kCommandRequired = 0x80000000;

enum Command : uint32_t {
    kSegment = 0x1,
    kSymbolTable = 0x2,
    kDynamicSymbolTable = 0xB,
    kLoadDylib = 0xC,
    kIdDylib = 0xD,
    kUuid = 0x1B,
    kVersionMinMacOSX = 0x24,
    kFunctionStarts = 0x26,
    kDataInCode = 0x29,
    kSourceVersion = 0x2A,
    kLoadWeakDylib = 0x18 | kCommandRequired,
    kReexportDylib = 0x1F | kCommandRequired,
    kDyldInfo = 0x22,
    kDyldInfoOnly = 0x22 | kCommandRequired,
};

struct CommandHeader {
    uint32_t command;
    uint32_t size;
};
static_assert(sizeof(CommandHeader) == 8);

struct SegmentCommand {
    uint32_t command;
    uint32_t size;
    char name[16];
    uint32_t address;
    uint32_t memorySize;
    uint32_t fileOffset;
    uint32_t fileSize;
    uint32_t maximumProtection;
    uint32_t initialProtection;
    uint32_t sectionCount;
    uint32_t flags;
};
static_assert(sizeof(SegmentCommand) == 56);

constexpr uint32_t kProtectionRead = 1;
constexpr uint32_t kProtectionWrite = 2;
constexpr uint32_t kProtectionExecute = 4;

struct SectionRecord {
    char name[16];
    char segmentName[16];
    uint32_t address;
    uint32_t size;
    uint32_t fileOffset;
    uint32_t alignment;
    uint32_t relocationOffset;
    uint32_t relocationCount;
    uint32_t flags;
    uint32_t reserved1;
    uint32_t reserved2;
};
static_assert(sizeof(SectionRecord) == 68);

constexpr uint32_t kSectionTypeMask = 0xFF;
constexpr uint32_t kSectionZeroFill = 0x1;
constexpr uint32_t kSectionSymbolStubs = 0x8;
constexpr uint32_t kSectionInitialisers = 0x9;
constexpr uint32_t kSectionTerminators = 0xA;
constexpr uint32_t kSectionGigabyteZeroFill = 0xC;

struct DylibCommand {
    uint32_t command;
    uint32_t size;
    uint32_t nameOffset;
    uint32_t timestamp;
    uint32_t currentVersion;
    uint32_t compatibilityVersion;
};
static_assert(sizeof(DylibCommand) == 24);

struct SymbolTableCommand {
    uint32_t command;
    uint32_t size;
    uint32_t symbolOffset;
    uint32_t symbolCount;
    uint32_t stringOffset;
    uint32_t stringSize;
};
static_assert(sizeof(SymbolTableCommand) == 24);

struct SymbolRecord {
    uint32_t nameOffset;
    uint8_t type;
    uint8_t section;
    uint16_t description;
    uint32_t value;
};
static_assert(sizeof(SymbolRecord) == 12);

constexpr uint8_t kSymbolDebugMask = 0xE0;
constexpr uint8_t kSymbolTypeMask = 0x0E;
constexpr uint8_t kSymbolInSection = 0x0E;

struct DynamicSymbolTableCommand {
    uint32_t command;
    uint32_t size;
    uint32_t fields[14];
    uint32_t externalRelocationOffset;
    uint32_t externalRelocationCount;
    uint32_t localRelocationOffset;
    uint32_t localRelocationCount;
};
static_assert(sizeof(DynamicSymbolTableCommand) == 80);

struct DyldInfoCommand {
    uint32_t command;
    uint32_t size;
    uint32_t rebaseOffset;
    uint32_t rebaseSize;
    uint32_t bindOffset;
    uint32_t bindSize;
    uint32_t weakBindOffset;
    uint32_t weakBindSize;
    uint32_t lazyBindOffset;
    uint32_t lazyBindSize;
    uint32_t exportOffset;
    uint32_t exportSize;
};
static_assert(sizeof(DyldInfoCommand) == 48);

// Rebase and bind streams: the high half of each byte says what, the low half is a small number for it.
constexpr uint8_t kOpcodeMask = 0xF0;
constexpr uint8_t kImmediateMask = 0x0F;
constexpr uint8_t kFixupTypePointer = 1;

enum RebaseOpcode : uint8_t {
    kRebaseDone = 0x00,
    kRebaseSetType = 0x10,               // immediate: fix-up type
    kRebaseSetSegmentAndOffset = 0x20,   // immediate: segment; uleb: offset
    kRebaseAddAddress = 0x30,            // uleb: distance
    kRebaseAddAddressScaled = 0x40,      // immediate: distance in words
    kRebaseTimes = 0x50,                 // immediate: count
    kRebaseUlebTimes = 0x60,             // uleb: count
    kRebaseAndAddAddress = 0x70,         // uleb: distance
    kRebaseUlebTimesSkippingUleb = 0x80, // uleb: count; uleb: gap
};

enum BindOpcode : uint8_t {
    kBindDone = 0x00,
    kBindSetOrdinal = 0x10,          // immediate: library ordinal
    kBindSetOrdinalUleb = 0x20,      // uleb: library ordinal
    kBindSetSpecialOrdinal = 0x30,   // immediate: 0, or the low half of -1 or -2
    kBindSetSymbol = 0x40,           // immediate: flags; string: symbol
    kBindSetType = 0x50,             // immediate: fix-up type
    kBindSetAddend = 0x60,           // sleb: addend
    kBindSetSegmentAndOffset = 0x70, // immediate: segment; uleb: offset
    kBindAddAddress = 0x80,          // uleb: distance
    kBindOnce = 0x90,
    kBindAndAddAddress = 0xA0,         // uleb: distance
    kBindAndAddAddressScaled = 0xB0,   // immediate: distance in words
    kBindUlebTimesSkippingUleb = 0xC0, // uleb: count; uleb: gap
};

// Longer than any name a compiler makes; without a bound a damaged file could cost time quadratic in its size.
constexpr size_t kLongestSymbol = 4096;

constexpr uint8_t kSymbolFlagWeakImport = 0x1;

constexpr int32_t kOrdinalSelf = 0;

constexpr uint64_t kExportKindMask = 0x3;
constexpr uint64_t kExportKindRegular = 0;
constexpr uint64_t kExportWeakDefinition = 0x4;

} // namespace sim::loader::macho
