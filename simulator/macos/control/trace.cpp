// Return addresses by frame pointer, and their names. Every frame is checked against the bounds of the thread's stack,
// so a caller without frame pointers ends the walk early instead of leading it astray.
#include "simulator/macos/control/trace.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <dlfcn.h>
#include <pthread.h>
#include <string_view>
#include <vector>

extern "C" __attribute__((weak)) void __sanitizer_symbolize_pc(void *pc, const char *format, char *out, size_t size);

namespace sim::macos {

namespace {

Symboliser symboliserInUse = nullptr;

struct StackBounds {
    std::uintptr_t low = 0;
    std::uintptr_t high = 0;
};

StackBounds BoundsOfThisThread() {
    StackBounds bounds;
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return bounds;
    void *low = nullptr;
    std::size_t size = 0;
    pthread_attr_getstack(&attributes, &low, &size);
    pthread_attr_destroy(&attributes);
    bounds.low = reinterpret_cast<std::uintptr_t>(low);
    bounds.high = bounds.low + size;
    return bounds;
}

std::string Hexadecimal(std::uintptr_t number) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%lx", static_cast<unsigned long>(number));
    return text;
}

std::string Demangled(const char *name) {
    int status = 0;
    char *text = abi::__cxa_demangle(name, nullptr, nullptr, &status);
    std::string result = status == 0 && text ? text : name;
    std::free(text);
    return result;
}

std::string NameOf(const void *address) {
    // A return address may be the first byte of the next function: ask for the call before it.
    const char *call = static_cast<const char *>(address) - 1;
    if (__sanitizer_symbolize_pc) {
        // One text after the other, the function that was called last: before it stand those inlined into it.
        char text[2048] = "";
        __sanitizer_symbolize_pc(const_cast<char *>(call), "%f %s:%l", text, sizeof text - 1);
        const char *last = text;
        for (const char *one = text; *one; one += std::strlen(one) + 1)
            last = one;
        if (*last && *last != '<' && *last != ' ')
            return last;
    }
    Dl_info info{};
    if (dladdr(call, &info) != 0) {
        auto offsetFrom = [&](const void *base) {
            return "+" + Hexadecimal(reinterpret_cast<std::uintptr_t>(call) - reinterpret_cast<std::uintptr_t>(base));
        };
        if (info.dli_sname)
            return Demangled(info.dli_sname) + offsetFrom(info.dli_saddr);
        std::string file = info.dli_fname ? info.dli_fname : "";
        return file.substr(file.find_last_of('/') + 1) + offsetFrom(info.dli_fbase);
    }
    if (symboliserInUse) {
        std::string name = symboliserInUse(call);
        if (!name.empty())
            return name;
    }
    return Hexadecimal(reinterpret_cast<std::uintptr_t>(address));
}

// A C++ function of the stand-ins, through which an object comes into being wherever it is made; local ones have no
// name without a sanitizer.
bool IsOwn(const std::string &name) {
    constexpr std::string_view kOwn[] = {"sim::macos::", "(anonymous namespace)::", "libCoreFoundation.so+"};
    return std::any_of(std::begin(kOwn), std::end(kOwn),
                       [&](std::string_view start) { return name.starts_with(start); });
}

} // namespace

__attribute__((noinline, no_sanitize("address"))) Trace TakeTrace() {
    static thread_local const StackBounds bounds = BoundsOfThisThread();
    Trace trace;
    auto frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    std::size_t depth = 0;
    bool own = true;
    while (depth < Trace::kDepth && frame >= bounds.low && frame + 2 * sizeof(void *) <= bounds.high &&
           frame % alignof(void *) == 0) {
        const auto *words = reinterpret_cast<const std::uintptr_t *>(frame);
        if (!own && words[1])
            trace.frames[depth++] = reinterpret_cast<const void *>(words[1]);
        own = false;
        if (words[0] <= frame)
            break;
        frame = words[0];
    }
    return trace;
}

std::string ToText(const Trace &trace) {
    std::vector<std::string> names;
    for (const void *frame : trace.frames)
        if (frame)
            names.push_back(NameOf(frame));
    auto first = std::find_if_not(names.begin(), names.end(), IsOwn);
    if (first == names.end())
        first = names.begin();
    std::string text;
    for (; first != names.end(); ++first)
        text += (text.empty() ? "" : " < ") + *first;
    return text.empty() ? "an unknown place" : text;
}

void SetSymboliser(Symboliser symboliser) { symboliserInUse = symboliser; }

} // namespace sim::macos
