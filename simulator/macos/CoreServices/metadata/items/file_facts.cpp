#include "simulator/macos/CoreServices/metadata/items/file_facts.h"

#include "simulator/macos/CoreServices/metadata/items/content_type.h"
#include "simulator/macos/CoreServices/metadata/items/words.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace sim::macos {

namespace {

bool HasMode(const struct statx *status, unsigned kind) { return status && (status->stx_mode & S_IFMT) == kind; }

std::optional<ImageHeader> ReadImageHeader(const std::string &path) {
    const FileBytes file(path);
    for (const auto read : {ReadPNGHeader, ReadJPEGHeader, ReadGIFHeader})
        if (auto header = read(file))
            return header;
    return std::nullopt;
}

} // namespace

std::string_view FileFacts::Name() const {
    const std::string_view path = path_;
    const size_t slash = path.rfind('/');
    return slash == std::string_view::npos || path.size() == 1 ? path : path.substr(slash + 1);
}

std::string_view FileFacts::Extension() const {
    const std::string_view name = Name();
    const size_t dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot + 1);
}

const struct statx *FileFacts::Status() {
    if (!haveStatus_) {
        haveStatus_ = true;
        struct statx status;
        if (statx(AT_FDCWD, path_.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &status) == 0)
            status_ = status;
    }
    return status_ ? &*status_ : nullptr;
}

bool FileFacts::IsFolder() { return HasMode(Status(), S_IFDIR); }
bool FileFacts::IsRegularFile() { return HasMode(Status(), S_IFREG); }

const UniformType *FileFacts::Type() {
    if (!type_ && Status())
        type_ = &TypeOfFile(*this);
    return type_;
}

const ImageHeader *FileFacts::Image() {
    if (!haveImage_) {
        haveImage_ = true;
        if (const UniformType *type = Type(); type && ConformsTo(*type, "public.image"))
            image_ = ReadImageHeader(path_);
    }
    return image_ ? &*image_ : nullptr;
}

const AudioHeader *FileFacts::Audio() {
    if (!haveAudio_) {
        haveAudio_ = true;
        if (const UniformType *type = Type(); type && ConformsTo(*type, "public.audio"))
            audio_ = ReadAudioHeader(FileBytes(path_), Status()->stx_size, Extension());
    }
    return audio_ ? &*audio_ : nullptr;
}

std::optional<std::string> FileFacts::ExtendedAttribute(const std::string &name) {
    // A value may grow between asking for its size and reading it; then it is asked for again.
    for (;;) {
        const ssize_t size = lgetxattr(path_.c_str(), name.c_str(), nullptr, 0);
        if (size < 0)
            return std::nullopt;
        std::string value(static_cast<size_t>(size), '\0');
        const ssize_t got = lgetxattr(path_.c_str(), name.c_str(), value.data(), value.size());
        if (got < 0 && errno == ERANGE)
            continue;
        if (got < 0)
            return std::nullopt;
        value.resize(static_cast<size_t>(got));
        return value;
    }
}

std::vector<std::string> FileFacts::ExtendedAttributeNames() {
    for (;;) {
        const ssize_t size = llistxattr(path_.c_str(), nullptr, 0);
        if (size <= 0)
            return {};
        std::string list(static_cast<size_t>(size), '\0');
        const ssize_t got = llistxattr(path_.c_str(), list.data(), list.size());
        if (got < 0 && errno == ERANGE)
            continue;
        if (got < 0)
            return {};
        const auto names = Words(std::string_view(list).substr(0, static_cast<size_t>(got)), '\0');
        return {names.begin(), names.end()};
    }
}

} // namespace sim::macos
