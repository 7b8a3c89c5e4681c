#include "bench/plugin.h"

#include "bench/bare_metadata.h"

#include <memory>
#include <stdexcept>
#include <string>

namespace bench {

namespace {

/// A framework of the stand-in system, with the bare functions in front of its own. A shared library of this system
/// finds those by itself, because the program is linked with them first.
class BareFramework final : public sim::loader::Library {
public:
    explicit BareFramework(std::unique_ptr<Library> standIn) : standIn_(std::move(standIn)) {}

    void *Find(const std::string &symbol) const override {
        void *standIn = standIn_->Find(symbol);
        void *bare = standIn && symbol.starts_with('_') ? FindBareFunction(symbol.c_str() + 1) : nullptr;
        return bare ? bare : standIn;
    }

private:
    std::unique_ptr<Library> standIn_;
};

std::unique_ptr<sim::loader::Library> OpenBare(const std::string &installName) {
    auto standIn = sim::loader::OpenStandIn(installName);
    return standIn ? std::make_unique<BareFramework>(std::move(standIn)) : nullptr;
}

} // namespace

Plugin::Plugin(const std::filesystem::path &file, Age age)
    : age_(age), image_(sim::loader::PluginImage::Load(file, {.openLibrary = OpenBare})) {}

uint32_t Plugin::FindMethod(const char *className, std::string_view declaration) const {
    constexpr size_t kMethods = 9;
    const size_t wordsOfRow = age_ == Age::kOld ? 4 : 6;
    const uint32_t *record = ClassRecord(className);
    const auto *row = reinterpret_cast<const uint32_t *>(record[kMethods]);
    for (uint32_t i = 0; i < record[kMethods + 1]; i++, row += wordsOfRow)
        if (std::string_view(reinterpret_cast<const char *>(row[2])).starts_with(declaration))
            return row[0];
    throw std::runtime_error(std::string(className) + " has no " + std::string(declaration));
}

} // namespace bench
