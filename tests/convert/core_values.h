// Core Foundation values made in one word.
#pragma once

#include "simulator/macos/CoreFoundation/array.h"
#include "simulator/macos/CoreFoundation/data.h"
#include "simulator/macos/CoreFoundation/date.h"
#include "simulator/macos/CoreFoundation/dictionary.h"
#include "simulator/macos/CoreFoundation/instances.h"
#include "simulator/macos/CoreFoundation/number.h"
#include "simulator/macos/CoreFoundation/ref.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/control/faults.h"

#include <CoreFoundation/CoreFoundation.h>

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tests {

/// One reference, or null.
using CoreValue = sim::macos::CFRef<CFTypeRef>;

template <class Ref> CoreValue Untyped(sim::macos::CFRef<Ref> made) { return CoreValue::Adopt(made.Give()); }

inline CoreValue CoreText(std::string_view utf8) { return Untyped(sim::macos::MakeString(utf8)); }
inline CoreValue CoreTruth(bool value) { return CoreValue::Retain(value ? kCFBooleanTrue : kCFBooleanFalse); }
template <class Number> CoreValue CoreNumber(CFNumberType type, Number value) {
    return Untyped(sim::macos::MakeNumber(type, &value));
}
inline CoreValue CoreInteger(int32_t value) { return CoreNumber(kCFNumberSInt32Type, value); }
inline CoreValue CoreDouble(double value) { return CoreNumber(kCFNumberFloat64Type, value); }
inline CoreValue CoreDate(CFAbsoluteTime at) { return Untyped(sim::macos::MakeDate(at)); }
inline CoreValue CoreData(std::string_view bytes) {
    return Untyped(sim::macos::MakeData(std::span(reinterpret_cast<const UInt8 *>(bytes.data()), bytes.size())));
}
inline CoreValue CoreNull() { return CoreValue::Retain(kCFNull); }

inline CoreValue CoreArray(const std::vector<CFTypeRef> &borrowed) { return Untyped(sim::macos::MakeArray(borrowed)); }
inline CoreValue CoreArray(std::initializer_list<CoreValue> values) {
    std::vector<CFTypeRef> borrowed;
    for (const CoreValue &value : values)
        borrowed.push_back(value.Get());
    return CoreArray(borrowed);
}

using CorePair = std::pair<CoreValue, CoreValue>;
inline CoreValue CoreDictionary(std::initializer_list<CorePair> pairs) {
    std::vector<std::pair<CFTypeRef, CFTypeRef>> borrowed;
    for (const CorePair &pair : pairs)
        borrowed.emplace_back(pair.first.Get(), pair.second.Get());
    return Untyped(sim::macos::MakeDictionary(borrowed));
}

inline CoreValue CoreURL(std::string_view text) {
    const sim::macos::OwnCalls own;
    const auto string = sim::macos::MakeString(text);
    return CoreValue::Adopt(CFURLCreateWithString(nullptr, string.Get(), nullptr));
}
inline CoreValue CoreFileURL(const std::string &path, bool isFolder = false) {
    const sim::macos::OwnCalls own;
    const auto string = sim::macos::MakeString(path);
    return CoreValue::Adopt(CFURLCreateWithFileSystemPath(nullptr, string.Get(), kCFURLPOSIXPathStyle, isFolder));
}

/// An object of a type that has no content here.
inline CoreValue CoreInstance(std::string_view typeName) {
    return CoreValue::Adopt(sim::macos::MakeInstance(typeName));
}

} // namespace tests
