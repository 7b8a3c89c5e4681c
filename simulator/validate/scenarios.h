// What host programs do with the library, each of it the same way every time.
#pragma once

#include "simulator/validate/program.h"

namespace sim::validate {

struct Scenario {
    const char *title;
    void (*play)(Program &program);
};

/// Reads each attribute key and asks the schema about attributes of every kind.
void AskForKeysAndSchema(Program &program);
/// Reads a file's attributes, of every kind, in every way.
void ReadItems(Program &program);
/// Searches, lives through changes, looks at results and values, sorts, limits, stops.
void LiveThroughQuery(Program &program);
/// Uses objects that nothing was made of, and makes objects of what is wrong.
void MisuseObjects(Program &program);
/// Searches on the screen.
void OpenSearchWindow(Program &program);
/// Calls any declared method with any arguments, again and again, while files change.
void DoAnything(Program &program);

inline constexpr Scenario kScenarios[] = {{"attribute keys and the schema", AskForKeysAndSchema},
                                          {"items and their attributes", ReadItems},
                                          {"a live query", LiveThroughQuery},
                                          {"objects that are misused", MisuseObjects},
                                          {"the search window", OpenSearchWindow}};

/// Adds files with attributes of every kind, in /files.
void AddFiles(Program &program);

} // namespace sim::validate
