#include "simulator/loader/plugin_image.h"

#include "simulator/loader/elf_image.h"
#include "simulator/loader/macho_image.h"

#include <cerrno>
#include <cstring>
#include <elf.h>
#include <fstream>
#include <map>
#include <sys/stat.h>
#include <tuple>
#include <utility>
#include <vector>

namespace sim::loader {
namespace {

std::vector<uint8_t> ReadFile(const std::filesystem::path &path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        throw LoadError(path.string(), std::strerror(errno));
    if (!std::filesystem::is_regular_file(path))
        throw LoadError(path.string(), "is not a regular file");
    std::vector<uint8_t> bytes(static_cast<size_t>(std::filesystem::file_size(path)));
    stream.read(reinterpret_cast<char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!stream)
        throw LoadError(path.string(), "cannot be read");
    return bytes;
}

// What changes when a file is written anew: device, inode, size, and when, in seconds and nanoseconds.
using FileState = std::tuple<dev_t, ino_t, off_t, time_t, long>;

// All zero when there is no such file.
FileState StateOf(const std::filesystem::path &path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

bool IsElf(const std::vector<uint8_t> &bytes) {
    return bytes.size() >= SELFMAG && std::memcmp(bytes.data(), ELFMAG, SELFMAG) == 0;
}

} // namespace

// Knows all that live, for Describe.
class PluginImage::Kind {
public:
    Kind() { Living().insert(this); }
    Kind(const Kind &) = delete;
    Kind &operator=(const Kind &) = delete;
    virtual ~Kind() { Living().erase(this); }

    static std::set<const Kind *> &Living() {
        static std::set<const Kind *> living;
        return living;
    }

    virtual void *Find(const std::string &name) const = 0;
    virtual std::string Describe(const void *address) const = 0;
    virtual bool CanRest() const = 0;
    virtual void Rest() = 0;
    virtual void Wake() = 0;
};

template <class Image> class PluginImage::KindOf : public Kind {
public:
    template <class... Arguments>
    explicit KindOf(Arguments &&...arguments) : image_(std::forward<Arguments>(arguments)...) {}

    void *Find(const std::string &name) const override { return image_.Find(name); }
    std::string Describe(const void *address) const override { return image_.Describe(address); }
    bool CanRest() const override { return image_.CanRest(); }
    void Rest() override { image_.Rest(); }
    void Wake() override { image_.Wake(); }

private:
    Image image_;
};

// Keeps one image of a file while nobody uses it.
class PluginImage::Lender {
public:
    static Lender &Of(const std::filesystem::path &path, const ImportWatch *watch) {
        Kind::Living(); // is to outlive the images kept here
        static std::map<std::tuple<std::filesystem::path, FileState, const ImportWatch *>, Lender> lenders;
        return lenders[{path, StateOf(path), watch}];
    }

    // The image in its first state, or null when it is lent already or there never was one.
    std::unique_ptr<Kind> Lend() {
        if (idle_)
            idle_->Wake();
        return std::move(idle_);
    }

    void TakeBack(std::unique_ptr<Kind> kind) {
        if (idle_ || !kind->CanRest())
            return; // it goes as any other
        kind->Rest();
        idle_ = std::move(kind);
    }

private:
    std::unique_ptr<Kind> idle_;
};

PluginImage PluginImage::Load(const std::filesystem::path &path, const LoadOptions &options) {
    const std::vector<uint8_t> bytes = ReadFile(path);
    const std::string file = path.string();
    if (IsElf(bytes))
        return {path, std::make_unique<KindOf<ElfImage>>(bytes, file, options.absentSymbols, options.watch), nullptr};
    return {
        path,
        std::make_unique<KindOf<MachOImage>>(bytes, file, options.openLibrary, options.absentSymbols, options.watch),
        nullptr};
}

PluginImage PluginImage::Borrow(const std::filesystem::path &path, const LibraryOpener &openLibrary,
                                ImportWatch *watch) {
    Lender &lender = Lender::Of(path, watch);
    if (auto kind = lender.Lend())
        return {path, std::move(kind), &lender};
    PluginImage image = Load(path, {.openLibrary = openLibrary, .watch = watch});
    image.lender_ = &lender;
    return image;
}

PluginImage::PluginImage(std::filesystem::path path, std::unique_ptr<Kind> kind, Lender *lender)
    : path_(std::move(path)), kind_(std::move(kind)), lender_(lender) {}

PluginImage::PluginImage(PluginImage &&) noexcept = default;

PluginImage::~PluginImage() {
    if (kind_ && lender_)
        lender_->TakeBack(std::move(kind_));
}

PluginImage::EntryPointFunction PluginImage::EntryPoint() const {
    void *address = Find("REALPluginMain");
    if (!address)
        throw LoadError(path_.string(), "does not export REALPluginMain");
    return reinterpret_cast<EntryPointFunction>(address);
}

void *PluginImage::Find(const std::string &name) const { return kind_->Find(name); }

std::string PluginImage::Describe(const void *address) {
    for (const Kind *image : Kind::Living())
        if (std::string description = image->Describe(address); !description.empty())
            return description;
    return "";
}

} // namespace sim::loader
