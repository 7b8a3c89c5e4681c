#include "simulator/loader/unwind_table.h"

#include "simulator/loader/byte_cursor.h"

#include <algorithm>
#include <map>
#include <string>

extern "C" void __register_frame(void *begin);
extern "C" void __deregister_frame(void *begin);

namespace sim::loader {
namespace {

// How a pointer is written: the low half says in what form, the next bits what it is relative to.
constexpr uint8_t kPointerAbsolute = 0x00;
constexpr uint8_t kPointerSigned4 = 0x0B;
constexpr uint8_t kPointerFormMask = 0x0F;
constexpr uint8_t kPointerRelationMask = 0x70;
constexpr uint8_t kPointerToItself = 0x10;
constexpr uint8_t kPointerOmitted = 0xFF;

// What a common entry says about the entries that refer to it.
struct CommonEntry {
    uint8_t addressEncoding = kPointerAbsolute;
    uint8_t languageDataEncoding = kPointerOmitted;
    bool hasAugmentationData = false;
};

// How an instruction goes on after its first byte. Registers are the operands to be renumbered.
enum class Operand : uint8_t { kNone, kRegister, kNumber, kByte, kHalf, kWord, kBlock };

struct Instruction {
    uint8_t opcode;
    Operand first;
    Operand second = Operand::kNone;
};

constexpr Instruction kInstructions[] = {
    {0x00, Operand::kNone},                         // no operation
    {0x02, Operand::kByte},                         // advance location by 1 byte's worth
    {0x03, Operand::kHalf},                         // by 2
    {0x04, Operand::kWord},                         // by 4
    {0x05, Operand::kRegister, Operand::kNumber},   // offset, extended
    {0x06, Operand::kRegister},                     // restore, extended
    {0x07, Operand::kRegister},                     // undefined
    {0x08, Operand::kRegister},                     // same value
    {0x09, Operand::kRegister, Operand::kRegister}, // register
    {0x0A, Operand::kNone},                         // remember state
    {0x0B, Operand::kNone},                         // restore state
    {0x0C, Operand::kRegister, Operand::kNumber},   // define frame
    {0x0D, Operand::kRegister},                     // define frame register
    {0x0E, Operand::kNumber},                       // define frame offset
    {0x0F, Operand::kBlock},                        // define frame by expression
    {0x10, Operand::kRegister, Operand::kBlock},    // expression
    {0x11, Operand::kRegister, Operand::kNumber},   // offset, extended, signed
    {0x12, Operand::kRegister, Operand::kNumber},   // define frame, signed
    {0x13, Operand::kNumber},                       // define frame offset, signed
    {0x2E, Operand::kNumber},                       // size of pushed arguments
};

uint8_t LinuxRegister(uint8_t number) {
    switch (number) {
    case 4:
        return 5; // ebp
    case 5:
        return 4; // esp
    default:
        return number;
    }
}

class Translator {
public:
    Translator(std::span<const uint8_t> section, std::span<uint8_t> copy, std::string_view file)
        : copy_(copy.first(section.size())), cursor_(copy_, file, "the unwind table"),
          shift_(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(copy.data()) -
                                       reinterpret_cast<uintptr_t>(section.data()))) {
        std::ranges::copy(section, copy.begin());
        std::memset(copy.data() + section.size(), 0, sizeof(uint32_t));
    }

    void Translate() {
        while (!cursor_.AtEnd()) {
            const auto length = cursor_.Read<uint32_t>();
            if (length == 0)
                return;
            const size_t start = cursor_.Position();
            if (length == UINT32_MAX || length > copy_.size() - start)
                cursor_.Fail("has an entry that ends after it");
            end_ = start + length;
            TranslateEntry(start);
            cursor_.Seek(end_);
        }
    }

private:
    void TranslateEntry(size_t start) {
        const auto distance = cursor_.Read<uint32_t>();
        if (distance == 0) {
            commonEntries_[start - sizeof(uint32_t)] = TranslateCommonEntry();
        } else {
            const auto common = commonEntries_.find(start - distance);
            if (common == commonEntries_.end())
                cursor_.Fail("has an entry without a common entry before it");
            TranslateFunctionEntry(common->second);
        }
        TranslateInstructions(end_);
    }

    CommonEntry TranslateCommonEntry() {
        CommonEntry entry;
        if (const uint8_t version = cursor_.Byte(); version != 1)
            cursor_.Fail("is of version " + std::to_string(version) + ", not 1");
        const std::string_view augmentation = cursor_.CString();
        cursor_.Uleb();                  // code alignment
        cursor_.Sleb();                  // data alignment
        RenumberRegister(kLowSevenBits); // where the return address is
        if (augmentation.empty())
            return entry;
        if (augmentation.front() != 'z')
            cursor_.Fail("has the unknown augmentation " + std::string(augmentation));
        entry.hasAugmentationData = true;
        const size_t end = AugmentationEnd();
        for (const char letter : augmentation.substr(1)) {
            switch (letter) {
            case 'P':
                MovePointer(cursor_.Byte());
                break;
            case 'L':
                entry.languageDataEncoding = cursor_.Byte();
                break;
            case 'R':
                entry.addressEncoding = cursor_.Byte();
                break;
            case 'S':
                break;
            default:
                cursor_.Fail("has the unknown augmentation " + std::string(augmentation));
            }
        }
        cursor_.Seek(end);
        return entry;
    }

