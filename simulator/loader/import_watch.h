// Hearing of the calls that a plugin makes of what it imports: each import that somebody wants to hear of is bound to a
// stub, which tells of the call and then makes it. Calls that the imported libraries make of each other pass unheard.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct link_map;

namespace sim::loader {

class ImportWatch {
public:
    virtual ~ImportWatch() = default;

    // Whether calls of the function of that C name are to be heard of. Asked while a plugin is loaded; the names of
    // variables must be answered with no.
    virtual bool Wants(const std::string &name) const = 0;

    // Before each call. The arguments are the words on the stack. False keeps the call from being made: the caller gets
    // 0 for a result, which must be a word or nothing.
    virtual bool Hear(const char *name, const uint32_t *arguments) noexcept = 0;
};

// The stubs of one image. The image must not run any more when they go.
class ImportStubs {
public:
    // The watch is borrowed; null wants nothing.
    explicit ImportStubs(ImportWatch *watch);
    ImportStubs(const ImportStubs &) = delete;
    ImportStubs &operator=(const ImportStubs &) = delete;
    ~ImportStubs();

    // What an import of that C name is to be bound to: a stub in front of the address, or the address itself.
    void *InFrontOf(const std::string &name, void *address);

    // The same for every import of a shared library of this system that is loaded and bound, but has not run yet, apart
    // from its initialisers.
    void PutInFrontOf(const link_map &library);

private:
    struct Stub;

    ImportWatch *watch_;
    std::vector<std::unique_ptr<Stub>> stubs_;
};

} // namespace sim::loader
