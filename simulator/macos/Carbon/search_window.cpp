// The system's search window: the calls are kept, no window opens.
#include "simulator/macos/Carbon/search_window.h"

#include "simulator/macos/CoreFoundation/text.h"

#include <Carbon/Carbon.h>

namespace sim::macos::searchwindow {

namespace {

struct Window {
    std::vector<Call> calls;
    OSStatus status = noErr;
};

Window &TheWindow() {
    static Window *window = new Window;
    return *window;
}

} // namespace

const std::vector<Call> &Calls() { return TheWindow().calls; }

void SetStatus(OSStatus status) { TheWindow().status = status; }

void Reset() { TheWindow() = {}; }

static OSStatus Show(CFStringRef text, OptionBits options) {
    Call call{std::nullopt, options};
    if (text)
        call.text = CharactersOf(text, "HISearchWindowShow");
    TheWindow().calls.push_back(std::move(call));
    return TheWindow().status;
}

} // namespace sim::macos::searchwindow

OSStatus HISearchWindowShow(CFStringRef searchString, OptionBits options) {
    return sim::macos::searchwindow::Show(searchString, options);
}
