#include "tests/simulator/macos/query/support/test_query.h"

#include "simulator/macos/CoreFoundation/array.h"
#include "simulator/macos/CoreServices/metadata/items/item.h"
#include "tests/simulator/macos/query/support/values.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <chrono>

namespace sim::macos {

namespace {

FileNames NamesIn(CFDictionaryRef userInfo, CFStringRef key) {
    FileNames names;
    const void *array = userInfo ? CFDictionaryGetValue(userInfo, key) : nullptr;
    if (!array)
        return names;
    for (const void *item : ValuesOf(static_cast<CFArrayRef>(array)))
        names.push_back(NameOf(item));
    return names;
}

Notification::Kind KindOf(CFStringRef name) {
    if (CFEqual(name, kMDQueryProgressNotification))
        return Notification::Kind::kProgress;
    if (CFEqual(name, kMDQueryDidFinishNotification))
        return Notification::Kind::kFinish;
    REQUIRE(CFEqual(name, kMDQueryDidUpdateNotification));
    return Notification::Kind::kUpdate;
}

CFRef<CFArrayRef> NamesOrNone(NameList names) { return names.size() == 0 ? CFRef<CFArrayRef>() : Names(names); }

CFRef<MDQueryRef> Created(MDQueryRef source, std::string_view expression, NameList valueNames, NameList sortNames) {
    const auto text = MakeString(expression);
    const auto values = NamesOrNone(valueNames);
    const auto sorting = NamesOrNone(sortNames);
    auto query =
        CFRef<MDQueryRef>::Adopt(source ? MDQueryCreateSubset(nullptr, source, text.Get(), values.Get(), sorting.Get())
                                        : MDQueryCreate(nullptr, text.Get(), values.Get(), sorting.Get()));
    REQUIRE_MESSAGE(query, expression);
    return query;
}

} // namespace

std::string NameOf(const void *item) {
    const std::string path = Item::From(static_cast<MDItemRef>(const_cast<void *>(item)))->Source().Path();
    return path.substr(path.rfind('/') + 1);
}

Listener::Listener(MDQueryRef query) {
    const auto center = CFNotificationCenterGetLocalCenter();
    for (CFStringRef name :
         {kMDQueryProgressNotification, kMDQueryDidUpdateNotification, kMDQueryDidFinishNotification})
        CFNotificationCenterAddObserver(center, this, Hear, name, query,
                                        CFNotificationSuspensionBehaviorDeliverImmediately);
}

void Listener::StopListening() { CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetLocalCenter(), this); }

void Listener::Hear(CFNotificationCenterRef, void *observer, CFStringRef name, const void *object,
                    CFDictionaryRef userInfo) {
    auto &listener = *static_cast<Listener *>(observer);
    const auto query = static_cast<MDQueryRef>(const_cast<void *>(object));
    Notification notification{KindOf(name),
                              userInfo != nullptr,
                              NamesIn(userInfo, kMDQueryUpdateAddedItems),
                              NamesIn(userInfo, kMDQueryUpdateChangedItems),
                              NamesIn(userInfo, kMDQueryUpdateRemovedItems),
                              MDQueryGetResultCount(query)};
    listener.heard.push_back(notification);
    if (const auto handler = listener.handler)
        handler(notification, userInfo);
}

std::size_t Listener::CountOf(Notification::Kind kind) const {
    return static_cast<std::size_t>(
        std::count_if(heard.begin(), heard.end(), [kind](const Notification &each) { return each.kind == kind; }));
}

FileNames Listener::All(FileNames Notification::*list) const {
    FileNames all;
    for (const Notification &each : heard)
        all.insert(all.end(), (each.*list).begin(), (each.*list).end());
    std::sort(all.begin(), all.end());
    return all;
}

TestQuery::TestQuery(std::string_view expression, NameList valueNames, NameList sortNames)
    : query_(Created(nullptr, expression, valueNames, sortNames)) {}

TestQuery::TestQuery(const TestQuery &source, std::string_view expression, NameList valueNames, NameList sortNames)
    : query_(Created(source.Get(), expression, valueNames, sortNames)) {}

void TestQuery::SetScope(std::initializer_list<std::string_view> entries) {
    MDQuerySetSearchScope(Get(), Names(entries).Get(), 0);
}

FileNames TestQuery::Results() const {
    FileNames names;
    for (CFIndex index = 0; index < Count(); ++index)
        names.push_back(NameOf(MDQueryGetResultAtIndex(Get(), index)));
    return names;
}

FileNames TestQuery::SortedResults() const {
    FileNames names = Results();
    std::sort(names.begin(), names.end());
    return names;
}

bool RunUntil(const std::function<bool()> &condition) {
    using std::chrono::steady_clock;
    const auto deadline = steady_clock::now() + std::chrono::minutes(10);
    while (!condition()) {
        if (steady_clock::now() > deadline)
            return false;
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1, true);
    }
    return true;
}

} // namespace sim::macos
