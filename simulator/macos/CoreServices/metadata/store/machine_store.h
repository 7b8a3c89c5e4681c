// The files of this machine as a metadata store.
#pragma once

#include "simulator/macos/CoreServices/metadata/store/session.h"

namespace sim::macos::store {

class MachineStore final : public FileStore {
public:
    std::unique_ptr<Session> Open(const Scope &scope, bool live, std::function<void()> wake) override;
    std::vector<std::string> Mounted(bool onNetwork) const override;
};

} // namespace sim::macos::store
