// Where deeds are done: a host with the library, and a store of a few files whose attributes are of every kind.
#pragma once

#include "simulator/macos/CoreServices/metadata/store/scripted_store.h"
#include "simulator/session/session.h"

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace tests::faults {

struct Setting {
    std::filesystem::path plugin;
    /// 0: the host does not tell.
    double version = 0;
    std::set<std::string, std::less<>> withheld = {};
    /// Keeps the text of every call of the host.
    bool recordsCalls = false;
    /// What dies leaves its place to others at once: for long runs, at the cost of catching less.
    bool reusesAddresses = false;
    /// Ends after loading; the stage calls for Start itself.
    bool start = true;
};

/// The ages at which something about hosts changed.
inline constexpr double kAges[] = {0, 2011.4, 2012.5, 2013.0, 2013.04, 2016.1};

/// One attribute of each kind, and one that no file has.
inline constexpr const char *kAttributes[] = {
    "kMDItemTitle",       "kMDItemAltitude",   "kMDItemContentCreationDate", "kMDItemAuthors",   "kMDItemCoverage",
    "kMDItemInformation", "kMDItemWhereFroms", "kMDItemIsLikelyJunk",        "kMDItemLabelIcon", "kMDItemNoSuch"};

class Stage {
public:
    explicit Stage(const Setting &setting);

    sim::macos::ScriptedStore store;
    sim::Session session;

    sim::host::Host &Host() { return session.Host(); }
    /// Whether the library registered a class of that name; or, for "", what belongs to no class.
    bool Has(const std::string &className);
    sim::host::Object Strings(const std::vector<sim::host::Value> &texts);
    sim::host::Object NewItem();
    /// Constructed with every attribute in its value lists; executed where that is asked for.
    sim::host::Object NewQuery(bool gathers);
    /// What is out of balance, and was not when this was last asked. Without the host's own means of letting go,
    /// things that nobody gives up are left out.
    std::vector<std::string> NewlyOutOfBalance();

private:
    /// In the store, before the books of the session are opened.
    sim::SessionOptions Filled(const Setting &setting);

    bool letsGo_;
    std::set<std::string> known_;
};

} // namespace tests::faults
