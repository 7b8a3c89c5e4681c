// File states by statx, which also knows the birth time.
#include "simulator/macos/CoreServices/metadata/store/file_state.h"

#include "simulator/macos/CoreServices/metadata/items/file_source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <algorithm>
#include <ctime>
#include <iterator>

namespace sim::macos::store {

namespace {

constexpr FileTime kSecond = 1'000'000'000;
/// The clock of file systems moves every 10 milliseconds at the slowest.
constexpr FileTime kClockStep = 10 * kMillisecond;

FileTime TimeOf(const statx_timestamp &stamp) { return stamp.tv_sec * kSecond + stamp.tv_nsec; }

} // namespace

FileTime FileTimeNow() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return static_cast<FileTime>(now.tv_sec) * kSecond + now.tv_nsec;
}

std::optional<FileState> ReadFileState(const std::string &path, int folder) {
    struct statx found {};
    constexpr unsigned kWanted = STATX_BASIC_STATS | STATX_BTIME;
    const int how = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | (path.empty() ? AT_EMPTY_PATH : 0);
    if (statx(folder, path.c_str(), how, kWanted, &found) != 0)
        return std::nullopt;
    FileState state;
    state.isFolder = S_ISDIR(found.stx_mode);
    if (!state.isFolder && !S_ISREG(found.stx_mode) && !S_ISLNK(found.stx_mode))
        return std::nullopt;
    state.identity = IdentityOf(found);
    state.mode = found.stx_mode;
    state.owner = found.stx_uid;
    state.group = found.stx_gid;
    if (!state.isFolder) {
        state.size = found.stx_size;
        state.contentChanged = TimeOf(found.stx_mtime);
        state.attributesChanged = TimeOf(found.stx_ctime);
    }
    return state;
}

bool IsSettled(const FileState &state, FileTime readAt) {
    return state.isFolder || state.attributesChanged + 2 * kClockStep < readAt;
}

bool IsOnPseudoFileSystem(const std::string &path) {
    // proc, sysfs, cgroup, cgroup2, devpts, debugfs, tracefs, securityfs, bpf, mqueue, configfs, pstore, binfmt_misc
    constexpr std::uint32_t kPseudo[] = {0x9fa0,     0x62656572, 0x27e0eb,   0x63677270, 0x1cd1,
                                         0x64626720, 0x74726163, 0x73636673, 0xcafe4a11, 0x19800202,
                                         0x62656570, 0x6165676c, 0x42494e4d};
    if (path == "/dev") // looks like any file system in memory
        return true;
    struct statfs64 found {};
    if (statfs64(path.c_str(), &found) != 0)
        return false;
    return std::find(std::begin(kPseudo), std::end(kPseudo), static_cast<std::uint32_t>(found.f_type)) !=
           std::end(kPseudo);
}

} // namespace sim::macos::store
