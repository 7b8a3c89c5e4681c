#include "simulator/macos/CoreServices/metadata/items/file_source.h"

#include "simulator/macos/CoreServices/metadata/items/attribute_reader.h"
#include "simulator/macos/CoreServices/metadata/items/named_attributes.h"
#include "simulator/macos/CoreServices/metadata/items/text_content.h"
#include "simulator/macos/control/faults.h"

#include <algorithm>
#include <filesystem>
#include <sys/sysmacros.h>
#include <unordered_map>

namespace sim::macos {

namespace {

const std::vector<AttributeReader> &Readers() {
    static const std::vector<AttributeReader> readers = [] {
        std::vector<AttributeReader> all;
        for (auto group : {NameAttributes(), FileSystemAttributes(), DateAttributes(), FinderAttributes(),
                           ContentTypeAttributes(), ImageAttributes(), DesktopAttributes(), AudioAttributes()})
            all.insert(all.end(), group.begin(), group.end());
        return all;
    }();
    return readers;
}

/// Those that know the attribute, in the order in which they are asked.
std::span<const AttributeReader *const> ReadersOf(std::string_view key) {
    static const auto index = [] {
        std::unordered_map<std::string_view, std::vector<const AttributeReader *>> byKey;
        for (const AttributeReader &reader : Readers())
            byKey[reader.key].push_back(&reader);
        return byKey;
    }();
    const auto found = index.find(key);
    if (found == index.end())
        return {};
    return found->second;
}

CFTypeRef CopyFrom(FileFacts &file, std::string_view key) {
    for (const AttributeReader *reader : ReadersOf(key))
        if (const CFTypeRef value = reader->copy(file))
            return value;
    return CopyNamedAttribute(file, key);
}

bool HasValue(FileFacts &file, std::string_view key) {
    const CFTypeRef value = CopyFrom(file, key);
    if (value)
        CFRelease(value);
    return value != nullptr;
}

std::string AbsoluteWithoutSlashAtEnd(const std::string &path) {
    std::string absolute = std::filesystem::absolute(path).lexically_normal().string();
    while (absolute.size() > 1 && absolute.back() == '/')
        absolute.pop_back();
    return absolute;
}

} // namespace

FileIdentity IdentityOf(const struct statx &status) {
    constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
    FileIdentity identity;
    identity.volume = makedev(status.stx_dev_major, status.stx_dev_minor);
    identity.file = status.stx_ino;
    if (status.stx_mask & STATX_BTIME)
        identity.birth = status.stx_btime.tv_sec * kNanosecondsPerSecond + status.stx_btime.tv_nsec;
    return identity;
}

FileSource::FileSource(std::string_view path, const FileIdentity &identity)
    : FileSource(std::make_shared<const std::string>(path.substr(0, path.rfind('/'))),
                 std::string(path.substr(path.rfind('/') + 1)), identity) {}

std::shared_ptr<const FileSource> FileSource::At(const std::string &path) {
    if (path.empty())
        return nullptr;
    FileFacts file(AbsoluteWithoutSlashAtEnd(path));
    const struct statx *status = file.Status();
    return status ? std::make_shared<const FileSource>(file.Path(), IdentityOf(*status)) : nullptr;
}

CFTypeRef FileSource::Copy(std::string_view key) const {
    const OwnCalls own;
    FileFacts file(Path());
    return CopyFrom(file, key);
}

CFTypeRef FileSource::CopyForSearch(std::string_view key) const {
    if (key == "kMDItemPath") // a query does not compare with paths
        return nullptr;
    const OwnCalls own;
    FileFacts file(Path());
    return key == "kMDItemTextContent" ? CopyTextContent(file) : CopyFrom(file, key);
}

std::vector<std::string> FileSource::Names() const {
    const OwnCalls own;
    FileFacts file(Path());
    std::vector<std::string> names;
    for (const AttributeReader &reader : Readers())
        if (ReadersOf(reader.key).front() == &reader && HasValue(file, reader.key))
            names.emplace_back(reader.key);
    for (std::string &key : NamedAttributes(file))
        if (ReadersOf(key).empty() && HasValue(file, key))
            names.push_back(std::move(key));
    return names;
}

} // namespace sim::macos
