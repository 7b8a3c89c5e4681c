// The plugin's one global method.
#pragma once

/// Registers "ShotlightQTX" in a module on hosts that take modules, directly on others. The host keeps what it is
/// given.
void RegisterGlobalMethod();
