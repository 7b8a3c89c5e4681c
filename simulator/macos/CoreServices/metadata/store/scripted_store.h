// A metadata store of files that exist only in a test. While it lives, queries that are executed look at its files and
// at nothing else, and time is virtual: it stands still while work is done and jumps when a run loop waits. Every order
// of changes, batches, stops and waits is then one definite run of events.
#pragma once

#include "simulator/macos/CoreFoundation/ref.h"
#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"
#include "simulator/macos/CoreServices/metadata/store/session.h"
#include "simulator/macos/control/clock.h"

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/MDItem.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace sim::macos {

class ScriptedSession;

/// A scripted file. Its name and path are attributes of their own accord; others are set.
class ScriptedFile final : public AttributeSource {
public:
    ScriptedFile(std::uint64_t number, std::string path) : number_(number), path_(std::move(path)) {}

    FileIdentity Identity() const override { return {0, number_, 0}; }
    std::string Path() const override { return path_; }
    CFTypeRef Copy(std::string_view key) const override;
    CFTypeRef CopyForSearch(std::string_view key) const override;
    std::vector<std::string> Names() const override;

private:
    friend class ScriptedStore;

    std::uint64_t number_;
    std::string path_;
    std::map<std::string, CFRef<CFTypeRef>, std::less<>> attributes_;
};

class ScriptedStore final : public store::FileStore {
public:
    /// A handle of a file; 0 is none.
    using File = std::uint64_t;

    /// The clock begins at 2014-06-30 15:00 GMT.
    ScriptedStore();
    /// Sessions that queries still hold see no more.
    ~ScriptedStore() override;

    /// Queries that are live and have the path in their scope will find it. The value is retained.
    File Add(std::string path);
    /// A value of null takes the attribute away. kMDItemTextContent is searchable but cannot be read.
    void Set(File file, std::string_view name, CFTypeRef value);
    void SetText(File file, std::string_view name, std::string_view value);
    void SetNumber(File file, std::string_view name, std::int64_t value);
    void Move(File file, std::string path);
    void Remove(File file);
    /// Live queries hear of a change though nothing is different.
    void Touch(File file);

    /// As Set, but nobody hears of it.
    void Prepare(File file, std::string_view name, CFTypeRef value);

    /// How fast queries find the files that are there: so many, then a pause. Without a pace all at once.
    void SetPace(std::size_t files, double milliseconds);
    /// Queries find nothing and hear of nothing until Release.
    void Hold();
    void Release();

    /// +1. An item of the file, as MDItemCreateWithURL would give for a real one.
    MDItemRef CopyItem(File file) const;
    /// Which file an item speaks of.
    static File FileOf(MDItemRef item);

    VirtualClock &Clock() { return clock_; }
    /// Runs the run loop of this thread for so much virtual time.
    void Run(double milliseconds);

    std::unique_ptr<store::Session> Open(const store::Scope &scope, bool live, std::function<void()> wake) override;
    /// It is one file system, and no network.
    std::vector<std::string> Mounted(bool onNetwork) const override;

private:
    friend class ScriptedSession;

    void TellChanged(File file);

    VirtualClock clock_;
    ClockOverride override_;
    store::FileStore *previous_;
    std::map<File, std::shared_ptr<ScriptedFile>> files_;
    std::vector<ScriptedSession *> sessions_;
    File lastFile_ = 0;
    std::size_t paceFiles_ = 0; // 0: no pace
    double paceMilliseconds_ = 0;
    bool held_ = false;
};

} // namespace sim::macos
