#include "simulator/loader/library.h"

#include <doctest/doctest.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <typeinfo>
#include <vector>

namespace sim::loader {
namespace {

const std::string kSystem = "/usr/lib/libSystem.B.dylib";
const std::string kCxx = "/usr/lib/libstdc++.6.dylib";

template <class Function> void *AddressOf(Function *function) { return reinterpret_cast<void *>(function); }

TEST_CASE("The C library's functions are those that this program calls, a sanitizer's included") {
    const auto system = OpenStandIn(kSystem);
    REQUIRE(system);
    CHECK(system->Find("_calloc") == AddressOf(&std::calloc));
    CHECK(system->Find("_free") == AddressOf(&std::free));
    CHECK(system->Find("_strdup") == AddressOf(&strdup));
}

TEST_CASE("Zeroing has a name of its own on the platform") {
    const auto system = OpenStandIn(kSystem);
    char bytes[] = "abc";
    reinterpret_cast<void (*)(void *, size_t)>(system->Find("___bzero"))(bytes, 2);
    CHECK(bytes[0] == 0);
    CHECK(bytes[1] == 0);
    CHECK(bytes[2] == 'c');
}

TEST_CASE("The C library has what it lists and nothing else") {
    const auto system = OpenStandIn(kSystem);
    for (const char *symbol : {"___divdi3", "___moddi3", "___udivdi3", "___umoddi3", "___fixunsdfdi", "___floatundidf",
                               "__Unwind_Resume", "_pthread_self", "_snprintf", "_memcpy", "dyld_stub_binder"}) {
        CAPTURE(symbol);
        CHECK(system->Find(symbol) != nullptr);
    }
    for (const char *symbol : {"calloc", "_getaddrinfo", "_dyld_stub_binder", "___cxa_throw", "__Znwm", "_", ""}) {
        CAPTURE(symbol);
        CHECK(system->Find(symbol) == nullptr);
    }
}

TEST_CASE("The C++ runtime gives its own symbols, with size_t mangled as this system does") {
    const auto runtime = OpenStandIn(kCxx);
    REQUIRE(runtime);
    CHECK(runtime->Find("__Znwm") == AddressOf(static_cast<void *(*)(size_t)>(&::operator new)));
    CHECK(runtime->Find("__Znam") == AddressOf(static_cast<void *(*)(size_t)>(&::operator new[])));
    CHECK(runtime->Find("__ZdlPv") == AddressOf(static_cast<void (*)(void *)>(&::operator delete)));
    CHECK(runtime->Find("__ZTISt9exception") == &typeid(std::exception));
    for (const char *symbol : {"___gxx_personality_v0", "___cxa_begin_catch", "___cxa_end_catch", "___cxa_rethrow",
                               "__ZSt9terminatev", "__ZTISt12out_of_range", "__ZTISt8bad_cast"}) {
        CAPTURE(symbol);
        CHECK(runtime->Find(symbol) != nullptr);
    }
    for (const char *symbol : {"_calloc", "__Unwind_Resume", "__Znwj", "_pow", "__ZTI9Elsewhere", ""}) {
        CAPTURE(symbol);
        CHECK(runtime->Find(symbol) == nullptr);
    }
}

std::string Framework(const std::string &name) {
    return "/System/Library/Frameworks/" + name + ".framework/Versions/A/" + name;
}

TEST_CASE("A framework gives its own symbols and those of the frameworks that it re-exports, and no others") {
    struct Row {
        const char *framework;
        std::vector<const char *> has;
        std::vector<const char *> lacks;
    };
    const std::vector<const char *> nobodys = {"_calloc", "__Znwm", "_dlopen", "CFRelease", "_", ""};
    for (const Row &row : {Row{"CoreFoundation",
                               {"_CFRelease", "_kCFAllocatorSystemDefault", "___CFConstantStringClassReference"},
                               {"_MDQueryCreate", "_kMDItemFSName", "_CGImageGetTypeID", "_HISearchWindowShow"}},
                           Row{"CoreServices",
                               {"_MDQueryCreate", "_kMDItemFSName", "_FSFindFolder", "_CFRelease"},
                               {"_CGImageGetTypeID", "_HISearchWindowShow"}},
                           Row{"ApplicationServices",
                               {"_CGImageGetTypeID", "_CTFontGetTypeID", "_MDQueryCreate", "_CFRelease"},
                               {"_HISearchWindowShow"}},
                           Row{"Carbon", {"_HISearchWindowShow", "_CGImageGetTypeID", "_CFRelease"}, {}}}) {
        CAPTURE(row.framework);
        const auto library = OpenStandIn(Framework(row.framework));
        REQUIRE(library);
        for (const char *symbol : row.has) {
            CAPTURE(symbol);
            CHECK(library->Find(symbol) != nullptr);
        }
        for (const auto &symbols : {row.lacks, nobodys})
            for (const char *symbol : symbols) {
                CAPTURE(symbol);
                CHECK(library->Find(symbol) == nullptr);
            }
    }
}

TEST_CASE("Nothing stands in for other libraries") {
    for (const char *name :
         {"/usr/lib/libc++.1.dylib", "/usr/lib/libobjc.A.dylib", "libSystem.B.dylib", "",
          "/System/Library/Frameworks/AppKit.framework/Versions/C/AppKit", "/Applications/CoreFoundation"}) {
        CAPTURE(name);
        CHECK(OpenStandIn(name) == nullptr);
    }
}

} // namespace
} // namespace sim::loader
