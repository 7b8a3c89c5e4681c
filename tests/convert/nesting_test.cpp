// Values that are nested ten thousand deep, on a thread with the stack that threads usually have.
#include "tests/convert/value_session.h"

#include <doctest/doctest.h>

#include <functional>
#include <pthread.h>

using sim::host::Object;
using sim::host::Value;
using tests::CoreValue;

namespace {

constexpr int kLevels = 10'000;

/// What a thread has by itself. Of the instrumented build, whose frames are several times as large, that says nothing.
size_t UsualStack() {
    constexpr size_t kUsual = 8 << 20;
    return tests::PluginPath().extension() == ".dylib" ? kUsual : 4 * kUsual;
}

/// Runs the work on a thread of its own.
void OnThread(const std::function<void()> &work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    REQUIRE(pthread_attr_setstacksize(&attributes, UsualStack()) == 0);
    pthread_t thread;
    const auto run = [](void *context) -> void * {
        (*static_cast<const std::function<void()> *>(context))();
        return nullptr;
    };
    REQUIRE(pthread_create(&thread, &attributes, run, const_cast<std::function<void()> *>(&work)) == 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

template <class Wrap> CoreValue NestedInCore(Wrap wrap) {
    CoreValue value = tests::CoreText("innermost");
    for (int i = 0; i < kLevels; i++)
        value = wrap(std::move(value));
    return value;
}

template <class Wrap> Value NestedInHost(Wrap wrap) {
    Value value = "innermost";
    for (int i = 0; i < kLevels; i++)
        value = wrap(value);
    return value;
}

/// A session on a thread of its own; what a test makes dies there, too.
void InSession(std::initializer_list<double> versions, const std::function<void(tests::ValueSession &)> &work) {
    for (const double version : versions)
        OnThread([&] {
            sim::host::HostOptions options;
            options.version = version;
            options.recordCalls = false;
            tests::ValueSession session(options);
            work(session);
        });
}

} // namespace

TEST_CASE("Core Foundation arrays ten thousand deep reach the host whole") {
    InSession({2013.04, 2016.0}, [](tests::ValueSession &session) {
        const auto nested = NestedInCore([](CoreValue value) { return tests::CoreArray({value.Get()}); });
        Value value = session.ToHost(nested);
        int levels = 0;
        for (; value.Is<Object>(); levels++)
            value = value.As<Object>().At(0);
        CHECK(levels == kLevels);
        CHECK(value == Value("innermost"));
    });
}

TEST_CASE("Core Foundation dictionaries ten thousand deep reach the host whole") {
    InSession({2016.0}, [](tests::ValueSession &session) {
        const auto nested = NestedInCore([](CoreValue value) {
            return tests::CoreDictionary({{tests::CoreText("key"), std::move(value)}});
        });
        Value value = session.ToHost(nested);
        int levels = 0;
        for (; value.Is<Object>(); levels++)
            value = value.As<Object>().Lookup("key");
        CHECK(levels == kLevels);
        CHECK(value == Value("innermost"));
    });
}

TEST_CASE("Host arrays ten thousand deep reach Core Foundation whole") {
    InSession({2013.04, 2016.0}, [](tests::ValueSession &session) {
        const auto nested =
            NestedInHost([&](const Value &value) { return session.Host().NewArray("variant", {value}); });
        const CoreValue converted = session.FromHost(nested);
        CFTypeRef value = converted.Get();
        int levels = 0;
        for (; CFGetTypeID(value) == CFArrayGetTypeID(); levels++)
            value = CFArrayGetValueAtIndex(static_cast<CFArrayRef>(value), 0);
        CHECK(levels == kLevels);
        CHECK(tests::TextOf(value) == "\"innermost\"");
    });
}

TEST_CASE("Host dictionaries ten thousand deep reach Core Foundation whole") {
    InSession({2016.0}, [](tests::ValueSession &session) {
        const auto nested = NestedInHost([&](const Value &value) {
            return session.Host().NewDictionary({{"key", value}});
        });
        const CoreValue converted = session.FromHost(nested);
        const CoreValue key = tests::CoreText("key");
        CFTypeRef value = converted.Get();
        int levels = 0;
        for (; CFGetTypeID(value) == CFDictionaryGetTypeID(); levels++)
            value = CFDictionaryGetValue(static_cast<CFDictionaryRef>(value), key.Get());
        CHECK(levels == kLevels);
        CHECK(tests::TextOf(value) == "\"innermost\"");
    });
}
