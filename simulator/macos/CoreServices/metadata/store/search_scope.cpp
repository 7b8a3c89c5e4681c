// What the six scope names mean here. Home is the user's home folder; computer is every mounted file system that is not
// on a network, and the home folder; network is those on a network. The three "indexed" names mean the same as their
// counterparts, because everything here counts as indexed: all is computer and network together.
#include "simulator/macos/CoreServices/metadata/store/search_scope.h"

#include "simulator/macos/CoreFoundation/ref.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreServices/metadata/store/scripted_scopes.h"

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/MDQuery.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>

namespace sim::macos {

namespace {

using Folders = std::vector<std::string>;

std::map<std::string, Folders> &ScriptedFolders() {
    static std::map<std::string, Folders> folders;
    return folders;
}

Folders Home() {
    const char *home = getenv("HOME");
    return home && home[0] == '/' ? Folders{home} : Folders{};
}

Folders Network() { return store::FileStore::Current().Mounted(true); }

Folders Computer() {
    Folders folders = store::FileStore::Current().Mounted(false);
    for (const std::string &home : Home())
        folders.push_back(home);
    return folders;
}

Folders All() {
    Folders folders = Computer();
    for (const std::string &folder : Network())
        folders.push_back(folder);
    return folders;
}

struct NamedScope {
    const char *name;
    Folders (*folders)();
};

constexpr NamedScope kNamedScopes[] = {
    {"kMDQueryScopeHome", Home},
    {"kMDQueryScopeComputer", Computer},
    {"kMDQueryScopeNetwork", Network},
    {"kMDQueryScopeAllIndexed", All},
    {"kMDQueryScopeComputerIndexed", Computer},
    {"kMDQueryScopeNetworkIndexed", Network},
};

Folders FoldersNamed(const std::string &text) {
    const auto scripted = ScriptedFolders().find(text);
    if (scripted != ScriptedFolders().end())
        return scripted->second;
    for (const NamedScope &scope : kNamedScopes) {
        if (text == scope.name)
            return scope.folders();
    }
    return text.starts_with("/") ? Folders{text} : Folders{};
}

Folders FoldersOf(CFTypeRef entry) {
    const CFTypeID type = CFGetTypeID(entry);
    if (type == CFStringGetTypeID())
        return FoldersNamed(Utf8Of(static_cast<CFStringRef>(entry)));
    if (type != CFURLGetTypeID())
        return {};
    const auto url = CFRef<CFURLRef>::Adopt(CFURLCopyAbsoluteURL(static_cast<CFURLRef>(entry)));
    if (!url || !Utf8Of(CFURLGetString(url.Get())).starts_with("file:"))
        return {};
    const auto path = CFRef<CFStringRef>::Adopt(CFURLCopyFileSystemPath(url.Get(), kCFURLPOSIXPathStyle));
    const std::string text = path ? Utf8Of(path.Get()) : std::string();
    return text.starts_with("/") ? Folders{text} : Folders{};
}

std::string WithoutLinks(const std::string &path) {
    struct Free {
        void operator()(char *text) const { free(text); }
    };
    const std::unique_ptr<char, Free> real(realpath(path.c_str(), nullptr));
    if (real)
        return real.get();
    std::string plain = path;
    while (plain.size() > 1 && plain.back() == '/')
        plain.pop_back();
    return plain;
}

bool LiesIn(const std::string &path, const std::string &folder) {
    return path == folder || folder == "/" || path.starts_with(folder + "/");
}

} // namespace

ScriptedScope::ScriptedScope(const std::string &name, std::vector<std::string> folders) : name_(name) {
    const auto found = ScriptedFolders().find(name);
    if (found != ScriptedFolders().end())
        previous_ = found->second;
    ScriptedFolders()[name] = std::move(folders);
}

ScriptedScope::~ScriptedScope() {
    if (previous_)
        ScriptedFolders()[name_] = *previous_;
    else
        ScriptedFolders().erase(name_);
}

store::Scope store::ResolveScope(CFArrayRef entries) {
    Folders folders;
    if (!entries)
        folders = FoldersNamed("kMDQueryScopeComputer");
    for (CFIndex index = 0; entries && index < CFArrayGetCount(entries); ++index) {
        for (const std::string &folder : FoldersOf(CFArrayGetValueAtIndex(entries, index)))
            folders.push_back(folder);
    }
    for (std::string &folder : folders)
        folder = WithoutLinks(folder);
    Scope scope;
    std::sort(folders.begin(), folders.end()); // a folder comes before those in it
    for (const std::string &folder : folders) {
        const auto holdsIt = [&](const std::string &outer) { return LiesIn(folder, outer); };
        if (std::none_of(scope.folders.begin(), scope.folders.end(), holdsIt))
            scope.folders.push_back(folder);
    }
    return scope;
}

} // namespace sim::macos