    void TranslateFunctionEntry(const CommonEntry &common) {
        MovePointer(common.addressEncoding);
        cursor_.Read<uint32_t>(); // the length of the function
        if (!common.hasAugmentationData)
            return;
        const size_t end = AugmentationEnd();
        // A null pointer says that there is no language data, and stays null.
        if (common.languageDataEncoding != kPointerOmitted && end - cursor_.Position() >= sizeof(uint32_t))
            MovePointer(common.languageDataEncoding);
        cursor_.Seek(end);
    }

    size_t AugmentationEnd() {
        const uint64_t size = cursor_.Uleb();
        if (size > end_ - cursor_.Position())
            cursor_.Fail("has augmentation data that ends after its entry");
        return cursor_.Position() + static_cast<size_t>(size);
    }

    // Corrects a pointer that counts from its own place, which is another one in the copy.
    void MovePointer(uint8_t encoding) {
        const uint8_t form = encoding & kPointerFormMask;
        if (encoding == kPointerOmitted || (form != kPointerAbsolute && form != kPointerSigned4))
            cursor_.Fail("has a pointer of the unknown encoding " + std::to_string(encoding));
        const size_t place = cursor_.Position();
        auto value = cursor_.Read<uint32_t>();
        switch (encoding & kPointerRelationMask) {
        case 0:
            break;
        case kPointerToItself:
            if (value != 0) {
                value -= shift_;
                std::memcpy(copy_.data() + place, &value, sizeof value);
            }
            break;
        default:
            cursor_.Fail("has a pointer of the unknown encoding " + std::to_string(encoding));
        }
    }

    static constexpr uint8_t kLowSevenBits = 0x7F;
    static constexpr uint8_t kLowSixBits = 0x3F;

    // Renumbers the register in the low bits of the next byte. All registers of this processor fit into one.
    void RenumberRegister(uint8_t mask) {
        const size_t place = cursor_.Position();
        const uint8_t byte = cursor_.Byte();
        if (mask == kLowSevenBits && byte > kLowSevenBits)
            cursor_.Fail("names a register that the processor does not have");
        copy_[place] = static_cast<uint8_t>((byte & ~mask) | LinuxRegister(byte & mask));
    }

    void TranslateInstructions(size_t end) {
        while (cursor_.Position() < end) {
            const size_t place = cursor_.Position();
            const uint8_t byte = cursor_.Byte();
            switch (byte & ~kLowSixBits) {
            case 0x40: // advance location, distance in the low bits
                break;
            case 0x80: // offset, register in the low bits
                cursor_.Seek(place);
                RenumberRegister(kLowSixBits);
                cursor_.Uleb();
                break;
            case 0xC0: // restore, register in the low bits
                cursor_.Seek(place);
                RenumberRegister(kLowSixBits);
                break;
            default:
                TranslateInstruction(byte);
            }
        }
        if (cursor_.Position() != end)
            cursor_.Fail("has an instruction that ends after its entry");
    }

    void TranslateInstruction(uint8_t opcode) {
        for (const Instruction &instruction : kInstructions) {
            if (instruction.opcode != opcode)
                continue;
            TranslateOperand(instruction.first);
            TranslateOperand(instruction.second);
            return;
        }
        cursor_.Fail("has the unknown instruction " + std::to_string(opcode));
    }

    void TranslateOperand(Operand operand) {
        switch (operand) {
        case Operand::kNone:
            break;
        case Operand::kRegister:
            RenumberRegister(kLowSevenBits);
            break;
        case Operand::kNumber:
            cursor_.Sleb();
            break;
        case Operand::kByte:
            cursor_.Byte();
            break;
        case Operand::kHalf:
            cursor_.Read<uint16_t>();
            break;
        case Operand::kWord:
            cursor_.Read<uint32_t>();
            break;
        case Operand::kBlock:
            // An expression could name registers too; no compiler writes one for a plain frame.
            cursor_.Fail("describes a frame by an expression, which is not modelled");
        }
    }

    std::span<uint8_t> copy_;
    ByteCursor cursor_;
    uint32_t shift_; // from the original to the copy
    size_t end_ = 0; // of the entry being read
    std::map<size_t, CommonEntry> commonEntries_;
};

} // namespace

void TranslateUnwindTable(std::span<const uint8_t> section, std::span<uint8_t> copy, std::string_view file) {
    Translator(section, copy, file).Translate();
}

UnwindRegistration::UnwindRegistration(std::span<const uint8_t> section, std::string_view file)
    : copy_(section.size() + sizeof(uint32_t)) {
    TranslateUnwindTable(section, copy_, file);
    __register_frame(copy_.data());
}

UnwindRegistration::~UnwindRegistration() { __deregister_frame(copy_.data()); }

} // namespace sim::loader
