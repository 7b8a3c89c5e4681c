#include "simulator/host/services/table.h"

namespace sim::host {

std::span<const ServiceRow> AllServices() {
    static const std::vector<ServiceRow> all = [] {
        std::vector<ServiceRow> table;
        for (std::span<const ServiceRow> rows :
             {RegistrationServices(), ObjectServices(), PropertyServices(), StringServices(), ArrayServices(),
              VariantServices(), BuiltInServices(), FolderItemServices()})
            table.insert(table.end(), rows.begin(), rows.end());
        return table;
    }();
    return all;
}

} // namespace sim::host
