// Level 1: what the loader is told to do with the library.
#include "simulator/validate/checks.h"

#include "simulator/loader/byte_cursor.h"
#include "simulator/validate/import_lists.h"
#include "simulator/validate/library_file.h"

#include <algorithm>
#include <map>
#include <set>

namespace sim::validate {
namespace {

namespace macho = loader::macho;

void LookAtExports(const Subject &subject, Findings &findings) {
    const LibraryFile file = LibraryFile::Read(subject.library);
    findings.Expect(file.image.exports.size() == 1,
                    "there are " + std::to_string(file.image.exports.size()) + " exports");
    for (const loader::Export &entry : file.image.exports) {
        findings.Expect(entry.symbol == "_REALPluginMain", "it exports " + entry.symbol);
        findings.Expect(file.IsFunction(entry.address), "no function begins at the export " + entry.symbol);
    }
}

void LookAtLibraries(const Subject &subject, Findings &findings) {
    const LibraryFile file = LibraryFile::Read(subject.library);
    const ImportLists lists = ImportLists::Read(subject.imports);
    std::set<std::string> loaded;
    for (const loader::Dylib &dylib : file.image.dylibs) {
        findings.Expect(loaded.insert(dylib.installName).second, dylib.installName + " is loaded twice");
        findings.Expect(!dylib.weak && !dylib.reexported, dylib.installName + " is not loaded plainly");
        const auto listed = lists.libraries.find(dylib.installName);
        findings.Expect(listed != lists.libraries.end(), dylib.installName + " is on no list");
        if (listed == lists.libraries.end())
            continue;
        findings.Expect(dylib.currentVersion == listed->second.currentVersion,
                        dylib.installName + " is of version " + VersionText(dylib.currentVersion));
        findings.Expect(dylib.compatibilityVersion == listed->second.compatibilityVersion,
                        dylib.installName + " is compatible with " + VersionText(dylib.compatibilityVersion));
    }
}

/// What the symbol table says of each undefined symbol: whether it is weak.
std::map<std::string, bool> Undefined(const LibraryFile &file) {
    std::map<std::string, bool> found;
    for (const Command *command : file.CommandsOf(macho::kSymbolTable)) {
        const auto table = command->As<macho::SymbolTableCommand>();
        for (uint32_t i = 0; i < table.symbolCount; i++) {
            macho::SymbolRecord record;
            std::memcpy(&record, file.bytes.data() + table.symbolOffset + i * sizeof record, sizeof record);
            constexpr uint8_t kTypeAndExternal = 0x0F, kUndefinedExternal = 0x01, kWeakReference = 0x40;
            if ((record.type & kTypeAndExternal) != kUndefinedExternal)
                continue;
            loader::ByteCursor names(std::span(file.bytes).subspan(table.stringOffset, table.stringSize), "the library",
                                     "the symbol names");
            names.Seek(record.nameOffset);
            found[std::string(names.CString())] = (record.description & kWeakReference) != 0;
        }
    }
    return found;
}

void LookAtImports(const Subject &subject, Findings &findings) {
    const LibraryFile file = LibraryFile::Read(subject.library);
    const ImportLists lists = ImportLists::Read(subject.imports);
    std::map<std::string, bool> undefined = Undefined(file);
    undefined.erase("dyld_stub_binder");
    for (const loader::Import &import : file.image.imports) {
        const auto listed = lists.homes.find(import.symbol);
        findings.Expect(listed != lists.homes.end(), import.symbol + " is on no list");
        if (listed == lists.homes.end())
            continue;
        const bool hasHome = import.ordinal > 0;
        const std::string home =
            hasHome ? file.image.dylibs[static_cast<size_t>(import.ordinal - 1)].installName : "no library";
        findings.Expect(home == listed->second.library, import.symbol + " is bound from " + home);
        findings.Expect(import.weak == listed->second.isWeak,
                        import.symbol + (import.weak ? " is a weak import" : " is no weak import"));
        const auto symbol = undefined.find(import.symbol);
        findings.Expect(symbol != undefined.end(), import.symbol + " is not in the symbol table");
        if (symbol == undefined.end())
            continue;
        findings.Expect(symbol->second == import.weak, import.symbol + " is weak in one table only");
        undefined.erase(symbol);
    }
    for (const auto &[name, weak] : undefined)
        findings.Expect(false, name + " is never bound");
}

void LookAtFixups(const Subject &subject, Findings &findings) {
    const LibraryFile file = LibraryFile::Read(subject.library);
    const auto isData = [&](uint32_t address) {
        return std::ranges::any_of(file.image.sections, [&](const loader::Section &section) {
            return section.segmentName == "__DATA" && address >= section.address &&
                   address - section.address < section.size;
        });
    };
    findings.Expect(!file.image.rebases.empty(), "no word moves with the library");
    std::set<uint32_t> taken;
    for (const uint32_t address : file.image.rebases) {
        findings.Expect(isData(address), "a word that moves is no data, at " + Hex(address));
        findings.Expect(taken.insert(address).second, "a word moves twice, at " + Hex(address));
        const uint32_t value = file.WordAt(address);
        findings.Expect(value - file.image.base < file.image.imageSize,
                        "the word at " + Hex(address) + " moves and points out of the library");
    }
    for (const loader::Bind &bind : file.image.binds) {
        findings.Expect(isData(bind.address), "a word that is bound is no data, at " + Hex(bind.address));
        findings.Expect(taken.insert(bind.address).second,
                        "a word is bound and settled otherwise, at " + Hex(bind.address));
        findings.Expect(!bind.lazy, "a word is bound late, at " + Hex(bind.address));
        findings.Expect(file.WordAt(bind.address) == 0, "a bound word is not empty, at " + Hex(bind.address));
    }
}

/// Walks the table of frames: a common entry says who handles exceptions, each other one describes a function.
class FrameTable {
public:
    FrameTable(const LibraryFile &file, Findings &findings)
        : file_(file), findings_(findings), section_(file.SectionNamed("__TEXT", "__eh_frame")),
          cursor_(file.Contents("__TEXT", "__eh_frame"), "the library", "the table of frames") {
        for (const loader::Bind &bind : file.image.binds)
            bound_[bind.address] = file.image.imports[bind.import].symbol;
    }

