#include "tests/spotlight/support/event_log.h"

#include <algorithm>

namespace tests {

int EventLog::CountOf(const std::string &name) const {
    return static_cast<int>(std::count_if(heard.begin(), heard.end(), [&](const Event &e) { return e.name == name; }));
}

void EventLog::Hear(const EventCall &call) {
    Event event{call.name};
    if (call.name == "Finish") {
        CHECK(call.arguments.empty());
    } else {
        REQUIRE(call.arguments.size() == 3);
        Names *const lists[] = {&event.added, &event.changed, &event.removed};
        for (size_t i = 0; i < 3; i++) {
            const auto items = call.arguments[i].As<Object>();
            REQUIRE(items); // never nil
            *lists[i] = NamesIn(items);
        }
    }
    heard.push_back(std::move(event));
    // The handler may end this log along with the query.
    if (const auto then = then_)
        then(call);
}

void Post(CFStringRef name, const Object &query, CFDictionaryRef userInfo) {
    CFNotificationCenterPostNotification(CFNotificationCenterGetLocalCenter(), name, QueryOf(query), userInfo, false);
}

} // namespace tests

namespace doctest {

String StringMaker<tests::Event>::convert(const tests::Event &event) {
    std::string text = event.name;
    const auto list = [&text](const char *mark, const tests::Names &names) {
        for (const std::string &name : names)
            text += std::string(" ") + mark + name;
    };
    list("+", event.added);
    list("~", event.changed);
    list("-", event.removed);
    return text.c_str();
}

} // namespace doctest
