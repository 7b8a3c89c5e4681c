#include "simulator/loader/binder.h"

#include "simulator/loader/load_error.h"
#include "simulator/loader/macho_format.h"

#include <memory>

namespace sim::loader {
namespace {

std::string CName(const std::string &symbol) { return symbol.starts_with('_') ? symbol.substr(1) : symbol; }

class Binder {
public:
    Binder(const Image &image, const MappedImage &mapped, const LibraryOpener &open,
           const std::set<std::string> &absent, ImportStubs &stubs, std::string_view file)
        : image_(image), mapped_(mapped), absent_(absent), stubs_(stubs), file_(file) {
        for (const Dylib &dylib : image.dylibs) {
            libraries_.push_back(Open(open, dylib.installName));
            if (!libraries_.back() && !dylib.weak)
                throw LoadError(file, "needs " + dylib.installName + ", for which nothing stands in");
        }
    }

    void Bind() {
        std::vector<uint32_t> addresses;
        for (const Import &import : image_.imports)
            addresses.push_back(AddressOf(import));
        if (!unmet_.empty())
            throw LoadError(file_, unmet_);
        for (const struct Bind &bind : image_.binds) {
            const uint32_t address = addresses[bind.import];
            // A missing symbol is null, wherever into it the image wanted to point.
            mapped_.WriteWord(bind.address, address == 0 ? 0 : address + static_cast<uint32_t>(bind.addend));
        }
    }

private:
    std::unique_ptr<Library> Open(const LibraryOpener &open, const std::string &installName) const {
        try {
            return open(installName);
        } catch (const std::runtime_error &error) {
            throw LoadError(file_, "cannot open what stands in for " + installName + ": " + error.what());
        }
    }

    uint32_t AddressOf(const Import &import) {
        void *address = absent_.contains(CName(import.symbol)) ? nullptr : Find(import);
        if (!address && !import.weak)
            NoteUnmet(import);
        address = stubs_.InFrontOf(CName(import.symbol), address);
        return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address));
    }

    void *Find(const Import &import) const {
        if (import.ordinal == macho::kOrdinalSelf) {
            const Export *own = image_.FindExport(import.symbol);
            return own ? mapped_.At(own->address) : nullptr;
        }
        if (import.ordinal < 0)
            throw LoadError(file_, "looks for " + import.symbol + " in no particular library, which is not modelled");
        const auto &library = libraries_[static_cast<size_t>(import.ordinal) - 1];
        return library ? library->Find(import.symbol) : nullptr;
    }

    void NoteUnmet(const Import &import) {
        unmet_ += unmet_.empty() ? "symbols not found: " : ", ";
        unmet_ += import.symbol + " (expected in " + NameOf(import.ordinal);
        for (size_t i = 0; i < libraries_.size(); ++i)
            if (libraries_[i] && !absent_.contains(CName(import.symbol)) && libraries_[i]->Find(import.symbol))
                unmet_ += ", but it is in " + image_.dylibs[i].installName;
        unmet_ += ")";
    }

    std::string NameOf(int32_t ordinal) const {
        return ordinal > 0 ? image_.dylibs[static_cast<size_t>(ordinal) - 1].installName : "the image itself";
    }

    const Image &image_;
    const MappedImage &mapped_;
    const std::set<std::string> &absent_;
    ImportStubs &stubs_;
    std::string_view file_;
    std::vector<std::unique_ptr<Library>> libraries_; // in the order of image.dylibs
    std::string unmet_;
};

} // namespace

void BindImports(const Image &image, const MappedImage &mapped, const LibraryOpener &open,
                 const std::set<std::string> &absent, ImportStubs &stubs, std::string_view file) {
    Binder(image, mapped, open, absent, stubs, file).Bind();
}

} // namespace sim::loader
