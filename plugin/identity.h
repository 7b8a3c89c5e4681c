// Who the plugin is.
#pragma once

#include <cstdint>

/// The plugin part's name, "Spotlight", and the beginning of its module's name. Null before start-up, as the next one
/// is.
extern const char *gpartname;
/// "MacOSX".
extern const char *gpluginname;
/// 1 once start-up has begun.
extern uint8_t gplugin;
