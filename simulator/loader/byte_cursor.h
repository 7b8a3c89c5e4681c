// Reads numbers, strings and records from bytes that nobody has vouched for: every step is checked against the end,
// and the failure names the file and what was being read.
#pragma once

#include "simulator/loader/load_error.h"

#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

namespace sim::loader {

class ByteCursor {
public:
    // `what` names the bytes in messages ("the bind stream"). Both views must outlive the cursor.
    ByteCursor(std::span<const uint8_t> bytes, std::string_view file, std::string_view what)
        : bytes_(bytes), file_(file), what_(what) {}

    bool AtEnd() const { return position_ == bytes_.size(); }
    size_t Position() const { return position_; }

    void Seek(size_t position) {
        if (position > bytes_.size())
            Fail("points past its end");
        position_ = position;
    }

    uint8_t Byte() {
        Need(1);
        return bytes_[position_++];
    }

    template <class Record> Record Read() {
        Need(sizeof(Record));
        Record record;
        std::memcpy(&record, bytes_.data() + position_, sizeof record);
        position_ += sizeof record;
        return record;
    }

    // A little-endian base-128 number of at most 64 bits.
    uint64_t Uleb() {
        uint64_t value = 0;
        for (unsigned shift = 0;; shift += 7) {
            const uint8_t byte = Byte();
            const uint64_t part = byte & 0x7F;
            if (shift > 63 || (shift == 63 && part > 1))
                Fail("holds a number of more than 64 bits");
            value |= part << shift;
            if (!(byte & 0x80))
                return value;
        }
    }

    int64_t Sleb() {
        uint64_t value = 0;
        unsigned shift = 0;
        uint8_t byte = 0;
        do {
            if (shift > 63)
                Fail("holds a number of more than 64 bits");
            byte = Byte();
            value |= static_cast<uint64_t>(byte & 0x7F) << shift;
            shift += 7;
        } while (byte & 0x80);
        if (shift < 64 && (byte & 0x40))
            value |= ~uint64_t{0} << shift;
        return static_cast<int64_t>(value);
    }

    // The text up to its terminator, which is stepped over.
    std::string_view CString() {
        const uint8_t *start = bytes_.data() + position_;
        const void *end = std::memchr(start, 0, bytes_.size() - position_);
        if (!end)
            Fail("ends inside a string");
        const auto length = static_cast<size_t>(static_cast<const uint8_t *>(end) - start);
        position_ += length + 1;
        return {reinterpret_cast<const char *>(start), length};
    }

    [[noreturn]] void Fail(std::string_view fault) const {
        throw LoadError(file_, std::string(what_) + " " + std::string(fault));
    }

private:
    void Need(size_t count) const {
        if (bytes_.size() - position_ < count)
            Fail("ends too early");
    }

    std::span<const uint8_t> bytes_;
    std::string_view file_;
    std::string_view what_;
    size_t position_ = 0;
};

} // namespace sim::loader
