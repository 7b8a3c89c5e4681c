#include "host/runtime.h"

constinit HostResolver gResolver = nullptr;
constinit double rbversion = 0.0;
constinit int32_t CurrentREALControlVersion = kNewestDeclarationLayout;
