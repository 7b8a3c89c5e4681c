// The text of a file, for queries to search. Types that conform to text are read, but for those whose text is hidden
// among markup that is not taken apart here (HTML and rich text): nothing is searchable in them.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/file_facts.h"

#include <CoreFoundation/CoreFoundation.h>

namespace sim::macos {

/// A +1 string, or null for a file that is not text, is empty or cannot be read. Only the first ten million bytes are
/// looked at. Bytes are taken as UTF-16 when they begin with its mark, else as UTF-8, and as Latin-1 when they are not
/// that.
CFTypeRef CopyTextContent(FileFacts &file);

} // namespace sim::macos
