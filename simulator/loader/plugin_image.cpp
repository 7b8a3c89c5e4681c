#include "simulator/loader/plugin_image.h"

#include "simulator/loader/elf_image.h"
#include "simulator/loader/macho_image.h"

#include <cerrno>
#include <cstring>
#include <elf.h>
#include <fstream>
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
};

template <class Image> class PluginImage::KindOf : public Kind {
public:
    template <class... Arguments>
    explicit KindOf(Arguments &&...arguments) : image_(std::forward<Arguments>(arguments)...) {}

    void *Find(const std::string &name) const override { return image_.Find(name); }
    std::string Describe(const void *address) const override { return image_.Describe(address); }

private:
    Image image_;
};

PluginImage PluginImage::Load(const std::filesystem::path &path, const LoadOptions &options) {
    const std::vector<uint8_t> bytes = ReadFile(path);
    const std::string file = path.string();
    if (IsElf(bytes))
        return {path, std::make_unique<KindOf<ElfImage>>(bytes, file, options.absentSymbols)};
    return {path, std::make_unique<KindOf<MachOImage>>(bytes, file, options.openLibrary, options.absentSymbols)};
}

PluginImage::PluginImage(std::filesystem::path path, std::unique_ptr<Kind> kind)
    : path_(std::move(path)), kind_(std::move(kind)) {}
PluginImage::PluginImage(PluginImage &&) noexcept = default;
PluginImage &PluginImage::operator=(PluginImage &&) noexcept = default;
PluginImage::~PluginImage() = default;

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
