// The audit of references at the end of a run: what each thing has is held against what is known to hold it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sim::host {

class Runtime;

/// See Host::Balance.
std::vector<std::string> Audit(const Runtime &runtime);
/// See Host::NewlyOutOfBalance.
std::vector<std::string> AuditAnew(const Runtime &runtime);
int32_t CountAlive(const Runtime &runtime, std::string_view kind);

} // namespace sim::host
