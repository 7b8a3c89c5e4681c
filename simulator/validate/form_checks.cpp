// Level 1: the file as its header, its load commands and its sections describe it.
#include "simulator/validate/checks.h"

#include "simulator/validate/import_lists.h"
#include "simulator/validate/library_file.h"

#include <algorithm>
#include <map>
#include <regex>
#include <set>

namespace sim::validate {
namespace {

namespace macho = loader::macho;

constexpr uint32_t kVersion15_5 = 15u << 16 | 5u << 8;
constexpr uint32_t kSystem10_6 = 10u << 16 | 6u << 8;

void LookAtHeader(const Subject &subject, Findings &findings) {
    const LibraryFile file = LibraryFile::Read(subject.library);
    constexpr uint32_t kEveryProcessor = 3;
    findings.Expect(file.header.cpuSubtype == kEveryProcessor, "it is for a special kind of processor");
    const struct {
        uint32_t flag;
        const char *meaning;
    } flags[] = {{0x1, "nothing is undefined"},
                 {0x4, "the loader's input"},
                 {0x80, "symbols have home libraries"},
                 {0x100000, "no library is handed on"}};
    uint32_t known = 0;
    for (const auto &[flag, meaning] : flags) {
        findings.Expect((file.header.flags & flag) != 0, std::string("a flag is not set: ") + meaning);
        known |= flag;
    }
    findings.Expect((file.header.flags & ~known) == 0, "there are other flags: " + Hex(file.header.flags & ~known));
}

void LookAtCommands(const Subject &subject, Findings &findings) {
    const LibraryFile file = LibraryFile::Read(subject.library);
    size_t size = 0;
    for (const Command &command : file.commands)
        size += command.body.size();
    findings.Expect(size == file.header.commandBytes, "the load commands are not as long as the header says");

    const auto one = [&](uint32_t kind, const char *name) -> const Command * {
        const auto found = file.CommandsOf(kind);
        findings.Expect(found.size() == 1, std::string("there are ") + std::to_string(found.size()) + " of " + name);
        return found.size() == 1 ? found.front() : nullptr;
    };
    one(macho::kSymbolTable, "the symbol table");
    one(macho::kDynamicSymbolTable, "the dynamic symbol table");
    one(macho::kDyldInfoOnly, "the dynamic linking information");
    one(macho::kFunctionStarts, "the list of functions");
    if (const Command *id = one(macho::kIdDylib, "the library's name")) {
        const auto record = id->As<macho::DylibCommand>();
        findings.Expect(file.image.installName == "@rpath/Spotlight.dylib", "its name is " + file.image.installName);
        findings.Expect(record.currentVersion == kVersion15_5, "its version is " + VersionText(record.currentVersion));
        findings.Expect(record.compatibilityVersion == 1u << 16,
                        "its compatibility version is " + VersionText(record.compatibilityVersion));
    }
    if (const Command *oldest = one(macho::kVersionMinMacOSX, "the oldest system"))
        findings.Expect(oldest->Word(8) == kSystem10_6, "the oldest system is " + VersionText(oldest->Word(8)));
    if (const Command *source = one(macho::kSourceVersion, "the source version")) {
        // 24 bits, then four times 10, in a word of 64.
        const uint64_t version = source->Word(8) | static_cast<uint64_t>(source->Word(12)) << 32;
        findings.Expect(version == (uint64_t{15} << 40 | uint64_t{5} << 30), "the source version is not 15.5");
    }
    if (const Command *uuid = one(macho::kUuid, "the UUID"))
        findings.Expect(std::any_of(uuid->body.begin() + 8, uuid->body.end(), [](uint8_t byte) { return byte != 0; }),
                        "the UUID is empty");
    for (const Command &command : file.commands) {
        static const std::set<uint32_t> kKnown{
            macho::kSegment,    macho::kSymbolTable,   macho::kDynamicSymbolTable, macho::kLoadDylib,
            macho::kIdDylib,    macho::kUuid,          macho::kVersionMinMacOSX,   macho::kFunctionStarts,
            macho::kDataInCode, macho::kSourceVersion, macho::kDyldInfoOnly};
        findings.Expect(kKnown.contains(command.kind), "there is load command " + Hex(command.kind));
    }
}

void LookAtSegments(const Subject &subject, Findings &findings) {
    const LibraryFile file = LibraryFile::Read(subject.library);
    const struct {
        const char *name;
        uint32_t protection;
    } expected[] = {{"__TEXT", macho::kProtectionRead | macho::kProtectionExecute},
                    {"__DATA", macho::kProtectionRead | macho::kProtectionWrite},
                    {"__LINKEDIT", macho::kProtectionRead}};
    findings.Expect(file.segments.size() == std::size(expected),
                    "there are " + std::to_string(file.segments.size()) + " segments");
    uint32_t address = file.image.base, offset = 0;
    for (size_t i = 0; const auto &right : expected) {
        if (i == file.segments.size())
            break;
        const macho::SegmentCommand &segment = file.segments[i++];
        const std::string name = FixedText(segment.name);
        findings.Expect(name == right.name, "segment " + std::to_string(i) + " is " + name);
        findings.Expect(segment.initialProtection == right.protection,
                        name + " has the rights " + Hex(segment.initialProtection));
        findings.Expect((segment.maximumProtection & segment.initialProtection) == segment.initialProtection,
                        name + " may not have the rights that it begins with");
        findings.Expect(segment.address == address, name + " begins at " + Hex(segment.address));
        findings.Expect(segment.fileOffset == offset, name + " begins at " + Hex(segment.fileOffset) + " of the file");
        address = segment.address + segment.memorySize;
        offset = segment.fileOffset + segment.fileSize;
    }
}

void LookAtSections(const Subject &subject, Findings &findings) {
    const LibraryFile file = LibraryFile::Read(subject.library);
    std::set<std::string> names;
    std::map<std::string, bool> isFilled; // of each segment, whether zeros have begun
    std::map<std::string, uint32_t> end;
    for (const macho::SectionRecord &section : file.sections) {
        const std::string segment = FixedText(section.segmentName);
        const std::string name = segment + "," + FixedText(section.name);
        names.insert(name);
        const uint32_t kind = section.flags & macho::kSectionTypeMask;
        findings.Expect(kind != macho::kSectionInitialisers && kind != macho::kSectionTerminators,
                        name + " runs code that nobody calls");
        findings.Expect(kind == 0 || kind == macho::kSectionZeroFill || kind == 0x2 || kind == 0xB,
                        name + " is of kind " + Hex(kind));
        if (kind == macho::kSectionZeroFill)
            isFilled[segment] = true;
        else
            findings.Expect(!isFilled[segment], name + " comes after zeros");
        findings.Expect(section.address >= end[segment], name + " overlaps the one before");
        findings.Expect(section.alignment < 13 && section.address % (1u << section.alignment) == 0,
                        name + " is not aligned");
        end[segment] = section.address + section.size;
        for (const macho::SegmentCommand &holder : file.segments)
            if (FixedText(holder.name) == segment && kind != macho::kSectionZeroFill)
                findings.Expect(section.fileOffset - holder.fileOffset == section.address - holder.address,
                                name + " lies elsewhere in the file than in memory");
    }
    for (const char *name : {"__TEXT,__text", "__TEXT,__eh_frame", "__TEXT,__gcc_except_tab", "__TEXT,__info_plist",
                             "__DATA,__data", "__DATA,__const", "__DATA,__cfstring"})
        findings.Expect(names.contains(name), std::string("there is no section ") + name);
    const uint32_t commandsEnd = sizeof(macho::Header) + file.header.commandBytes;
    findings.Expect(file.SectionNamed("__TEXT", "__text").address - file.image.base >= commandsEnd,
                    "the code begins inside the load commands");
}

void LookAtPropertyList(const Subject &subject, Findings &findings) {
    const LibraryFile file = LibraryFile::Read(subject.library);
    const auto bytes = file.Contents("__TEXT", "__info_plist");
    const std::string text(bytes.begin(), bytes.end());
    findings.Expect(text.starts_with("<?xml"), "the property list does not begin as one");
    findings.Expect(text.find("</plist>") != text.npos, "the property list does not end as one");
    const struct {
        const char *key;
        const char *value; // a regular expression
    } expected[] = {{"CFBundleVersion", "15\\.5"},
                    {"CFBundleShortVersionString", "15\\.5"},
                    {"CFBundleDevelopmentRegion", "English"},
                    {"CFBundleInfoDictionaryVersion", "6\\.0"},
                    {"CFBundleName", "Spotlight"},
                    {"CFBundleSignature", "\\?\\?\\?\\?"},
                    {"CFBundleIdentifier", "[\\w-]+(\\.[\\w-]+)+"},
                    {"CFBundleGetInfoString", "15\\.5.*Spotlight.*MacOSX.*\\d+"},
                    {"NSHumanReadableCopyright", "[^<]+"}};
    for (const auto &[key, value] : expected)
        findings.Expect(std::regex_search(
                            text, std::regex(std::string("<key>") + key + "</key>\\s*<string>" + value + "</string>")),
                        std::string("the property list does not say ") + key + " as it should");
}

} // namespace

std::vector<Check> FormChecks() {
    return {Look("the header", 1, LookAtHeader), Look("the load commands", 1, LookAtCommands),
            Look("the segments", 1, LookAtSegments), Look("the sections", 1, LookAtSections),
            Look("the property list", 1, LookAtPropertyList)};
}

} // namespace sim::validate
