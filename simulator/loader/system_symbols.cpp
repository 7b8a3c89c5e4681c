#include "simulator/loader/system_symbols.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

namespace sim::loader {
namespace {

void Bzero(void *bytes, size_t count) { std::memset(bytes, 0, count); }

// Everything is bound at load, so no stub is left that could ask for its function on first use.
[[noreturn]] void StubBinder() {
    std::fputs("loader: a lazy stub was entered although every import is bound\n", stderr);
    std::abort();
}

struct Row {
    const char *symbol;
    const char *linuxName;        // looked up in the whole process, so that sanitizers keep their interceptors
    void (*function)() = nullptr; // or a function of our own
};

const Row kSystemRows[] = {
    {"_abort", "abort"},
    {"_bzero", "bzero"},
    {"_calloc", "calloc"},
    {"_free", "free"},
    {"_malloc", "malloc"},
    {"_memcmp", "memcmp"},
    {"_memcpy", "memcpy"},
    {"_memmove", "memmove"},
    {"_memset", "memset"},
    {"_pthread_self", "pthread_self"},
    {"_realloc", "realloc"},
    {"_snprintf", "snprintf"},
    {"_strcmp", "strcmp"},
    {"_strcpy", "strcpy"},
    {"_strdup", "strdup"},
    {"_strlen", "strlen"},
    {"_strncmp", "strncmp"},
    {"___divdi3", "__divdi3"},
    {"___fixunsdfdi", "__fixunsdfdi"},
    {"___floatundidf", "__floatundidf"},
    {"___moddi3", "__moddi3"},
    {"___udivdi3", "__udivdi3"},
    {"___umoddi3", "__umoddi3"},
    {"__Unwind_Resume", "_Unwind_Resume"},
    {"___bzero", nullptr, reinterpret_cast<void (*)()>(Bzero)},
    {"dyld_stub_binder", nullptr, StubBinder},
};

// size_t is another integer type on the platform, which shows in the names of functions that take one.
const Row kCxxRows[] = {
    {"__Znwm", "_Znwj"},
    {"__Znam", "_Znaj"},
    {"__ZnwmRKSt9nothrow_t", "_ZnwjRKSt9nothrow_t"},
    {"__ZnamRKSt9nothrow_t", "_ZnajRKSt9nothrow_t"},
    {"__ZdlPvm", "_ZdlPvj"},
    {"__ZdaPvm", "_ZdaPvj"},
};

} // namespace

void *FindSystemSymbol(const std::string &symbol) {
    for (const Row &row : kSystemRows)
        if (symbol == row.symbol)
            return row.linuxName ? dlsym(RTLD_DEFAULT, row.linuxName) : reinterpret_cast<void *>(row.function);
    return nullptr;
}

void *FindCxxSymbol(const ElfLibrary &runtime, const std::string &symbol) {
    std::string name = symbol.starts_with('_') ? symbol.substr(1) : "";
    for (const Row &row : kCxxRows) {
        if (name == row.linuxName)
            return nullptr; // the platform spells it the other way
        if (symbol == row.symbol) {
            name = row.linuxName;
            break;
        }
    }
    // The runtime says whether there is such a symbol, the process whose it is: a sanitizer may have put its own first.
    return !name.empty() && runtime.FindOwn(name) ? dlsym(RTLD_DEFAULT, name.c_str()) : nullptr;
}

} // namespace sim::loader
