#include "simulator/macos/CoreFoundation/run_loop.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <limits>
#include <thread>
#include <vector>

using namespace sim::macos;
using namespace tests;

namespace {

// A loop in virtual time; everything added through it is taken away at the end.
class LoopTest : public Balanced {
public:
    ~LoopTest() {
        for (const RunLoop::Id id : ids)
            loop.Remove(id);
        CHECK_EQ(Run(0), kCFRunLoopRunFinished);
    }

    SInt32 Run(double seconds, bool returnAfterSource = false) {
        return CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds, returnAfterSource);
    }
    RunLoop::Id Keep(RunLoop::Id id) {
        ids.push_back(id);
        return id;
    }
    void Note(const std::string &what) {
        journal.push_back(what + " " + std::to_string(static_cast<int>(clock.Now())));
    }

    RunLoop &loop = RunLoop::Current();
    VirtualClock clock{1000};
    ClockOverride override{clock};
    std::vector<std::string> journal;
    std::vector<RunLoop::Id> ids;
};

using Journal = std::vector<std::string>;

struct Event {
    int descriptor = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    ~Event() { close(descriptor); }
    void Set() const { eventfd_write(descriptor, 1); }
    void Clear() const {
        eventfd_t ignored = 0;
        eventfd_read(descriptor, &ignored);
    }
};

} // namespace

TEST_CASE_FIXTURE(LoopTest, "A loop without sources and timers is finished at once") {
    CHECK_EQ(Run(5), kCFRunLoopRunFinished);
    CHECK_EQ(clock.Now(), 1000);
    CHECK_EQ(CFRunLoopGetCurrent(), CFRunLoopGetMain());
}

TEST_CASE_FIXTURE(LoopTest, "A mode that nothing belongs to is finished at once") {
    Keep(loop.AddSource([] {}));
    CHECK_EQ(CFRunLoopRunInMode(CFSTR("another mode"), 5, false), kCFRunLoopRunFinished);
    CHECK_EQ(CFRunLoopRunInMode(MakeString("kCFRunLoopDefaultMode").Get(), 5, false), kCFRunLoopRunTimedOut);
}

TEST_CASE_FIXTURE(LoopTest, "A run ends when its time is over") {
    Keep(loop.AddSource([] {}));
    CHECK_EQ(Run(5), kCFRunLoopRunTimedOut);
    CHECK_EQ(clock.Now(), 1005);
    CHECK_EQ(Run(0), kCFRunLoopRunTimedOut);
    CHECK_EQ(Run(-1), kCFRunLoopRunTimedOut);
    CHECK_EQ(clock.Now(), 1005);
}

TEST_CASE_FIXTURE(LoopTest, "Timers fire in the order of their times, at their times") {
    Keep(loop.AddTimer(1003, 0, [&] { Note("late"); }));
    Keep(loop.AddTimer(1001, 0, [&] { Note("early"); }));
    Keep(loop.AddTimer(1002, 0, [&] { Note("between"); }));
    Keep(loop.AddTimer(1020, 0, [&] { Note("never"); }));
    CHECK_EQ(Run(10), kCFRunLoopRunTimedOut);
    CHECK(journal == Journal{"early 1001", "between 1002", "late 1003"});
}

TEST_CASE_FIXTURE(LoopTest, "A timer that fired for the last time is gone, and the loop with it finished") {
    loop.AddTimer(1001, 0, [&] { Note("once"); });
    CHECK_EQ(Run(10), kCFRunLoopRunFinished);
    CHECK(journal == Journal{"once 1001"});
}

TEST_CASE_FIXTURE(LoopTest, "A repeating timer fires each interval and leaves out what it missed") {
    Keep(loop.AddTimer(1001, 2, [&] {
        Note("tick");
        if (journal.size() == 2)
            clock.Advance(5); // past 1005 and 1007
    }));
    CHECK_EQ(Run(10.5), kCFRunLoopRunTimedOut);
    CHECK(journal == Journal{"tick 1001", "tick 1003", "tick 1009"});
}

TEST_CASE_FIXTURE(LoopTest, "A timer can be moved and taken away") {
    const RunLoop::Id moved = Keep(loop.AddTimer(1001, 0, [&] { Note("moved"); }));
    loop.SetNextFiring(moved, 1004);
    const RunLoop::Id gone = loop.AddTimer(1002, 0, [&] { Note("gone"); });
    Keep(loop.AddTimer(1002, 0, [&] { loop.Remove(gone); }));
    loop.Remove(gone);
    CHECK_EQ(Run(10), kCFRunLoopRunFinished);
    CHECK(journal == Journal{"moved 1004"});
}

