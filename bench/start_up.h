// The records that the floor of start-up registers: copies of the plugin's own as they are in the library.
#pragma once

#include <cstdint>

namespace bench::floors {

struct StartUpRecords {
    uint32_t classes[3][29];
    uint32_t globalMethod[6];
};
extern StartUpRecords startUpRecords;

} // namespace bench::floors
