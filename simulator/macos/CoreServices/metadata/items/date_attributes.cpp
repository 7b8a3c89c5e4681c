// Dates, from the four times that a Linux file has. Where its file system keeps no time of birth, the older of the last
// change of content and of attributes is the nearest that is known. Nor does Linux note when a file came into its
// folder or was opened by a person: the time of birth and that of the last access stand for them.
#include "simulator/macos/CoreServices/metadata/items/attribute_reader.h"
#include "simulator/macos/CoreServices/metadata/items/values.h"

namespace sim::macos {

namespace {

bool IsOlder(const statx_timestamp &a, const statx_timestamp &b) {
    return a.tv_sec != b.tv_sec ? a.tv_sec < b.tv_sec : a.tv_nsec < b.tv_nsec;
}

const statx_timestamp &BirthTime(const struct statx &status) {
    if (status.stx_mask & STATX_BTIME)
        return status.stx_btime;
    return IsOlder(status.stx_mtime, status.stx_ctime) ? status.stx_mtime : status.stx_ctime;
}

CFTypeRef DateOf(const statx_timestamp &time) { return DateValue(time.tv_sec, time.tv_nsec); }

CFTypeRef Birth(FileFacts &file) {
    const struct statx *status = file.Status();
    return status ? DateOf(BirthTime(*status)) : nullptr;
}

template <statx_timestamp(statx::*time)> CFTypeRef Time(FileFacts &file) {
    const struct statx *status = file.Status();
    return status ? DateOf(status->*time) : nullptr;
}

constexpr AttributeReader kDateReaders[] = {
    {"kMDItemFSCreationDate", Birth},
    {"kMDItemContentCreationDate", Birth},
    {"kMDItemDateAdded", Birth},
    {"kMDItemFSContentChangeDate", Time<&statx::stx_mtime>},
    {"kMDItemContentModificationDate", Time<&statx::stx_mtime>},
    {"kMDItemAttributeChangeDate", Time<&statx::stx_ctime>},
    {"kMDItemLastUsedDate", Time<&statx::stx_atime>},
};

} // namespace

std::span<const AttributeReader> DateAttributes() { return kDateReaders; }

} // namespace sim::macos
