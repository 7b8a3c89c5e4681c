#include "tests/simulator/host/fixture.h"

#include <cstring>

namespace tests {

namespace {

struct Wrapped {
    const void *reference;
    uint32_t other;
    uint32_t tag;
};

Wrapped &WrappedIn(const Object &wrapper) { return *static_cast<Wrapped *>(wrapper.Data()); }

const int kThing = 0;

} // namespace

TEST_CASE("A companion's wrapper begins where the data of every root class begins, tagged and empty") {
    HostOptions options;
    options.rootDataOffset = 32;
    options.companions = {{.name = "CFObjectQTX"}};
    HostUnderTest host(options);
    Object wrapper = host.Create("CFObjectQTX");
    CHECK(static_cast<char *>(wrapper.Data()) == static_cast<char *>(wrapper.Address()) + 32);
    CHECK(WrappedIn(wrapper).reference == nullptr);
    CHECK(WrappedIn(wrapper).tag == 0x52424346);
    CHECK(host.Create("CGImageQTX").IsNil());
}

TEST_CASE("A wrapper that dies gives up what it wraps, once, when its tag is right") {
    std::vector<const void *> released;
    HostOptions options;
    auto release = [&](const void *reference) { released.push_back(reference); };
    options.companions = {{.name = "CFObjectQTX", .release = release},
                          {.name = "CGImageQTX", .tag = 7, .release = release}};
    HostUnderTest host(options);
    WrappedIn(host.Create("CFObjectQTX")).reference = nullptr;
    CHECK(released.empty());
    {
        Object wrapper = host.Create("CFObjectQTX");
        WrappedIn(wrapper).reference = &kThing;
        Object wrong = host.Create("CGImageQTX");
        CHECK(WrappedIn(wrong).tag == 7);
        WrappedIn(wrong).reference = &kThing;
    }
    CHECK(released == std::vector<const void *>{&kThing});
    {
        Object tagged = host.Create("CGImageQTX");
        WrappedIn(tagged).reference = &kThing;
        WrappedIn(tagged).tag = CompanionClass::kWrapperTag;
    }
    CHECK(released.size() == 2);
}

TEST_CASE("Changing the word that belongs to the wrapper alone stops the host") {
    HostOptions options;
    options.companions = {{.name = "CFObjectQTX"}};
    HostUnderTest host(options);
    Object wrapper = host.Create("CFObjectQTX");
    const uint32_t before = WrappedIn(wrapper).other;
    CHECK(before != 0);
    void *address = wrapper.Address();
    Ask<void(void *)>("REALLockObject")(address);
    wrapper.Release();
    auto *data = reinterpret_cast<Wrapped *>(static_cast<char *>(address) + 24);
    data->other = 0;
    CHECK(Contains(ReasonOfStop([&] { UnlockObject(address); }), "belongs to the wrapper alone"));
}

TEST_CASE("Companion classes may derive from one another") {
    HostOptions options;
    options.companions = {{.name = "CFObjectQTX"}, {.name = "CFStringQTX", .superName = "CFObjectQTX"}};
    HostUnderTest host(options);
    auto typeOf = Ask<const void *(const char *)>("pluginObjectType");
    auto isA = Ask<uint32_t(const void *, const void *)>("RuntimeObjectIsa");
    Object text = host.Create("CFStringQTX"), object = host.Create("CFObjectQTX");
    CHECK(LowByte(isA(text.Address(), typeOf("CFObjectQTX"))));
    CHECK_FALSE(LowByte(isA(object.Address(), typeOf("CFStringQTX"))));
}

TEST_CASE("A plain companion class has room for what a test puts there") {
    HostOptions options;
    options.companions = {{.name = "CGRectQTX", .wraps = false, .dataSize = 32}};
    HostUnderTest host(options);
    Object rect = host.Create("CGRectQTX");
    const double values[] = {1, 2, 3, 4};
    std::memcpy(rect.Data(), values, sizeof values);
    CHECK(static_cast<double *>(rect.Data())[3] == 4);
}

} // namespace tests
