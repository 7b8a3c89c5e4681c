#include "host/capabilities.h"

constinit HostResolver gResolver = nullptr;
constinit double rbversion = 0.0;
constinit int32_t CurrentREALControlVersion = kNewestDeclarationLayout;

void ReadHostVersion() {
    const auto getVersion = reinterpret_cast<double (*)()>(gResolver("REALGetRBVersion"));
    if (getVersion)
        rbversion = getVersion();
    CurrentREALControlVersion = HostLayoutOf(rbversion);
}
