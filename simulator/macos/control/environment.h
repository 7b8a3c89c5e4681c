// What kind of system this is: the system's framework folder, which does not exist on this machine, the functions that
// the CoreServices framework exports, and the mounted volumes. The default is a system as it is usually found; a test
// takes things away.
#pragma once

#include <CoreServices/Files.h>

#include <optional>
#include <string>
#include <string_view>

namespace sim::macos::environment {

/// Back to the default: the framework is there and loads, MDQuerySetSortOptionFlagsForAttribute and MDQuerySetSortOrder
/// are exported, MDQueryGetSortOptionFlagsForAttribute is not, and the only volume is that of "/".
void Reset();

/// What FSFindFolder answers in place of finding the folder; noErr lets it find.
void SetFindFolderResult(OSErr result);
OSErr FindFolderResult();

/// Whether the folder CoreServices.framework exists.
void SetFrameworkExists(bool exists);
/// Whether its executable can be loaded.
void SetFrameworkLoads(bool loads);
bool FrameworkLoads();

/// Whether the executable of the framework exports a function, C name without underscore. Only names that were set are
/// looked up at all; an exported one must be a function of the stand-in CoreServices.
void SetExports(std::string_view function, bool exported);
bool Exports(std::string_view function);

/// The made-up folder of the system's frameworks and the framework in it.
constexpr std::string_view kFrameworksFolder = "/System/Library/Frameworks";
constexpr std::string_view kCoreServicesFramework = "/System/Library/Frameworks/CoreServices.framework";

/// True for a folder that exists on this system but not on the machine underneath.
bool IsMadeUpFolder(std::string_view path);

/// Declares an existing folder to be the root of a volume of its own. Mounts of the machine underneath are not volumes
/// by themselves, so that tests find the same volumes everywhere.
void AddVolume(std::string_view rootPath, std::u16string_view name);

struct Volume {
    FSVolumeRefNum number; ///< -100 for that of "/", then downwards.
    std::string rootPath;
    std::u16string name;
};
/// The volume that an absolute path lies on.
Volume VolumeOf(std::string_view path);
/// The volume that a path is the root of.
std::optional<Volume> VolumeWithRoot(std::string_view path);

} // namespace sim::macos::environment