    void Walk() {
        while (!cursor_.AtEnd()) {
            const auto length = cursor_.Read<uint32_t>();
            if (length == 0)
                break;
            const size_t start = cursor_.Position();
            const auto distance = cursor_.Read<uint32_t>();
            if (distance == 0)
                common_[start - sizeof length] = CommonEntry(start + length);
            else
                FunctionEntry(common_.find(start - distance));
            cursor_.Seek(start + length);
        }
        const loader::Section &code = file_.SectionNamed("__TEXT", "__text");
        uint32_t end = code.address;
        for (const auto &[address, function] : functions_) {
            const uint32_t size = function.size;
            findings_.Expect(address >= end, "two frames describe the code at " + Hex(address));
            findings_.Expect(file_.IsFunction(address), "a frame describes no function, at " + Hex(address));
            // What follows a function is another one or a jump table: the frame may not reach into it.
            uint32_t limit = code.address + code.size;
            for (const auto *starts : {&file_.functions, &file_.jumpTables})
                if (const auto next = std::ranges::upper_bound(*starts, address); next != starts->end())
                    limit = std::min(limit, *next);
            findings_.Expect(size > 0 && address + size <= limit, "a frame is too long, at " + Hex(address));
            findings_.Expect(address + size + 15 >= limit, "a frame is too short, at " + Hex(address));
            end = address + size;
        }
        findings_.Expect(handlers_ > 0, "no frame handles exceptions");
    }

private:
    struct Function {
        uint32_t size;
        bool hasHandlers;

