// Where an item's attributes come from: the attributes of one file, asked for by name. The files of this machine are
// one kind of source (file_source.h), files that a test scripts are another. A source models what the metadata store
// knows of a file; it does not keep the file alive and it does not watch it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace sim::macos {

/// Which file it is, whatever it is called: two sources with the same identity speak of the same file. For a file of
/// this machine the device and inode numbers, and the birth time in nanoseconds as statx gives it (0 where the file
/// system keeps none): a file system gives an inode number away again as soon as a file is gone. Scripted files take
/// volume 0, which no real device has.
struct FileIdentity {
    std::uint64_t volume = 0;
    std::uint64_t file = 0;
    std::int64_t birth = 0;

    friend bool operator==(const FileIdentity &, const FileIdentity &) = default;
    friend bool operator<(const FileIdentity &one, const FileIdentity &other) {
        return std::tie(one.volume, one.file, one.birth) < std::tie(other.volume, other.file, other.birth);
    }
};

/// The attributes of one file. Attribute names are UTF-8 and compare literally; a custom name is as good as one of the
/// system's own.
class AttributeSource {
public:
    virtual ~AttributeSource() = default;

    virtual FileIdentity Identity() const = 0;

    /// The absolute path, UTF-8 as the file system has it.
    virtual std::string Path() const = 0;

    /// What a program reads: a +1 value, or null when the file lacks the attribute or it cannot be read back.
    virtual CFTypeRef Copy(std::string_view key) const = 0;

    /// What a query compares with: a +1 value or null. Differs from Copy where an attribute can be searched but not
    /// read back, as the text content of a file.
    virtual CFTypeRef CopyForSearch(std::string_view key) const { return Copy(key); }

    /// The names of the attributes that Copy has a value for, each once.
    virtual std::vector<std::string> Names() const = 0;
};

} // namespace sim::macos
