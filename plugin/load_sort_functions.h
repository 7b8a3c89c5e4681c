// The query functions that not every system exports.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

/// The framework that the functions were looked up in; null when it was not loaded. Never released.
extern CFBundleRef CoreServicesFramework;

/// Looks the functions up in the running system's CoreServices, if the host runs a built application. What cannot be
/// had stays null.
void LoadSortFunctions();
