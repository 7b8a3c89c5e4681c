// A host program that queries scripted files: virtual files, virtual time, and the host language's way of saying what a
// query is made of and what it reports. Files live in the folder /files and are named by the last part of their path.
#pragma once

#include "simulator/macos/CoreFoundation/ref.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreServices/metadata/store/scripted_store.h"
#include "tests/support/printed_lists.h"
#include "tests/support/test_session.h"

#include <CoreServices/CoreServices.h>

#include <doctest/doctest.h>

#include <map>
#include <string>
#include <vector>

namespace tests {

using sim::host::EventCall;
using sim::host::HostOptions;
using sim::host::Object;
using sim::host::Value;
using sim::macos::CFRef;
using sim::macos::MakeString;

using Names = std::vector<std::string>;

/// Text that no CFString can hold.
inline const sim::host::Text kMalformed{"\xC0\xAF", sim::host::kUTF8};

/// What is behind the Handle of a query or an item, borrowed; null for none.
MDQueryRef QueryOf(const Object &query);
MDItemRef ItemOf(const Object &item);

/// The names of the files of an array of items, in its order; "(nil)" where it has none.
Names NamesIn(const Object &items);

/// The texts of a CFArray of strings; URLs as their text.
Names TextsIn(CFArrayRef array);

CFRef<CFArrayRef> ArrayOfItems(const std::vector<MDItemRef> &items);

constexpr int32_t kNoLimit = 1000000;
constexpr const char *kNilQuery = "NilObjectException: MDQuery Reference is nil";
constexpr const char *kNilItem = "NilObjectException: MDItem Reference is nil";

class QueryProgram : public TestSession {
public:
    explicit QueryProgram(HostOptions host = {}, std::set<std::string> absentSymbols = {})
        : TestSession(std::move(host), std::move(absentSymbols)) {}
    explicit QueryProgram(double version) : TestSession(version) {}
    /// No observer may be left.
    ~QueryProgram();

    using File = sim::macos::ScriptedStore::File;

    sim::macos::ScriptedStore store;

    /// A file in /files.
    File Add(const std::string &name);
    void Add(std::initializer_list<const char *> names);
    File FileNamed(const std::string &name) const { return files_.at(name); }
    void Touch(const std::string &name) { store.Touch(FileNamed(name)); }
    void Remove(const std::string &name) { store.Remove(FileNamed(name)); }

    Object Strings(const Names &texts);
    Object FolderItems(const Names &paths);

    /// Constructed by its text alone, or with lists of attributes. What happens between two runs of the loop
    /// is one batch.
    Object NewQuery(const std::string &text = "kMDItemFSName == '*'");
    Object NewQuery(const std::string &text, const Names &valueList, const Names &sorting = {});
    /// Another item object for the file, not one of a query's.
    Object NewItem(File file);
    /// In the order of the class's properties.
    void SetBatches(const Object &query, const std::vector<int32_t> &parameters);

    /// Runs until what has happened is reported.
    void Settle() { store.Run(10); }
    /// Executes with updates and gathers.
    void GoLive(const Object &query);
    /// Gathers without updates.
    void Gather(const Object &query);

    static Names Results(Object &query, int32_t limit = -1) { return NamesIn(query.Call<Object>("Results", limit)); }

private:
    std::map<std::string, File> files_;
};

} // namespace tests
