#include "host/capabilities.h"

constinit HostResolver gResolver = nullptr;
constinit double rbversion = 0.0;
constinit int32_t CurrentREALControlVersion = kNewestDeclarationLayout;

void ReadHostVersion() {
    const auto getVersion = reinterpret_cast<double (*)()>(gResolver("REALGetRBVersion"));
    if (getVersion)
        rbversion = getVersion();
    CurrentREALControlVersion = DeclarationLayoutOf(rbversion);
}

void TellDeclarationLayout() {
    // Deliberate: every host has this one, so it is called without a test.
    const auto registerVersion = reinterpret_cast<void (*)(int32_t)>(gResolver("RegisterPluginVersion"));
    registerVersion(CurrentREALControlVersion);
}
