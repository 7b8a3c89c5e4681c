// One plugin at work: the stand-in system and a stand-in host, each knowing nothing of the other, brought together
// around one loaded image, as a running application brings the real ones together. What needs the whole (the command
// line tool, tests through the front door) starts here.
#pragma once

#include "simulator/host/host.h"
#include "simulator/loader/plugin_image.h"
#include "simulator/macos/CoreFoundation/ledger.h"
#include "simulator/session/system_files.h"

#include <filesystem>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace sim {

struct SessionOptions {
    /// The library that ships, or the native build of the same sources.
    std::filesystem::path plugin;
    /// The session fills in what connects a host to a system where it is left empty: `files`, `makeCFString`, and what
    /// companions' wrappers do with their reference when they die.
    host::HostOptions host = {};
    /// C names of symbols that the running system lacks. What is found by name at run time is the system's own affair.
    std::set<std::string> absentSymbols = {};
    /// Hears of the plugin's calls of the system; borrowed for the life of the session.
    loader::ImportWatch *watch = nullptr;
    /// Ends after loading; the test calls Start itself.
    bool start = true;
};

class Session {
public:
    /// Takes a copy of the plugin in its first state and starts it. Throws loader::LoadError.
    explicit Session(SessionOptions options);
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;
    /// Objects and values of the host must be gone. The plugin's code is out of reach afterwards.
    ~Session();

    host::Host &Host() { return host_; }
    const loader::PluginImage &Plugin() const { return plugin_; }

    /// Calls the plugin's entry point. Done already unless the options say otherwise.
    void Start();

    /// Lets the main run loop work for at most that long, and returns early once it has handled something. False when
    /// nothing happened.
    bool RunLoop(double seconds);

    /// One line for each host reference, each Core Foundation object and the observers that are out of balance: what
    /// was made since the plugin was started and is still alive, or was released once too often. Empty when all is
    /// well.
    std::vector<std::string> Balance() const;
    /// The same, but of a reference or an object that is out of balance alike each time this tells once.
    std::vector<std::string> NewlyOutOfBalance();

private:
    void AddSystemBalance(std::vector<std::string> &lines, const macos::ledger::Difference &difference) const;
    void NoteBalance();
    host::HostOptions Connected(host::HostOptions options);

    SystemFiles files_;
    loader::PluginImage plugin_;
    host::Host host_;
    macos::ledger::Snapshot before_;
    /// The retain counts that NewlyOutOfBalance told of, by serial number.
    std::unordered_map<uint64_t, CFIndex> told_;
    size_t observersBefore_ = 0;
};

} // namespace sim
