// The barest metadata there can be: the functions of queries and items by the names under which plugins know them, in
// front of the stand-in's own, each of which hands out what was laid ready for it. Core Foundation stays the
// stand-in's.
#pragma once

#include <CoreServices/CoreServices.h>

#include <cstdint>

namespace bench {

/// What the functions answer from now on; borrowed. Results are `results` times the one item.
struct Answers {
    CFStringRef queryText = nullptr;
    CFIndex results = 0;
    MDItemRef item = nullptr;
    CFArrayRef values = nullptr;
    CFTypeRef attribute = nullptr;
};
void SetAnswers(const Answers &answers);

/// What was to be called with the notifications of the query that was made last.
CFNotificationCallback LastCallback();

/// The name as the plugin's binary asks for it, or null when it is none of these functions.
void *FindBareFunction(const char *name);

} // namespace bench
