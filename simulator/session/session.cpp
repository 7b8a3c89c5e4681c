#include "simulator/session/session.h"

#include "simulator/macos/CoreFoundation/notifications.h"
#include "simulator/macos/control/faults.h"
#include "simulator/macos/control/trace.h"
#include "simulator/session/core_foundation_text.h"

#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <utility>

namespace sim {
namespace {

const void *MakeCFString(const host::Text &text) {
    const macos::OwnCalls own;
    return NewCFString(text);
}

loader::PluginImage ImageFor(const SessionOptions &options) {
    if (options.absentSymbols.empty())
        return loader::PluginImage::Borrow(options.plugin, loader::OpenStandIn, options.watch);
    return loader::PluginImage::Load(options.plugin, {.absentSymbols = options.absentSymbols, .watch = options.watch});
}

} // namespace

Session::Session(SessionOptions options) : plugin_(ImageFor(options)), host_(Connected(std::move(options.host))) {
    macos::SetSymboliser(loader::PluginImage::Describe);
    if (options.start)
        Start();
    else
        NoteBalance();
}

Session::~Session() = default;

void Session::Start() {
    host_.Start(plugin_.EntryPoint());
    NoteBalance();
}

void Session::NoteBalance() {
    before_ = macos::ledger::Take();
    observersBefore_ = macos::notifications::RegistrationCount();
}

bool Session::RunLoop(double seconds) {
    return CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds, true) == kCFRunLoopRunHandledSource;
}

std::vector<std::string> Session::Balance() const {
    std::vector<std::string> lines = host_.Balance();
    AddSystemBalance(lines, macos::ledger::Since(before_));
    return lines;
}

std::vector<std::string> Session::NewlyOutOfBalance() {
    std::vector<std::string> lines = host_.NewlyOutOfBalance();
    AddSystemBalance(lines, macos::ledger::Since(before_, [this](const macos::ledger::Mark &mark) {
                         return std::exchange(told_[mark.serial], mark.retainCount) != mark.retainCount;
                     }));
    return lines;
}

void Session::AddSystemBalance(std::vector<std::string> &lines, const macos::ledger::Difference &difference) const {
    const std::string system = difference.ToText();
    for (size_t begin = 0; begin < system.size();) {
        const size_t end = std::min(system.find('\n', begin), system.size());
        lines.push_back(system.substr(begin, end - begin));
        begin = end + 1;
    }
    if (const size_t observers = macos::notifications::RegistrationCount(); observers != observersBefore_)
        lines.push_back("observers: " + std::to_string(observers) +
                        " are registered with the notification centre, and " + std::to_string(observersBefore_) +
                        " were at the start");
}

host::HostOptions Session::Connected(host::HostOptions options) {
    if (!options.files)
        options.files = &files_;
    if (!options.makeCFString)
        options.makeCFString = MakeCFString;
    for (host::CompanionClass &companion : options.companions)
        if (companion.wraps && !companion.release)
            companion.release = [](const void *reference) { CFRelease(reference); };
    return options;
}

} // namespace sim
