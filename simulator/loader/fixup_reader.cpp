#include "simulator/loader/fixup_reader.h"

#include "simulator/loader/byte_cursor.h"
#include "simulator/loader/macho_format.h"

#include <limits>
#include <map>
#include <tuple>

namespace sim::loader {
namespace {

constexpr uint32_t kWord = 4;

// The place the next fix-up goes to. Distances wrap around, as linkers step backwards by adding huge numbers; so the
// place is judged when it is used, not when it is moved.
class Place {
public:
    Place(const Image &image, const ByteCursor &cursor) : image_(image), cursor_(cursor) {}

    void Set(uint8_t segmentIndex, uint64_t offset) {
        if (segmentIndex >= image_.segments.size())
            cursor_.Fail("names segment " + std::to_string(segmentIndex) + ", which does not exist");
        segment_ = &image_.segments[segmentIndex];
        offset_ = static_cast<uint32_t>(offset);
    }

    void Advance(uint64_t distance) { offset_ += static_cast<uint32_t>(distance); }

    // The address of the word here, which must have contents in the file and may be written.
    uint32_t Word() const {
        if (!segment_)
            cursor_.Fail("fixes a word before it names a segment");
        if (!(segment_->protection & macho::kProtectionWrite))
            cursor_.Fail("fixes a word in " + segment_->name + ", which is not writable");
        if (segment_->fileSize < kWord || offset_ > segment_->fileSize - kWord)
            cursor_.Fail("fixes a word outside " + segment_->name);
        return segment_->address + offset_;
    }

private:
    const Image &image_;
    const ByteCursor &cursor_;
    const Segment *segment_ = nullptr;
    uint32_t offset_ = 0;
};

// No word needs more than one fix-up of a kind; a stream that goes on for longer is running in circles.
size_t FixupLimit(const Image &image) {
    size_t words = 0;
    for (const Segment &segment : image.segments)
        if (segment.protection & macho::kProtectionWrite)
            words += segment.fileSize / kWord;
    return words;
}

void RequirePointerType(const ByteCursor &cursor, uint8_t type) {
    if (type != macho::kFixupTypePointer)
        cursor.Fail("asks for fix-up type " + std::to_string(type) + "; only pointers are modelled");
}

} // namespace

void ReadRebases(Image &image, std::span<const uint8_t> stream, std::string_view file) {
    ByteCursor cursor(stream, file, "the rebase stream");
    Place place(image, cursor);
    const size_t limit = FixupLimit(image);
    uint8_t type = 0;

    const auto rebase = [&](uint64_t count, uint64_t gap) {
        RequirePointerType(cursor, type);
        for (; count > 0; --count) {
            if (image.rebases.size() >= limit)
                cursor.Fail("rebases more words than there are");
            image.rebases.push_back(place.Word());
            place.Advance(kWord + gap);
        }
    };

    while (!cursor.AtEnd()) {
        const uint8_t byte = cursor.Byte();
        const uint8_t immediate = byte & macho::kImmediateMask;
        switch (byte & macho::kOpcodeMask) {
        case macho::kRebaseDone:
            return;
        case macho::kRebaseSetType:
            type = immediate;
            break;
        case macho::kRebaseSetSegmentAndOffset:
            place.Set(immediate, cursor.Uleb());
            break;
        case macho::kRebaseAddAddress:
            place.Advance(cursor.Uleb());
            break;
        case macho::kRebaseAddAddressScaled:
            place.Advance(uint64_t{immediate} * kWord);
            break;
        case macho::kRebaseTimes:
            rebase(immediate, 0);
            break;
        case macho::kRebaseUlebTimes:
            rebase(cursor.Uleb(), 0);
            break;
        case macho::kRebaseAndAddAddress:
            rebase(1, cursor.Uleb());
            break;
        case macho::kRebaseUlebTimesSkippingUleb: {
            const uint64_t count = cursor.Uleb();
            rebase(count, cursor.Uleb());
            break;
        }
        default:
            cursor.Fail("holds the unknown operation " + std::to_string(byte));
        }
    }
}

namespace {

// The import named by the stream so far. Equal ones share an entry of image.imports.
class CurrentImport {
public:
    CurrentImport(Image &image, const ByteCursor &cursor) : image_(image), cursor_(cursor) {}

    void SetSymbol(std::string_view symbol, bool weak) {
        if (symbol.size() > macho::kLongestSymbol)
            cursor_.Fail("names a symbol of more than " + std::to_string(macho::kLongestSymbol) + " characters");
        symbol_ = symbol;
        weak_ = weak;
        index_ = kNone;
    }

