#include "fuzz/values/made_values.h"

#include <bit>

namespace fuzz {

namespace {

using tests::CoreValue;

CoreValue MakeText(Input &input) {
    static const char16_t kUnits[] = {u'a',      u'b',      u'0',  u'é', u'\x301', u'大',
                                      u'\xD83C', u'\xDF88', u'\0', u'/', u'\xFFFF'};
    std::u16string text;
    for (int left = input.Take<uint8_t>() % 12; left > 0; left--)
        text += input.Choose(kUnits);
    return tests::Untyped(sim::macos::MakeString(text));
}

CoreValue MakeNumber(Making &making) {
    Input &input = making.input;
    switch (input.Take<uint8_t>() % 6) {
    case 0:
        return tests::CoreNumber(kCFNumberSInt8Type, input.Take<int8_t>());
    case 1:
        return tests::CoreNumber(kCFNumberSInt16Type, input.Take<int16_t>());
    case 2:
        return tests::CoreInteger(input.Take<int32_t>());
    case 3:
        return tests::CoreNumber(kCFNumberSInt64Type, input.Take<int64_t>());
    case 4:
        return tests::CoreNumber(kCFNumberFloat32Type, std::bit_cast<float>(input.Take<uint32_t>()));
    default:
        return tests::CoreDouble(std::bit_cast<double>(input.Take<uint64_t>()));
    }
}

CoreValue MakeDate(Making &making) {
    Input &input = making.input;
    if (input.Take<uint8_t>() % 4)
        return tests::CoreDate(static_cast<double>(input.Take<int32_t>()) * 16.25);
    making.isUnstable = true;
    return tests::CoreDate(std::bit_cast<double>(input.Take<uint64_t>()));
}

CoreValue MakeData(Input &input) {
    std::string bytes;
    for (int left = input.Take<uint8_t>() % 8; left > 0; left--)
        bytes += static_cast<char>(input.Take<uint8_t>());
    return tests::CoreData(bytes);
}

CoreValue MakeURL(Input &input) {
    static const char *const kTexts[] = {"http://example.org/x?y#z",
                                         "file:///",
                                         "file:///usr/",
                                         "file:///usr",
                                         "mailto:a@b",
                                         "file:///no/such/place",
                                         "relative/leaf",
                                         ""};
    const auto kind = input.Take<uint8_t>();
    CoreValue url = kind % 2 ? tests::CoreURL(input.Choose(kTexts)) : tests::CoreFileURL("/usr/" + MakeName(input));
    return url ? std::move(url) : tests::CoreNull();
}

CoreValue MakeArray(Making &making) {
    std::vector<CoreValue> kept;
    std::vector<CFTypeRef> borrowed;
    for (int left = making.input.Take<uint8_t>() % 6; left > 0 && making.budget > 0; left--) {
        kept.push_back(MakeCoreValue(making));
        borrowed.push_back(kept.back().Get());
    }
    return tests::CoreArray(borrowed);
}

CoreValue MakeDictionary(Making &making) {
    std::vector<CoreValue> kept;
    std::vector<std::pair<CFTypeRef, CFTypeRef>> pairs;
    for (int left = making.input.Take<uint8_t>() % 6; left > 0 && making.budget > 0; left--) {
        kept.push_back(MakeCoreValue(making));
        kept.push_back(MakeCoreValue(making));
        pairs.emplace_back(kept[kept.size() - 2].Get(), kept.back().Get());
    }
    return tests::Untyped(sim::macos::MakeDictionary(pairs));
}

CoreValue MakeSimpleCoreValue(Making &making) {
    Input &input = making.input;
    switch (input.Take<uint8_t>() % 8) {
    case 0:
        return tests::CoreTruth(input.Take<uint8_t>() % 2 != 0);
    case 1:
        return MakeNumber(making);
    case 2:
        return MakeDate(making);
    case 3:
        return MakeData(input);
    case 4:
        return MakeURL(input);
    case 5:
        return tests::CoreInstance(input.Choose(sim::macos::OpaqueTypeNames()));
    case 6:
        return tests::CoreNull();
    default:
        return MakeText(input);
    }
}

} // namespace

std::string MakeName(Input &input) {
    static const char *const kParts[] = {"a", "caf\xC3\xA9", "x y", "%41", "bin", "\xF0\x9F\x8E\x88", ":", "."};
    std::string name = "n";
    for (int left = input.Take<uint8_t>() % 4; left > 0; left--)
        name += input.Choose(kParts);
    if (input.Take<uint8_t>() == 0xFF)
        name += std::string(260, 'x');
    return name;
}

CoreValue MakeCoreValue(Making &making) {
    making.budget--;
    const auto kind = making.input.Take<uint8_t>() % 8;
    if (kind < 4 || !making.MayNest())
        return MakeSimpleCoreValue(making);
    making.depth++;
    CoreValue value = kind < 6 ? MakeArray(making) : MakeDictionary(making);
    making.depth--;
    return value;
}

} // namespace fuzz
