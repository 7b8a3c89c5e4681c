// The host's view of the File Manager, served by the stand-in system. A specification (volume, number of the folder,
// name) can be turned back into a path only when its folder has been met before, by path or by reference, because the
// stand-in's folder numbers say nothing by themselves; the root of the start-up volume is always known.
#pragma once

#include "simulator/host/ground/options.h"

namespace sim {

class SystemFiles : public host::FileManager {
public:
    bool MakeReference(const std::string &path, host::FileReference &reference) override;
    std::optional<std::string> PathOf(const host::FileReference &reference) override;
    std::optional<std::string> PathOfSpec(const void *spec) override;

    /// Remembers the item and the folders that it is in.
    void Meet(std::string path);

private:
    std::set<std::string> met_ = {"/"};
};

} // namespace sim
