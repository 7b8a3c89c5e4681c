// Items that host code constructs for real files.
#pragma once

#include "simulator/host/host.h"
#include "tests/support/temporary_folder.h"

namespace tests {

/// An item object that host code constructs for the file at that path.
inline sim::host::Object ConstructItem(sim::host::Host &host, const std::string &path) {
    sim::host::Object item = host.Create("MDItemQTX");
    item.Call<void>("Constructor", host.NewFolderItem(path));
    return item;
}

} // namespace tests
