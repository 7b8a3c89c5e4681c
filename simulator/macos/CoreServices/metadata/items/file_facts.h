// One look at a file of this machine. What is asked for is read on first use and kept for as long as the look lasts, so
// that the answers of one look agree with each other; the next look starts afresh. A symbolic link is looked at itself,
// not at what it leads to.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/audio_header.h"
#include "simulator/macos/CoreServices/metadata/items/image_header.h"
#include "simulator/macos/CoreServices/metadata/items/uniform_type.h"

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sim::macos {

class FileFacts {
public:
    explicit FileFacts(std::string path) : path_(std::move(path)) {}

    const std::string &Path() const { return path_; }
    /// The last component of the path; the root folder's is "/".
    std::string_view Name() const;
    /// What follows the last dot of the name, empty when there is none or the name begins with it.
    std::string_view Extension() const;

    /// Null when the file is not there.
    const struct statx *Status();
    bool IsFolder();
    bool IsRegularFile();

    /// Null when the file is not there.
    const UniformType *Type();

    /// Null when the file is not an image of a kind that is read here.
    const ImageHeader *Image();

    /// Null when the file is no sound of a kind that is read here.
    const AudioHeader *Audio();

    /// The value of an extended attribute, by its full name; nothing when the file has none of that name.
    std::optional<std::string> ExtendedAttribute(const std::string &name);
    std::vector<std::string> ExtendedAttributeNames();

private:
    std::string path_;
    bool haveStatus_ = false;
    std::optional<struct statx> status_;
    const UniformType *type_ = nullptr;
    bool haveImage_ = false;
    std::optional<ImageHeader> image_;
    bool haveAudio_ = false;
    std::optional<AudioHeader> audio_;
};

} // namespace sim::macos
