// Attributes that a file carries under their own names: the extended attribute "user.kMDItemTitle" holds the title. Its
// bytes are a text, which becomes a value of the type that the schema gives the attribute:
//   string   the text as it is
//   number   digits; with a point or an exponent a fraction
//   boolean  true or false, 1 or 0
//   date     ISO 8601: 2014-06-30, 2014-06-30T23:30:59+02:00; GMT where no zone is given
// A multi-valued attribute has one element a line. An attribute that the schema does not know is a string. Text that
// does not read as its type gives no value; the types of data, dictionaries and UUIDs have no text.
//
// Only what nothing else tells about a file is looked for here: an extended attribute cannot say that a file is larger
// than it is. Nor can the text content, which no program reads back, come from one.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/file_facts.h"

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <string_view>
#include <vector>

namespace sim::macos {

/// +1 or null.
CFTypeRef CopyNamedAttribute(FileFacts &file, std::string_view key);

/// The keys that the file carries, whether or not their text reads.
std::vector<std::string> NamedAttributes(FileFacts &file);

} // namespace sim::macos
