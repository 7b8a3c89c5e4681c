// What the file system itself keeps. A folder has a number of entries and no size, any other file a size.
#include "simulator/macos/CoreServices/metadata/items/attribute_reader.h"
#include "simulator/macos/CoreServices/metadata/items/values.h"

#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace sim::macos {

namespace {

CFTypeRef Size(FileFacts &file) {
    const struct statx *status = file.Status();
    return status && !file.IsFolder() ? NumberValue(static_cast<std::int64_t>(status->stx_size)) : nullptr;
}

template <__u32(statx::*owner)> CFTypeRef Owner(FileFacts &file) {
    const struct statx *status = file.Status();
    return status ? NumberValue(std::int64_t{status->*owner}) : nullptr;
}

CFTypeRef NodeCount(FileFacts &file) {
    if (!file.IsFolder())
        return nullptr;
    std::error_code error;
    std::int64_t count = 0;
    for (std::filesystem::directory_iterator entry(file.Path(), error), end; !error && entry != end;
         entry.increment(error))
        count++;
    return error ? nullptr : NumberValue(count);
}

CFTypeRef Exists(FileFacts &file) { return file.Status() ? BooleanValue(true) : nullptr; }

template <int mode> CFTypeRef Access(FileFacts &file) {
    return file.Status() ? BooleanValue(access(file.Path().c_str(), mode) == 0) : nullptr;
}

constexpr AttributeReader kFileSystemReaders[] = {
    {"kMDItemFSSize", Size},
    {"kMDItemFSOwnerUserID", Owner<&statx::stx_uid>},
    {"kMDItemFSOwnerGroupID", Owner<&statx::stx_gid>},
    {"kMDItemFSNodeCount", NodeCount},
    {"kMDItemFSExists", Exists},
    {"kMDItemFSIsReadable", Access<R_OK>},
    {"kMDItemFSIsWriteable", Access<W_OK>},
};

} // namespace

std::span<const AttributeReader> FileSystemAttributes() { return kFileSystemReaders; }

} // namespace sim::macos
