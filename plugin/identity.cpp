#include "plugin/identity.h"

constinit const char *gpartname = nullptr;
constinit const char *gpluginname = nullptr;
constinit uint8_t gplugin = 0;
