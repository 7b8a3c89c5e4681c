// The attributes of a file of this machine, read off the file itself each time they are asked for: there is no index
// between a program and the file, and so none that could be out of date.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"

#include <memory>

struct statx;

namespace sim::macos {

/// Which file a look at it tells it to be. The look must have asked for the birth time.
FileIdentity IdentityOf(const struct statx &status);

class FileSource final : public AttributeSource {
public:
    /// For whoever has looked at the file already. The path is absolute, without a slash at its end.
    FileSource(std::string_view path, const FileIdentity &identity);
    /// The same for a name in a folder whose path is written once for all the files in it, empty for the root's.
    FileSource(std::shared_ptr<const std::string> folder, std::string name, const FileIdentity &identity)
        : folder_(std::move(folder)), name_(std::move(name)), identity_(identity) {}

    /// Null when nothing is at the path.
    static std::shared_ptr<const FileSource> At(const std::string &path);

    FileIdentity Identity() const override { return identity_; }
    std::string Path() const override { return *folder_ + "/" + name_; }
    CFTypeRef Copy(std::string_view key) const override;
    CFTypeRef CopyForSearch(std::string_view key) const override;
    std::vector<std::string> Names() const override;

private:
    std::shared_ptr<const std::string> folder_;
    std::string name_;
    FileIdentity identity_;
};

} // namespace sim::macos
