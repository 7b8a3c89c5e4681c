// What the tests of this folder share: a fixture that fails a test which leaves something behind, words for making and
// reading values, and a folder of its own for tests that touch files.
#pragma once

#include "simulator/macos/CoreFoundation/ref.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "tests/simulator/macos/support/balance.h"
#include "tests/support/temporary_folder.h"

#include <Carbon/Carbon.h>
#include <doctest/doctest.h>

#include <functional>
#include <string>

namespace tests {

/// What the frameworks say when they refuse the call; empty when they do not.
std::string RefusalOf(const std::function<void()> &call);

bool Contains(const std::string &text, const std::string &part);

sim::macos::CFRef<CFURLRef> UrlFrom(const std::string &text);
std::string TextOf(CFURLRef url);

/// Empty, of the usual callbacks.
sim::macos::CFRef<CFMutableDictionaryRef> NewDictionary();

} // namespace tests
