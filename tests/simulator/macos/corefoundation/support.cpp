#include "tests/simulator/macos/corefoundation/support.h"

#include "simulator/macos/control/stop.h"

namespace tests {

using namespace sim::macos;

std::string RefusalOf(const std::function<void()> &call) {
    StopsThrow throws;
    try {
        call();
    } catch (const Stopped &stopped) {
        return stopped.message;
    }
    return {};
}

bool Contains(const std::string &text, const std::string &part) { return text.find(part) != std::string::npos; }

CFRef<CFURLRef> UrlFrom(const std::string &text) {
    const auto string = MakeString(std::string_view(text));
    return CFRef<CFURLRef>::Adopt(CFURLCreateWithString(kCFAllocatorDefault, string.Get(), nullptr));
}

CFRef<CFMutableDictionaryRef> NewDictionary() {
    return CFRef<CFMutableDictionaryRef>::Adopt(
        CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

std::string TextOf(CFURLRef url) { return url ? Utf8Of(CFURLGetString(url)) : "null"; }

} // namespace tests
