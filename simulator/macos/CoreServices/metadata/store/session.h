// What a running query asks of the metadata store: every file in its scope, one by one, and then, if it wants updates,
// what happens to them. Nothing is pushed. The query pulls at its own pace and on its own thread, so nothing that a
// program does in a notification can find the store half way through something.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sim::macos::store {

/// Where a query looks: absolute paths of folders, without those that lie in another one. Everything below them counts,
/// they themselves do not.
struct Scope {
    std::vector<std::string> folders;
};

struct FileEvent {
    enum class Kind {
        kFound,   // is in the scope now: it was there, was made, or was moved in
        kChanged, // has other attributes, another name or another place in the scope; the source is the one to use now
        kLost,    // is in the scope no longer
    };
    Kind kind = Kind::kFound;
    FileIdentity file;
    std::shared_ptr<const AttributeSource> source; // null for a lost one
};

class Session {
public:
    enum class Step {
        kEvent, // there is an event
        kBusy,  // some work was done; there is more to do
        kIdle,  // nothing to do until the session calls its wake function
    };

    virtual ~Session() = default;

    /// Does a little work: an entry of a folder, a message of the file system.
    virtual Step Next(FileEvent &event) = 0;

    /// Whether every file that was in the scope when the session began has been told. Does not become false again.
    virtual bool Gathered() const = 0;
};

class FileStore {
public:
    virtual ~FileStore() = default;

    /// Sessions that are not live tell of no change and are over once they have gathered. The wake function is called
    /// on the run loop of the calling thread when a session that was idle has work again; it must not destroy the
    /// session.
    virtual std::unique_ptr<Session> Open(const Scope &scope, bool live, std::function<void()> wake) = 0;

    /// Where its file systems are in the tree of folders: those on a network, or the others.
    virtual std::vector<std::string> Mounted(bool onNetwork) const = 0;

    /// The store that queries read: the files of this machine, or scripted ones
    /// (CoreServices/metadata/store/scripted_store.h).
    static FileStore &Current();

    /// Null brings back the files of this machine. Returns what was there before, null for them.
    static FileStore *Replace(FileStore *store);
};

} // namespace sim::macos::store
