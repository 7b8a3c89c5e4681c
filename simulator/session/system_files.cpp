#include "simulator/session/system_files.h"

#include "simulator/macos/CoreFoundation/ref.h"
#include "simulator/macos/control/faults.h"
#include "simulator/session/core_foundation_text.h"

#include <CoreServices/CoreServices.h>

#include <cstring>
#include <filesystem>

namespace sim {
namespace {

using macos::CFRef;

static_assert(sizeof(FSRef) == sizeof(host::FileReference));

std::optional<FSRef> ReferenceTo(const std::string &path) {
    const auto text = CFRef<CFStringRef>::Adopt(NewCFString(path));
    if (!text)
        return std::nullopt;
    const auto url = CFRef<CFURLRef>::Adopt(
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, text.Get(), kCFURLPOSIXPathStyle, false));
    FSRef reference;
    if (!url || !CFURLGetFSRef(url.Get(), &reference))
        return std::nullopt;
    return reference;
}

bool HasSpec(const std::string &path, const FSSpec &wanted) {
    const std::optional<FSRef> reference = ReferenceTo(path);
    FSSpec spec;
    if (!reference || FSGetCatalogInfo(&*reference, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr) != noErr)
        return false;
    return spec.vRefNum == wanted.vRefNum && spec.parID == wanted.parID && spec.name[0] == wanted.name[0] &&
           std::memcmp(spec.name + 1, wanted.name + 1, wanted.name[0]) == 0;
}

} // namespace

bool SystemFiles::MakeReference(const std::string &path, host::FileReference &reference) {
    const macos::OwnCalls own;
    const std::optional<FSRef> made = ReferenceTo(path);
    if (!made)
        return false;
    std::memcpy(reference.data(), &*made, sizeof *made);
    Meet(path);
    return true;
}

std::optional<std::string> SystemFiles::PathOf(const host::FileReference &reference) {
    const macos::OwnCalls own;
    FSRef named;
    std::memcpy(&named, reference.data(), sizeof named);
    const auto url = CFRef<CFURLRef>::Adopt(CFURLCreateFromFSRef(kCFAllocatorDefault, &named));
    if (!url)
        return std::nullopt;
    const auto path = CFRef<CFStringRef>::Adopt(CFURLCopyFileSystemPath(url.Get(), kCFURLPOSIXPathStyle));
    if (!path)
        return std::nullopt;
    Meet(FromCFString(path.Get()));
    return FromCFString(path.Get());
}

std::optional<std::string> SystemFiles::PathOfSpec(const void *spec) {
    const macos::OwnCalls own;
    FSSpec wanted;
    std::memcpy(&wanted, spec, sizeof wanted);
    for (const std::string &path : met_) {
        if (HasSpec(path, wanted))
            return path;
        std::error_code error;
        for (const auto &item : std::filesystem::directory_iterator(path, error))
            if (HasSpec(item.path().string(), wanted))
                return item.path().string();
    }
    return std::nullopt;
}

void SystemFiles::Meet(std::string path) {
    while (!path.empty() && met_.insert(path).second)
        path = std::filesystem::path(path).parent_path().string();
}

} // namespace sim
