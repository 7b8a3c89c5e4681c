// A folder of real files with a live query over all that is in it.
#pragma once

#include "tests/simulator/macos/query/support/test_query.h"
#include "tests/simulator/macos/support/balance.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace sim::macos {

struct LiveFolder {
    tests::Balanced balance;
    tests::TemporaryFolder folder;
    TestQuery query{"kMDItemFSName == '*'"};
    Listener listener{query.Get()};

    LiveFolder() { query.SetScope({folder.Path()}); }

    /// Gathers, makes all result objects, and forgets what was heard.
    void Gather() {
        REQUIRE(query.Execute(kMDQueryWantsUpdates));
        REQUIRE(RunUntil([this] { return listener.HasFinished(); }));
        query.Results();
        listener.heard.clear();
    }

    void RunUntilResultsAre(FileNames expected) {
        std::sort(expected.begin(), expected.end());
        RunUntil([&] { return query.SortedResults() == expected; });
        CHECK(query.SortedResults() == expected);
    }
};

inline void Write(const std::string &path, std::string_view text) { std::ofstream(path) << text; }

} // namespace sim::macos