    void SetOrdinal(uint64_t ordinal) {
        if (ordinal > image_.dylibs.size())
            cursor_.Fail("names library " + std::to_string(ordinal) + ", which does not exist");
        SetSpecialOrdinal(static_cast<int32_t>(ordinal));
    }

    void SetSpecialOrdinal(int32_t ordinal) {
        ordinal_ = ordinal;
        named_ = true;
        index_ = kNone;
    }

    uint32_t Index() {
        if (index_ != kNone)
            return index_;
        if (symbol_.empty())
            cursor_.Fail("binds a word before it names a symbol");
        if (!named_)
            cursor_.Fail("binds " + std::string(symbol_) + " before it names a library");
        const auto [entry, isNew] =
            known_.try_emplace({std::string(symbol_), ordinal_, weak_}, static_cast<uint32_t>(image_.imports.size()));
        if (isNew)
            image_.imports.push_back({std::string(symbol_), ordinal_, weak_});
        return index_ = entry->second;
    }

    // What an earlier stream brought in is shared as well.
    void RememberKnown() {
        for (size_t i = 0; i < image_.imports.size(); ++i) {
            const Import &import = image_.imports[i];
            known_.try_emplace({import.symbol, import.ordinal, import.weak}, static_cast<uint32_t>(i));
        }
    }

private:
    static constexpr uint32_t kNone = std::numeric_limits<uint32_t>::max();

    Image &image_;
    const ByteCursor &cursor_;
    std::string_view symbol_;
    bool weak_ = false;
    int32_t ordinal_ = 0;
    bool named_ = false;
    uint32_t index_ = kNone;
    std::map<std::tuple<std::string, int32_t, bool>, uint32_t> known_;
};

} // namespace

void ReadBinds(Image &image, std::span<const uint8_t> stream, bool lazy, std::string_view file) {
    ByteCursor cursor(stream, file, lazy ? "the lazy bind stream" : "the bind stream");
    Place place(image, cursor);
    CurrentImport import(image, cursor);
    import.RememberKnown();
    const size_t limit = image.binds.size() + FixupLimit(image);
    uint8_t type = lazy ? macho::kFixupTypePointer : uint8_t{0};
    int32_t addend = 0;

    const auto bind = [&](uint64_t count, uint64_t gap) {
        RequirePointerType(cursor, type);
        for (; count > 0; --count) {
            if (image.binds.size() >= limit)
                cursor.Fail("binds more words than there are");
            image.binds.push_back({place.Word(), addend, import.Index(), lazy});
            place.Advance(kWord + gap);
        }
    };

    while (!cursor.AtEnd()) {
        const uint8_t byte = cursor.Byte();
        const uint8_t immediate = byte & macho::kImmediateMask;
        switch (byte & macho::kOpcodeMask) {
        case macho::kBindDone:
            if (!lazy)
                return;
            break; // in a lazy stream this ends one entry, and pads the end
        case macho::kBindSetOrdinal:
            import.SetOrdinal(immediate);
            break;
        case macho::kBindSetOrdinalUleb:
            import.SetOrdinal(cursor.Uleb());
            break;
        case macho::kBindSetSpecialOrdinal:
            import.SetSpecialOrdinal(immediate ? static_cast<int8_t>(macho::kOpcodeMask | immediate) : 0);
            break;
        case macho::kBindSetSymbol:
            import.SetSymbol(cursor.CString(), immediate & macho::kSymbolFlagWeakImport);
            break;
        case macho::kBindSetType:
            type = immediate;
            break;
        case macho::kBindSetAddend:
            addend = static_cast<int32_t>(cursor.Sleb());
            break;
        case macho::kBindSetSegmentAndOffset:
            place.Set(immediate, cursor.Uleb());
            break;
        case macho::kBindAddAddress:
            place.Advance(cursor.Uleb());
            break;
        case macho::kBindOnce:
            bind(1, 0);
            break;
        case macho::kBindAndAddAddress:
            bind(1, cursor.Uleb());
            break;
        case macho::kBindAndAddAddressScaled:
            bind(1, uint64_t{immediate} * kWord);
            break;
        case macho::kBindUlebTimesSkippingUleb: {
            const uint64_t count = cursor.Uleb();
            bind(count, cursor.Uleb());
            break;
        }
        default:
            cursor.Fail("holds the unknown operation " + std::to_string(byte));
        }
    }
}

} // namespace sim::loader