        bool operator==(const Function &) const = default;
    };

    struct Common {
        bool hasData = false;
        bool hasHandler = false;
    };

    /// A pointer that counts from its own place; only those are written by this compiler.
    uint32_t Pointer(const char *what) {
        const uint32_t place = section_.address + static_cast<uint32_t>(cursor_.Position());
        const auto distance = cursor_.Read<uint32_t>();
        findings_.Expect(distance != 0, std::string("there is no ") + what + " at " + Hex(place));
        return place + distance;
    }

    Common CommonEntry(size_t end) {
        Common common;
        cursor_.Byte(); // version
        const std::string augmentation(cursor_.CString());
        cursor_.Uleb();
        cursor_.Sleb();
        cursor_.Byte(); // the register of the return address
        common.hasData = augmentation.starts_with('z');
        findings_.Expect(common.hasData, "frames of an unknown form: \"" + augmentation + "\"");
        cursor_.Uleb();
        for (const char letter : augmentation.substr(common.hasData ? 1 : 0)) {
            if (letter == 'P') {
                cursor_.Byte();
                const auto symbol = bound_.find(Pointer("handler"));
                findings_.Expect(symbol != bound_.end() && symbol->second == "___gxx_personality_v0",
                                 "frames are handled by " + (symbol == bound_.end() ? "nobody" : symbol->second));
            } else {
                cursor_.Byte();
                common.hasHandler |= letter == 'L';
            }
        }
        findings_.Expect(cursor_.Position() <= end, "a common entry ends after itself");
        return common;
    }

    void FunctionEntry(std::map<size_t, Common>::const_iterator common) {
        if (common == common_.end()) {
            findings_.Expect(false, "a frame belongs to no common entry");
            return;
        }
        const uint32_t address = Pointer("function");
        Function function{cursor_.Read<uint32_t>(), false};
        if (common->second.hasData && cursor_.Uleb() != 0 && common->second.hasHandler)
            function.hasHandlers = LookAtHandlers(address);
        // A function that several sources define is kept once; each of them may have left its frame, and a table of
        // handlers that says the same.
        const auto [known, isNew] = functions_.emplace(address, function);
        findings_.Expect(isNew || known->second == function, "two frames describe " + Hex(address) + " differently");
    }

    /// True: the function has a table of handlers.
    bool LookAtHandlers(uint32_t function) {
        const loader::Section &tables = file_.SectionNamed("__TEXT", "__gcc_except_tab");
        const uint32_t address = Pointer("table of handlers");
        const bool isInside = address >= tables.address && address - tables.address < tables.size;
        findings_.Expect(isInside, "the handlers of " + Hex(function) + " lie elsewhere");
        // Such a table begins with the word that its places count from the function's own start.
        constexpr uint32_t kOmitted = 0xFF;
        findings_.Expect(isInside && (file_.WordAt(address & ~3U) >> 8 * (address & 3) & 0xFF) == kOmitted,
                         "the handlers of " + Hex(function) + " have an unknown form");
        handlers_++;
        return true;
    }

    const LibraryFile &file_;
    Findings &findings_;
    const loader::Section &section_;
    loader::ByteCursor cursor_;
    std::map<uint32_t, std::string> bound_;
    std::map<size_t, Common> common_;
    std::map<uint32_t, Function> functions_;
    int handlers_ = 0;
};

void LookAtFrames(const Subject &subject, Findings &findings) {
    const LibraryFile file = LibraryFile::Read(subject.library);
    FrameTable(file, findings).Walk();
}

} // namespace

std::vector<Check> LinkChecks() {
    return {Look("the exports", 1, LookAtExports), Look("the libraries it needs", 1, LookAtLibraries),
            Look("the imports and their home libraries", 1, LookAtImports),
            Look("the words that the loader settles", 1, LookAtFixups), Look("the unwind table", 1, LookAtFrames)};
}

} // namespace sim::validate