TEST_CASE_FIXTURE(LoopTest, "A source performs once for its signals, and a run that asked for it ends then") {
    const RunLoop::Id source = Keep(loop.AddSource([&] { Note("source"); }));
    CHECK_EQ(Run(0, true), kCFRunLoopRunTimedOut);
    loop.Signal(source);
    loop.Signal(source);
    CHECK_EQ(Run(5, true), kCFRunLoopRunHandledSource);
    CHECK_EQ(clock.Now(), 1000);
    CHECK_EQ(Run(5, true), kCFRunLoopRunTimedOut);
    CHECK(journal == Journal{"source 1000"});
}

TEST_CASE_FIXTURE(LoopTest, "A timer does not end a run that asked for a source") {
    Keep(loop.AddTimer(1001, 1, [&] { Note("tick"); }));
    CHECK_EQ(Run(2.5, true), kCFRunLoopRunTimedOut);
    CHECK(journal == Journal{"tick 1001", "tick 1002"});
}

TEST_CASE_FIXTURE(LoopTest, "A posted job runs in the next pass, a job that it posts in the one after") {
    Keep(loop.AddSource([] {}));
    loop.Post([&] {
        Note("first");
        loop.Post([&] { Note("second"); });
    });
    CHECK(journal.empty());
    CHECK_EQ(Run(0, true), kCFRunLoopRunHandledSource);
    CHECK(journal == Journal{"first 1000"});
    CHECK_EQ(Run(0), kCFRunLoopRunTimedOut);
    CHECK(journal == Journal{"first 1000", "second 1000"});
}

TEST_CASE_FIXTURE(LoopTest, "A descriptor that can be read is a source, and costs virtual time nothing") {
    const Event event;
    Keep(loop.AddDescriptor(event.descriptor, [&] {
        Note("readable");
        event.Clear();
    }));
    Keep(loop.AddTimer(1002, 0, [&] {
        Note("setting");
        event.Set();
    }));
    CHECK_EQ(Run(5, true), kCFRunLoopRunHandledSource);
    CHECK(journal == Journal{"setting 1002", "readable 1002"});
    CHECK_EQ(clock.Now(), 1002);
    CHECK_EQ(Run(5, true), kCFRunLoopRunTimedOut);
}

TEST_CASE_FIXTURE(LoopTest,
                  "Stopping ends the innermost run only, and stopping what does not run has no effect later") {
    Keep(loop.AddSource([] {}));
    CFRunLoopStop(CFRunLoopGetCurrent());
    CHECK_EQ(Run(1), kCFRunLoopRunTimedOut);
    loop.Post([&] {
        Note("outer");
        loop.Post([&] { CFRunLoopStop(CFRunLoopGetCurrent()); });
        CHECK_EQ(Run(100), kCFRunLoopRunStopped);
        Note("back");
    });
    CHECK_EQ(Run(3), kCFRunLoopRunTimedOut);
    CHECK(journal == Journal{"outer 1001", "back 1001"});
    loop.Post([&] { CFRunLoopStop(CFRunLoopGetCurrent()); });
    CHECK_EQ(Run(3), kCFRunLoopRunStopped);
}

TEST_CASE_FIXTURE(LoopTest, "A run inside a callback serves everything but that callback") {
    Keep(loop.AddTimer(1001, 1, [&] {
        Note("outer");
        if (journal.size() < 3)
            Run(2.5);
    }));
    Keep(loop.AddTimer(1002, 0, [&] { Note("inner"); }));
    CHECK_EQ(Run(1.5), kCFRunLoopRunTimedOut);
    CHECK(journal == Journal{"outer 1001", "inner 1002"});
}

TEST_CASE_FIXTURE(LoopTest, "Waiting for ever in virtual time is refused") {
    Keep(loop.AddSource([] {}));
    CHECK_EQ(RefusalOf([&] { Run(1e10); }), "a run loop waits for ever in virtual time");
}

TEST_CASE_FIXTURE(Balanced, "A job posted from another thread wakes a loop that waits in real time") {
    RunLoop &loop = RunLoop::Current();
    std::thread::id ranIn;
    const RunLoop::Id source = loop.AddSource([] {});
    std::thread other([&] { loop.Post([&] { ranIn = std::this_thread::get_id(); }); });
    CHECK_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, std::numeric_limits<double>::infinity(), true),
             kCFRunLoopRunHandledSource);
    other.join();
    CHECK(ranIn == std::this_thread::get_id());
    loop.Remove(source);
}

TEST_CASE_FIXTURE(Balanced, "Another thread has a loop of its own and can stop the main one") {
    RunLoop &loop = RunLoop::Main();
    const RunLoop::Id source = loop.AddSource([] {});
    bool isAnother = false;
    std::thread other;
    loop.Post([&] {
        other = std::thread([&] {
            isAnother = CFRunLoopGetCurrent() != CFRunLoopGetMain();
            CFRunLoopStop(CFRunLoopGetMain());
        });
    });
    CHECK_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1e10, false), kCFRunLoopRunStopped);
    other.join();
    CHECK(isAnother);
    loop.Remove(source);
}
