#include "fuzz/values/made_values.h"

#include <bit>
#include <cstring>

namespace fuzz {

namespace {

using sim::host::Color;
using sim::host::Host;
using sim::host::Object;
using sim::host::Text;
using sim::host::Value;

std::string MakeBytes(Input &input) {
    std::string bytes;
    for (int left = input.Take<uint8_t>() % 10; left > 0; left--)
        bytes += static_cast<char>(input.Take<uint8_t>());
    return bytes;
}

Value MakeString(Input &input) {
    static const uint32_t kEncodings[] = {sim::host::kUTF8,  sim::host::kMacRoman,       sim::host::kUTF16,
                                          sim::host::kASCII, sim::host::kISOLatin1,      sim::host::kWindowsLatin1,
                                          sim::host::kUTF32, sim::host::kUnknownEncoding};
    const uint32_t encoding = input.Choose(kEncodings);
    return Text{MakeBytes(input), encoding};
}

Value MakeScalar(Input &input) {
    switch (input.Take<uint8_t>() % 7) {
    case 0:
        return input.Take<uint8_t>() % 2 != 0;
    case 1:
        return input.Take<int32_t>();
    case 2:
        return input.Take<int64_t>();
    case 3:
        return std::bit_cast<float>(input.Take<uint32_t>());
    case 4:
        return std::bit_cast<double>(input.Take<uint64_t>());
    case 5:
        return Color{input.Take<uint32_t>()};
    default:
        return MakeString(input);
    }
}

Object MakeDate(Making &making, Host &host) {
    Input &input = making.input;
    const auto kind = input.Take<uint8_t>();
    making.isUnstable |= kind % 4 == 0;
    const int32_t year = kind % 4 ? 1900 + input.Take<uint8_t>() : input.Take<int32_t>();
    const auto field = [&] { return kind % 4 ? int32_t{input.Take<int8_t>()} : input.Take<int32_t>(); };
    const int32_t month = field(), day = field(), hour = field(), minute = field(), second = field();
    Object date = host.NewDate({year, month, day, hour, minute, second});
    if (kind == 0xFF)
        date.MakeDateUnreadable();
    return date;
}

Object MakeBlock(Input &input, Host &host) {
    const std::string bytes = MakeBytes(input);
    Object block = host.NewMemoryBlock(bytes);
    const auto lie = input.Take<uint8_t>();
    if (lie == 1)
        block.ReportSize(input.Take<int32_t>() | INT32_MIN);
    if (lie == 2)
        block.ReportSize(static_cast<int32_t>(bytes.size() / 2));
    if (lie == 3 && bytes.empty())
        block.ReportSize(input.Take<int32_t>());
    return block;
}

Value MakeCompanion(Input &input, Host &host) {
    static const char *const kClasses[] = {"CGRectQTX",  "CGSizeQTX", "CGPointQTX", "CFObjectQTX", "NSTimerQTX",
                                           "CGImageQTX", "CGFontQTX", "CGColorQTX", "CGEventQTX",  "KeychainQTX"};
    const std::string name = input.Choose(kClasses);
    const Object object = host.Create(name);
    if (!object)
        return nullptr;
    if (name == "CGRectQTX" || name == "CGSizeQTX" || name == "CGPointQTX") {
        const auto first = std::bit_cast<double>(input.Take<uint64_t>());
        std::memcpy(object.Data(), &first, sizeof first);
        return object;
    }
    if (input.Take<uint8_t>() % 4 == 0)
        return object;
    const std::string stem = name.substr(0, name.size() - 3);
    const CFTypeRef held = tests::CoreInstance(stem.starts_with("CG") ? stem : "CFReadStream").Give();
    std::memcpy(object.Data(), &held, sizeof held);
    return object;
}

Value ElementFor(std::string_view type, Making &making, Host &host) {
    Input &input = making.input;
    if (type == "string")
        return input.Take<uint8_t>() % 4 ? MakeString(input) : Value();
    if (type == "date")
        return input.Take<uint8_t>() % 4 ? Value(MakeDate(making, host)) : Value();
    if (type == "boolean")
        return input.Take<uint8_t>() % 2 != 0;
    if (type == "integer")
        return input.Take<int32_t>();
    if (type == "int64")
        return input.Take<int64_t>();
    if (type == "single")
        return 1.5F;
    if (type == "double")
        return 2.5;
    return MakeHostValue(making, host);
}

Object MakeArray(Making &making, Host &host) {
    static const char *const kTypes[] = {"variant", "variant", "variant", "string", "date",
                                         "boolean", "integer", "int64",   "single", "double"};
    const std::string_view type = making.input.Choose(kTypes);
    making.isUnstable |= type == "integer" || type == "int64" || type == "single" || type == "double";
    Object array = host.NewArray(type);
    for (int left = making.input.Take<uint8_t>() % 6; left > 0 && making.budget > 0; left--)
        array.Append(ElementFor(type, making, host));
    return array;
}

Object MakeDictionary(Making &making, Host &host) {
    Object dictionary = host.NewDictionary();
    for (int left = making.input.Take<uint8_t>() % 6; left > 0 && making.budget > 0; left--) {
        const Value key = MakeHostValue(making, host);
        dictionary.Store(key, MakeHostValue(making, host));
    }
    return dictionary;
}

Value MakeSimpleHostValue(Making &making, Host &host) {
    Input &input = making.input;
    switch (input.Take<uint8_t>() % 8) {
    case 0:
        return nullptr;
    case 1:
        return MakeDate(making, host);
    case 2:
        return MakeBlock(input, host);
    case 3: {
        static const char *const kPaths[] = {"", "/", "/usr", "/no/such/place"};
        const auto kind = input.Take<uint8_t>();
        return host.NewFolderItem(kind % 2 ? input.Choose(kPaths) : "/usr/" + MakeName(input));
    }
    case 4:
        return MakeCompanion(input, host);
    case 5: {
        // Array codes belong to arrays alone.
        auto code = static_cast<int32_t>(input.Take<int16_t>());
        if (code == 7 || code == 9 || (code >= 4096 && code < 4200))
            code = 10;
        return host.NewVariant(code, MakeScalar(input));
    }
    default:
        return MakeScalar(input);
    }
}

} // namespace

Value MakeHostValue(Making &making, Host &host) {
    making.budget--;
    const auto kind = making.input.Take<uint8_t>() % 8;
    if (kind < 4 || !making.MayNest())
        return MakeSimpleHostValue(making, host);
    making.depth++;
    Value value = kind < 6 ? MakeArray(making, host) : MakeDictionary(making, host);
    making.depth--;
    return value;
}

} // namespace fuzz
