#include "simulator/language/builtin.h"
#include "simulator/language/program_object.h"

#include <cstring>

namespace sim::language {

namespace {

constexpr int32_t kLargest = 1 << 28;

std::vector<std::byte> &BytesAt(const host::Object &object) {
    return dynamic_cast<host::MemoryBlockInstance &>(*object.Get()).bytes;
}

/// Where `count` bytes from an offset begin; raises when the block has not so many.
std::byte *BytesFor(const Call &call, int32_t offset, int32_t count) {
    std::vector<std::byte> &bytes = BytesAt(call.self);
    const auto size = static_cast<int64_t>(bytes.size());
    if (offset < 0 || count < 0 || int64_t{offset} + count > size)
        call.execution.Raise("OutOfBoundsException", "the memory block has only " + std::to_string(size) + " bytes",
                             call.where);
    return bytes.data() + offset;
}

host::Value ConstructMemoryBlock(Call &call) {
    const int32_t size = IntegerAt(call, 0);
    if (size < 0 || size > kLargest)
        call.execution.Raise("OutOfMemoryException", "no memory block can be that large", call.where);
    BytesAt(call.self).resize(static_cast<size_t>(size));
    return {};
}

template <class Number> host::Value GetNumber(Call &call) {
    Number number;
    std::memcpy(&number, BytesFor(call, IntegerAt(call, 0), sizeof number), sizeof number);
    return static_cast<int32_t>(number);
}

template <class Number> host::Value SetNumber(Call &call) {
    const auto number = static_cast<Number>(IntegerAt(call, 1));
    std::memcpy(BytesFor(call, IntegerAt(call, 0), sizeof number), &number, sizeof number);
    return {};
}

host::Value GetText(Call &call) {
    const int32_t length = IntegerAt(call, 1);
    const std::byte *bytes = BytesFor(call, IntegerAt(call, 0), length);
    return std::string(reinterpret_cast<const char *>(bytes), static_cast<size_t>(length));
}

host::Value SetText(Call &call) {
    const std::string text = TextAt(call, 2);
    const int32_t length = IntegerAt(call, 1);
    std::byte *bytes = BytesFor(call, IntegerAt(call, 0), length);
    if (length > 0)
        std::memcpy(bytes, text.data(), std::min(text.size(), static_cast<size_t>(length)));
    return {};
}

host::Value Size(Call &call) { return static_cast<int32_t>(BytesAt(call.self).size()); }

constexpr FunctionRow kMemoryBlockFunctions[] = {
    {"Constructor(size As Integer)", ConstructMemoryBlock},
    {"Byte(offset As Integer) As Integer", GetNumber<uint8_t>},
    {"Byte(offset As Integer, Assigns value As Integer)", SetNumber<uint8_t>},
    {"Short(offset As Integer) As Integer", GetNumber<int16_t>},
    {"Short(offset As Integer, Assigns value As Integer)", SetNumber<int16_t>},
    {"Long(offset As Integer) As Integer", GetNumber<int32_t>},
    {"Long(offset As Integer, Assigns value As Integer)", SetNumber<int32_t>},
    {"StringValue(offset As Integer, length As Integer) As String", GetText},
    {"StringValue(offset As Integer, length As Integer, Assigns value As String)", SetText},
};

constexpr PropertyRow kMemoryBlockProperties[] = {{"Size As Integer", Size}};

} // namespace

const BuiltInClass &MemoryBlockClass() {
    static constexpr BuiltInClass row{"MemoryBlock", nullptr, MakeInstance<host::MemoryBlockInstance>,
                                      kMemoryBlockFunctions, kMemoryBlockProperties};
    return row;
}

} // namespace sim::language
