// The store's view of real files, step by step: what can be told apart by when something is told.
#include "simulator/macos/CoreServices/metadata/store/machine_session.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <poll.h>

namespace sim::macos {

namespace {

using store::FileEvent;
using store::FileTimeNow;
using store::MachineSession;
using store::Session;

/// Works until there is an event, waiting for messages in between.
FileEvent NextEvent(MachineSession &session) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    FileEvent event;
    for (;;) {
        REQUIRE(std::chrono::steady_clock::now() < deadline);
        const auto step = session.Next(event);
        if (step == Session::Step::kEvent)
            return event;
        pollfd waiting{session.Descriptor(), POLLIN, 0};
        if (step == Session::Step::kIdle)
            poll(&waiting, 1, 1000);
    }
}

void Gather(MachineSession &session) {
    FileEvent event;
    while (!session.Gathered())
        session.Next(event);
}

} // namespace

TEST_CASE("a file that was written a moment ago is told of when any later change would show") {
    tests::TemporaryFolder folder;
    MachineSession session({{folder.Path()}}, true);
    Gather(session);
    const std::string path = folder.File("a", "x");
    const FileEvent event = NextEvent(session);
    CHECK(event.kind == FileEvent::Kind::kFound);
    CHECK(store::IsSettled(*store::ReadFileState(path), FileTimeNow()));
    std::ofstream(path) << "y"; // of the same size
    CHECK(NextEvent(session).kind == FileEvent::Kind::kChanged);
}

TEST_CASE("a file that lost its name is given time to get another") {
    tests::TemporaryFolder folder;
    tests::TemporaryFolder outside;
    const std::string path = folder.File("a", "x");
    MachineSession session({{folder.Path()}}, true);
    Gather(session);
    const store::FileTime before = FileTimeNow();
    std::filesystem::rename(path, outside.PathOf("a"));
    CHECK(NextEvent(session).kind == FileEvent::Kind::kLost);
    CHECK(FileTimeNow() - before >= 20 * store::kMillisecond);
}

TEST_CASE("a renamed file is told of at once, with its old identity and its new path") {
    tests::TemporaryFolder folder;
    const std::string path = folder.File("a", "x");
    MachineSession session({{folder.Path()}}, true);
    FileEvent found;
    while (session.Next(found) != Session::Step::kEvent) {
    }
    Gather(session);
    std::filesystem::rename(path, folder.PathOf("b"));
    const FileEvent changed = NextEvent(session);
    CHECK(changed.kind == FileEvent::Kind::kChanged);
    CHECK(changed.file == found.file);
    CHECK(changed.source->Path() == folder.PathOf("b"));
    CHECK(changed.source->Identity() == found.file);
}

TEST_CASE("a session that is not live gathers and is over") {
    tests::TemporaryFolder folder;
    folder.File("a", "x");
    MachineSession session({{folder.Path()}}, false);
    CHECK(session.Descriptor() == -1);
    CHECK(NextEvent(session).kind == FileEvent::Kind::kFound);
    Gather(session);
    folder.File("b", "x");
    FileEvent event;
    CHECK(session.Next(event) == Session::Step::kIdle);
}

TEST_CASE("a session whose folder is not there gathers nothing") {
    MachineSession session({{"/nowhere/at/all"}}, false);
    Gather(session);
    FileEvent event;
    CHECK(session.Next(event) == Session::Step::kIdle);
}

} // namespace sim::macos
