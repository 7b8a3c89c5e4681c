#include "tests/simulator/macos/corefoundation/support.h"

#include "simulator/macos/Carbon/search_window.h"
#include "simulator/macos/CoreFoundation/notifications.h"
#include "simulator/macos/control/environment.h"
#include "simulator/macos/control/faults.h"
#include "simulator/macos/control/stop.h"

#include <cstdlib>
#include <fstream>

namespace sim::macos::tests {

Balanced::Balanced() : before_(ledger::Take()), registrationsBefore_(notifications::RegistrationCount()) {
    faults::Reset();
    environment::Reset();
    searchwindow::Reset();
}

Balanced::~Balanced() {
    CHECK_MESSAGE(ledger::Since(before_).Empty(), ledger::Since(before_).ToText());
    CHECK_EQ(notifications::RegistrationCount(), registrationsBefore_);
    faults::Reset();
    environment::Reset();
}

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

std::string TextOf(CFURLRef url) { return url ? Utf8Of(CFURLGetString(url)) : "null"; }

Folder::Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "corefoundation-XXXXXX").string();
    REQUIRE(mkdtemp(pattern.data()));
    path_ = std::filesystem::canonical(pattern);
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string Folder::Path(const std::string &name) const {
    return name.empty() ? path_.string() : (path_ / name).string();
}

std::string Folder::File(const std::string &name) const {
    std::ofstream(path_ / name) << "text";
    return Path(name);
}

std::string Folder::Subfolder(const std::string &name) const {
    std::filesystem::create_directory(path_ / name);
    return Path(name);
}

} // namespace sim::macos::tests
