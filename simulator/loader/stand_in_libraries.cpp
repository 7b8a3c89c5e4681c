// Which Linux library answers for which library of the platform.
#include "simulator/loader/elf_library.h"
#include "simulator/loader/library.h"
#include "simulator/loader/system_symbols.h"

#include <array>
#include <string_view>

namespace sim::loader {
namespace {

constexpr std::array kFrameworks = {"libCoreFoundation.so", "libCoreServices.so", "libApplicationServices.so",
                                    "libCarbon.so"};

class Framework : public Library {
public:
    explicit Framework(const std::string &name) : library_(name, kFrameworks) {}

    void *Find(const std::string &symbol) const override {
        return symbol.starts_with('_') ? library_.FindOwn(symbol.substr(1)) : nullptr;
    }

private:
    ElfLibrary library_;
};

class SystemLibrary : public Library {
public:
    void *Find(const std::string &symbol) const override { return FindSystemSymbol(symbol); }
};

class CxxRuntime : public Library {
public:
    void *Find(const std::string &symbol) const override { return FindCxxSymbol(library_, symbol); }

private:
    ElfLibrary library_{"libstdc++.so.6"};
};

std::unique_ptr<Library> OpenFramework(const std::string &installName) {
    const std::string name = "lib" + installName.substr(installName.rfind('/') + 1) + ".so";
    for (const std::string_view framework : kFrameworks)
        if (framework == name)
            return std::make_unique<Framework>(name);
    return nullptr;
}

} // namespace

std::unique_ptr<Library> OpenStandIn(const std::string &installName) {
    if (installName == "/usr/lib/libSystem.B.dylib")
        return std::make_unique<SystemLibrary>();
    if (installName == "/usr/lib/libstdc++.6.dylib")
        return std::make_unique<CxxRuntime>();
    if (installName.starts_with("/System/Library/Frameworks/"))
        return OpenFramework(installName);
    return nullptr;
}

} // namespace sim::loader
