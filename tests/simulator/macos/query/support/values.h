// Attribute values and lists made in one word.
#pragma once

#include "simulator/macos/CoreFoundation/array.h"
#include "simulator/macos/CoreFoundation/number.h"
#include "simulator/macos/CoreFoundation/ref.h"
#include "simulator/macos/CoreFoundation/text.h"

#include <CoreFoundation/CoreFoundation.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace sim::macos {

using Value = CFRef<CFTypeRef>;

inline Value Text(std::string_view text) { return Value::Adopt(MakeString(text).Give()); }
inline Value Whole(std::int64_t value) { return Value::Adopt(MakeNumber(value).Give()); }
inline Value Real(double value) { return Value::Adopt(MakeNumber(value).Give()); }
inline Value Truth(bool value) { return Value::Retain(value ? kCFBooleanTrue : kCFBooleanFalse); }
inline Value Moment(CFAbsoluteTime at) { return Value::Adopt(CFDateCreate(nullptr, at)); }
inline Value Bytes(std::string_view bytes) {
    return Value::Adopt(
        CFDataCreate(nullptr, reinterpret_cast<const UInt8 *>(bytes.data()), static_cast<CFIndex>(bytes.size())));
}

inline Value List(std::initializer_list<Value> values) {
    std::vector<CFTypeRef> borrowed;
    for (const Value &value : values)
        borrowed.push_back(value.Get());
    return Value::Adopt(MakeArray(borrowed).Give());
}

inline Value Texts(std::initializer_list<std::string_view> texts) {
    std::vector<Value> values;
    std::vector<CFTypeRef> borrowed;
    for (std::string_view text : texts) {
        values.push_back(Text(text));
        borrowed.push_back(values.back().Get());
    }
    return Value::Adopt(MakeArray(borrowed).Give());
}

inline CFRef<CFArrayRef> Names(std::initializer_list<std::string_view> names) {
    Value list = Texts(names);
    return CFRef<CFArrayRef>::Adopt(static_cast<CFArrayRef>(list.Give()));
}

/// The moment of a GMT date, 2014-06-30 and so on.
inline CFAbsoluteTime Date(int year, int month, int day, int hour = 0, int minute = 0, double second = 0) {
    return CFGregorianDateGetAbsoluteTime({year, static_cast<SInt8>(month), static_cast<SInt8>(day),
                                           static_cast<SInt8>(hour), static_cast<SInt8>(minute), second},
                                          nullptr);
}

} // namespace sim::macos
