#include "simulator/macos/CoreFoundation/dictionary.h"
#include "simulator/macos/CoreFoundation/notifications.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <functional>
#include <vector>

using namespace sim::macos;
using namespace tests;

namespace {

constexpr CFNotificationSuspensionBehavior kImmediately = CFNotificationSuspensionBehaviorDeliverImmediately;

// An observer that writes down what it gets, and may do something meanwhile.
struct Observer {
    std::string name;
    std::vector<std::string> *journal;
    std::function<void()> meanwhile;

    Observer(std::string observerName, std::vector<std::string> &list)
        : name(std::move(observerName)), journal(&list) {}
    ~Observer() { CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetLocalCenter(), this); }
    Observer(const Observer &) = delete;
    Observer &operator=(const Observer &) = delete;

    void Observe(CFStringRef notification, const void *object = nullptr) {
        CFNotificationCenterAddObserver(CFNotificationCenterGetLocalCenter(), this, Receive, notification, object,
                                        kImmediately);
    }

    static void Receive(CFNotificationCenterRef center, void *observer, CFStringRef notification, const void *,
                        CFDictionaryRef) {
        CHECK_EQ(center, CFNotificationCenterGetLocalCenter());
        auto *self = static_cast<Observer *>(observer);
        self->journal->push_back(self->name + " " + Utf8Of(notification));
        if (self->meanwhile)
            self->meanwhile();
    }
};

void Post(CFStringRef notification, const void *object = nullptr, CFDictionaryRef info = nullptr) {
    CFNotificationCenterPostNotification(CFNotificationCenterGetLocalCenter(), notification, object, info, true);
}

using Journal = std::vector<std::string>;

} // namespace

TEST_CASE_FIXTURE(Balanced, "An observer registered for one object gets only that object's notifications") {
    Journal journal;
    const int mine = 0;
    const int other = 0;
    Observer observer("one", journal);
    observer.Observe(CFSTR("news"), &mine);
    Post(CFSTR("news"), &other);
    CHECK(journal.empty());
    Post(CFSTR("news"), &mine);
    CHECK(journal == Journal{"one news"});
}

TEST_CASE_FIXTURE(Balanced, "Posting without an object reaches none of those registered with one") {
    Journal journal;
    const int mine = 0;
    Observer with("with", journal);
    Observer without("without", journal);
    with.Observe(CFSTR("news"), &mine);
    without.Observe(CFSTR("news"));
    Post(CFSTR("news"));
    CHECK(journal == Journal{"without news"});
    Post(CFSTR("news"), &mine);
    CHECK(journal == Journal{"without news", "with news", "without news"});
}

TEST_CASE_FIXTURE(Balanced, "Removing every entry of an observer removes them for all names and objects") {
    Journal journal;
    const int mine = 0;
    Observer one("one", journal);
    Observer other("other", journal);
    one.Observe(CFSTR("a"), &mine);
    one.Observe(CFSTR("b"));
    one.Observe(CFSTR("c"), &mine);
    other.Observe(CFSTR("b"));
    CHECK_EQ(notifications::RegistrationCount(&one), 3);
    CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetLocalCenter(), &one);
    CHECK_EQ(notifications::RegistrationCount(&one), 0);
    for (const CFStringRef name : {CFSTR("a"), CFSTR("b"), CFSTR("c")})
        Post(name, &mine);
    CHECK(journal == Journal{"other b"});
}

TEST_CASE_FIXTURE(Balanced, "Observers hear in the order of their registration, each as often as it is registered") {
    Journal journal;
    Observer first("first", journal);
    Observer second("second", journal);
    second.Observe(CFSTR("news"));
    first.Observe(CFSTR("news"));
    second.Observe(CFSTR("news"));
    Post(CFSTR("news"));
    CHECK(journal == Journal{"second news", "first news", "second news"});
}

TEST_CASE_FIXTURE(Balanced, "A name is its text, and no name is every name") {
    Journal journal;
    Observer one("one", journal);
    Observer all("all", journal);
    one.Observe(MakeString("news").Get());
    all.Observe(nullptr);
    Post(CFSTR("news"));
    Post(CFSTR("weather"));
    CHECK(journal == Journal{"one news", "all news", "all weather"});
}

TEST_CASE_FIXTURE(Balanced, "An observer removed while a post is going on gets nothing more of it") {
    Journal journal;
    Observer first("first", journal);
    Observer second("second", journal);
    first.Observe(CFSTR("news"));
    second.Observe(CFSTR("news"));
    first.Observe(CFSTR("news"));
    first.meanwhile = [&] {
        CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetLocalCenter(), &second);
        CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetLocalCenter(), &first);
    };
    Post(CFSTR("news"));
    CHECK(journal == Journal{"first news"});
}

TEST_CASE_FIXTURE(Balanced, "An observer added while a post is going on waits for the next") {
    Journal journal;
    Observer first("first", journal);
    Observer second("second", journal);
    first.Observe(CFSTR("news"));
    first.meanwhile = [&] {
        first.meanwhile = nullptr;
        second.Observe(CFSTR("news"));
    };
    Post(CFSTR("news"));
    CHECK(journal == Journal{"first news"});
    Post(CFSTR("news"));
    CHECK(journal == Journal{"first news", "first news", "second news"});
}

TEST_CASE_FIXTURE(Balanced, "A callback may post, and what it posts is delivered before it goes on") {
    Journal journal;
    Observer first("first", journal);
    Observer second("second", journal);
    first.Observe(CFSTR("outer"));
    second.Observe(CFSTR("outer"));
    second.Observe(CFSTR("inner"));
    first.meanwhile = [&] { Post(CFSTR("inner")); };
    Post(CFSTR("outer"));
    CHECK(journal == Journal{"first outer", "second inner", "second outer"});
}

TEST_CASE_FIXTURE(Balanced,
                  "Name, object and information arrive as they were posted, and the information outlives the post") {
    struct Seen {
        const void *object = nullptr;
        CFDictionaryRef info = nullptr;
    } seen;
    const int object = 0;
    CFNotificationCenterAddObserver(
        CFNotificationCenterGetLocalCenter(), &seen,
        [](CFNotificationCenterRef, void *observer, CFStringRef, const void *from, CFDictionaryRef info) {
            *static_cast<Seen *>(observer) = {from, info};
            CHECK_GE(CFGetRetainCount(info), 2);
        },
        CFSTR("news"), nullptr, kImmediately);
    const auto info = MakeDictionary({});
    Post(CFSTR("news"), &object, info.Get());
    CHECK_EQ(seen.object, &object);
    CHECK_EQ(seen.info, info.Get());
    CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetLocalCenter(), &seen);
}

TEST_CASE_FIXTURE(Balanced, "An unknown suspension behaviour, no callback and another centre are refused") {
    const auto center = CFNotificationCenterGetLocalCenter();
    CHECK(Contains(RefusalOf([&] {
                       CFNotificationCenterAddObserver(center, nullptr, Observer::Receive, CFSTR("news"), nullptr,
                                                       static_cast<CFNotificationSuspensionBehavior>(5));
                   }),
                   "unknown suspension behaviour 5"));
    CHECK(Contains(RefusalOf([&] {
                       CFNotificationCenterAddObserver(center, nullptr, nullptr, CFSTR("news"), nullptr, kImmediately);
                   }),
                   "no callback"));
    CHECK(Contains(RefusalOf([&] { CFNotificationCenterRemoveEveryObserver(nullptr, nullptr); }), "null"));
}
