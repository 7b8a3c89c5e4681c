// What the tests of this folder share: a fixture that fails a test which leaves a reference out of balance, words for
// making and reading values, and a folder of its own for tests that touch files.
#pragma once

#include "simulator/macos/CoreFoundation/ledger.h"
#include "simulator/macos/CoreFoundation/ref.h"
#include "simulator/macos/CoreFoundation/text.h"

#include <Carbon/Carbon.h>
#include <doctest/doctest.h>

#include <filesystem>
#include <functional>
#include <string>

namespace sim::macos::tests {

/// Every test starts with no failures planned and the usual system, and ends with the references it began with.
class Balanced {
public:
    Balanced();
    ~Balanced();

private:
    ledger::Snapshot before_;
    std::size_t registrationsBefore_;
};

/// What the frameworks say when they refuse the call; empty when they do not.
std::string RefusalOf(const std::function<void()> &call);

bool Contains(const std::string &text, const std::string &part);

CFRef<CFURLRef> UrlFrom(const std::string &text);
std::string TextOf(CFURLRef url);

/// An empty folder that is gone after the test.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

    std::string Path(const std::string &name = {}) const;
    /// The path of a new file in the folder.
    std::string File(const std::string &name) const;
    /// The path of a new folder in the folder.
    std::string Subfolder(const std::string &name) const;

private:
    std::filesystem::path path_;
};

} // namespace sim::macos::tests
