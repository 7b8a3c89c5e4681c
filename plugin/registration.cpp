#include "plugin/registration.h"

#include "host/services.h"
#include "plugin/old_records.h"

void MyREALRegisterClass(REALclassDefinition &record) {
    record.dataSize = (record.dataSize + 15) & ~uint32_t{15};
    record.version = CurrentREALControlVersion;
    if (HostReadsOldRecords())
        ConvertToOldRecords(record);
    REALRegisterClass(&record);
}
