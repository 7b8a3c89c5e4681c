// What the six scope names ("kMDQueryScopeHome" and so on) mean while a test runs, so that no test has to search a
// whole machine. A query without a scope looks where "kMDQueryScopeComputer" says.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace sim::macos {

/// While it lives, a scope name stands for these folders.
class ScriptedScope {
public:
    ScriptedScope(const std::string &name, std::vector<std::string> folders);
    ~ScriptedScope();
    ScriptedScope(const ScriptedScope &) = delete;
    ScriptedScope &operator=(const ScriptedScope &) = delete;

private:
    std::string name_;
    std::optional<std::vector<std::string>> previous_;
};

} // namespace sim::macos
