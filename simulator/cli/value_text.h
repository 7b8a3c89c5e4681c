// Values of the host in words: what type a value has, and what it says.
#pragma once

#include "simulator/host/program/object.h"

#include <optional>
#include <string>

namespace sim::cli {

/// "String", "Integer", "Boolean", "Date", "Array of String", "FolderItem"; "" for nil.
std::string TypeText(const host::Value &value);

/// The value itself: a text as it is, dates in GMT as the plugin gives them, the elements of an array separated by
/// commas. Not printable yet.
std::string ValueText(const host::Value &value);

/// A host's age: "2016.1", or that it does not tell.
std::string AgeText(const std::optional<double> &version);

/// 1234567 as "1.2 MB", for people; 0 and 1 as "0 bytes" and "1 byte".
std::string SizeText(int64_t bytes);

/// "1 file", "2 files"
std::string CountText(size_t count, const char *one, const char *many);

} // namespace sim::cli
