// What hosts before 2012 get in place of the current records: shorter ones.
#pragma once

#include "host/declarations.h"

/// Gives a class record the tables and words of the old layout, which ends four words earlier. The tables are new, and
/// never freed.
void ConvertToOldRecords(REALclassDefinition &record);

/// A new array of the old layout's property records, for good, made of the current ones; null for none, or when there
/// is no memory.
REALproperty *FixProperties(const REALproperty *properties, uint32_t count);
