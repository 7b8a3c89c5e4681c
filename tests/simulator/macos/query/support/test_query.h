// A query as a program has it, and what it hears of it. Items are named by the last part of their path.
#pragma once

#include "simulator/macos/CoreFoundation/ref.h"

#include <CoreServices/CoreServices.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace sim::macos {

using FileNames = std::vector<std::string>;

/// The last part of the path of an item's file.
std::string NameOf(const void *item);

struct Notification {
    enum class Kind { kProgress, kFinish, kUpdate };
    Kind kind;
    bool hasUserInfo = false;
    FileNames added;
    FileNames changed;
    FileNames removed;
    CFIndex count = 0; // of results at that moment

    friend bool operator==(const Notification &, const Notification &) = default;
};

/// Hears every notification of one query for as long as it lives, or until it is told to stop listening.
class Listener {
public:
    explicit Listener(MDQueryRef query);
    ~Listener() { StopListening(); }
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;

    void StopListening();

    std::vector<Notification> heard;
    /// Called for each notification after it was noted.
    std::function<void(const Notification &, CFDictionaryRef)> handler;

    std::size_t CountOf(Notification::Kind kind) const;
    bool HasFinished() const { return CountOf(Notification::Kind::kFinish) > 0; }

    /// All names in one list of all notifications heard, sorted.
    FileNames AllAdded() const { return All(&Notification::added); }
    FileNames AllChanged() const { return All(&Notification::changed); }
    FileNames AllRemoved() const { return All(&Notification::removed); }

private:
    static void Hear(CFNotificationCenterRef center, void *observer, CFStringRef name, const void *object,
                     CFDictionaryRef userInfo);
    FileNames All(FileNames Notification::*list) const;
};

using NameList = std::initializer_list<std::string_view>;

class TestQuery {
public:
    /// The expression must be well formed.
    explicit TestQuery(std::string_view expression, NameList valueNames = {}, NameList sortNames = {});
    TestQuery(const TestQuery &source, std::string_view expression, NameList valueNames = {}, NameList sortNames = {});

    MDQueryRef Get() const { return query_.Get(); }
    /// Gives up the reference.
    void Release() { query_ = {}; }

    bool Execute(CFOptionFlags flags) { return MDQueryExecute(Get(), flags) != 0; }
    void SetScope(std::initializer_list<std::string_view> entries);
    void SetBatches(MDQueryBatchingParams parameters) { MDQuerySetBatchingParameters(Get(), parameters); }
    CFIndex Count() const { return MDQueryGetResultCount(Get()); }
    bool IsComplete() const { return MDQueryIsGatheringComplete(Get()) != 0; }
    /// In their order.
    FileNames Results() const;
    FileNames SortedResults() const;

private:
    CFRef<MDQueryRef> query_;
};

/// Runs the run loop until the condition holds; false when it does not within a time that is ample for any machine.
bool RunUntil(const std::function<bool()> &condition);

} // namespace sim::macos
