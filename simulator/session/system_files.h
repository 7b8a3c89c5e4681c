// The host's view of the File Manager, served by the stand-in system.
#pragma once

#include "simulator/host/options.h"

namespace sim {

class SystemFiles : public host::FileManager {
public:
    bool MakeReference(const std::string &path, host::FileReference &reference) override;
    std::optional<std::string> PathOf(const host::FileReference &reference) override;
    std::optional<std::string> PathOfSpec(const void *spec) override;
};

} // namespace sim
