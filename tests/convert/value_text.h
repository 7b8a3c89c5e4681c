// Values of both worlds in words, as deep as they go, so that a test says what it expects in one line.
#pragma once

#include "simulator/host/program/object.h"
#include "tests/convert/core_values.h"

namespace tests {

/// `Integer 7`, `Int64 7`, `Double 1.5`, `"text"`, `nil`, `Date 2014-06-30 23:30:59`, `MemoryBlock 0102`,
/// `FolderItem /tmp`, `[nil, "a"]`, `{"a": Integer 1}`; other objects by their class.
std::string TextOf(const sim::host::Value &value);

/// `SInt32 7`, `Float64 1.5`, `true`, `"text"`, `Date 12.5`, `Data 0102`, `URL file:///tmp`, `[null, "a"]`,
/// `{"a": SInt32 1}`, `none` for no value; other objects by their type.
std::string TextOf(CFTypeRef value);
inline std::string TextOf(const CoreValue &value) { return TextOf(value.Get()); }

} // namespace tests
