#include "simulator/host/entities/heap.h"
#include "tests/simulator/host/fixture.h"

#include <csignal>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

namespace tests {

namespace {

using Build = void *(const void *, int32_t);
using BuildWithEncoding = void *(const void *, int32_t, uint32_t);
using ConvertString = void *(void *, uint32_t);

/// How a child process that runs `action` ends: by that signal, or 0.
template <class Action> int SignalOf(Action action) {
    const pid_t child = fork();
    if (child == 0) {
        // Nothing may catch the signal on its way.
        std::signal(SIGSEGV, SIG_DFL);
        action();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

__attribute__((no_sanitize("address"))) uint32_t WordAt(const void *handle, int word) {
    return static_cast<const volatile uint32_t *>(handle)[word];
}

__attribute__((no_sanitize("address"))) char ByteAt(uint32_t address) {
    return *reinterpret_cast<const volatile char *>(static_cast<uintptr_t>(address));
}

} // namespace

TEST_CASE("A string of a host below 2016.0 can be read in place") {
    HostUnderTest host(2015.4);
    void *string = host.NewString({"lamp", kASCII});
    CHECK(WordAt(string, 3) == 4);
    auto *storage = reinterpret_cast<const unsigned char *>(static_cast<uintptr_t>(WordAt(string, 1)));
    CHECK(storage[0] == 4);
    CHECK(std::memcmp(storage + 1, "lamp", 5) == 0);
    UnlockString(string);
}

TEST_CASE("The length byte of a long string stops at 255, the fourth word does not") {
    HostOptions options;
    options.version = std::nullopt;
    HostUnderTest host(options);
    void *string = host.NewString({std::string(1000, 'x'), kASCII});
    auto *storage = reinterpret_cast<const unsigned char *>(static_cast<uintptr_t>(WordAt(string, 1)));
    CHECK(storage[0] == 255);
    CHECK(WordAt(string, 3) == 1000);
    UnlockString(string);
}

TEST_CASE("Reading a string of a host from 2016.0 on in place faults") {
    HostUnderTest host(2016.0);
    void *string = host.NewString({"lamp", kASCII});
    CHECK(SignalOf([&] { ByteAt(WordAt(string, 1)); }) == SIGSEGV);
    CHECK(std::string(Ask<const char *(void *)>("StringGetCString")(string)) == "lamp");
    CHECK(LoadGlobal<int32_t(void *)>("LenB( s as string ) as integer")(string) == 4);
    UnlockString(string);
}

TEST_CASE("Building keeps the bytes; the encoding is unknown until it is told") {
    HostUnderTest host;
    void *string = Ask<Build>("REALBuildString")("a\0b", 3);
    CHECK(host.ReadString(string) == Text{std::string("a\0b", 3), kUnknownEncoding});
    CHECK(Ask<uint32_t(void *)>("REALGetStringEncoding")(string) == 0xFFFF);
    Ask<void(void *, uint32_t)>("REALSetStringEncoding")(string, kASCII);
    CHECK(Ask<uint32_t(void *)>("REALGetStringEncoding")(string) == kASCII);
    UnlockString(string);
    void *tagged = Ask<BuildWithEncoding>("REALBuildStringWithEncoding")("\xE9", 1, kISOLatin1);
    CHECK(host.ReadString(tagged) == Text{"\xE9", kISOLatin1});
    UnlockString(tagged);
}

TEST_CASE("Building from a negative length or from nowhere stops the host") {
    HostUnderTest host;
    CHECK(ReasonOfStop([] { Ask<Build>("REALBuildString")("x", -1); }) != "");
    CHECK(ReasonOfStop([] { Ask<Build>("REALBuildString")(nullptr, 1); }) != "");
    void *empty = Ask<Build>("REALBuildString")(nullptr, 0);
    CHECK(host.ReadString(empty).bytes.empty());
    UnlockString(empty);
}

TEST_CASE("Conversion keeps the characters from every encoding to every other") {
    struct Row {
        uint32_t encoding;
        std::string bytes;
    };
    using namespace std::string_literals;
    const Row rows[] = {
        {kMacRoman, "\x8E"s}, {kISOLatin1, "\xE9"s}, {kWindowsLatin1, "\xE9"s},
        {kUTF8, "\xC3\xA9"s}, {kUTF16, "\xE9\0"s},   {kUTF32, "\xE9\0\0\0"s},
    };
    HostUnderTest host;
    auto convert = Ask<ConvertString>("REALConvertString");
    for (const Row &from : rows)
        for (const Row &to : rows) {
            CAPTURE(from.encoding);
            CAPTURE(to.encoding);
            void *string = host.NewString({from.bytes, from.encoding});
            void *converted = convert(string, to.encoding);
            CHECK(converted != string);
            CHECK(host.ReadString(converted) == Text{to.bytes, to.encoding});
            UnlockString(converted);
            UnlockString(string);
        }
}

TEST_CASE("The encodings' own characters convert") {
    CHECK(ToUTF8(Text{"\x80", kWindowsLatin1}) == "\xE2\x82\xAC");
    CHECK(ToUTF8(Text{"\xDB", kMacRoman}) == "\xE2\x82\xAC");
    CHECK(ToUTF8(Text{"\xF0", kMacRoman}) == "\xEF\xA3\xBF");
    CHECK(ToUTF8(Text{"\xE9", kUnknownEncoding}) == "\xC3\x88");
    CHECK(ToUTF8(Text{std::string("\x3D\xD8\x00\xDE", 4), kUTF16}) == "\xF0\x9F\x98\x80");
    CHECK(ToUTF8(Text{std::string("\x00\xF6\x01\x00", 4), kUTF32}) == "\xF0\x9F\x98\x80");
}

TEST_CASE("Bytes that are no text become the replacement character") {
    CHECK(ToUTF8(Text{"a\xFF", kUTF8}) == "a\xEF\xBF\xBD");
    CHECK(ToUTF8(Text{std::string("\x00\xD8", 2), kUTF16}) == "\xEF\xBF\xBD");
    CHECK(ToUTF8(Text{std::string("\x00\x00\x11\x00", 4), kUTF32}) == "\xEF\xBF\xBD");
}

TEST_CASE("A nil string has no length, no contents, an unknown encoding, and converts to nil") {
    HostUnderTest host;
    CHECK(LoadGlobal<int32_t(void *)>("LenB( s as string ) as integer")(nullptr) == 0);
    CHECK(Ask<const char *(void *)>("StringGetCString")(nullptr) == nullptr);
    CHECK(Ask<uint32_t(void *)>("REALGetStringEncoding")(nullptr) == 0xFFFF);
    CHECK(Ask<ConvertString>("REALConvertString")(nullptr, kUTF8) == nullptr);
}

TEST_CASE("A CFString is made by the maker, from strings of known encoding only") {
    HostOptions options;
    options.version = 2012.0;
    std::vector<Text> made;
    static const int kStandsForACFString = 0;
    options.makeCFString = [&](const Text &text) -> const void * {
        made.push_back(text);
        return &kStandsForACFString;
    };
    HostUnderTest host(options);
    auto getCFString = Ask<const void *(void *, int32_t)>("REALGetStringCFString");
    void *known = host.NewString({"x", kUTF8});
    void *unknown = host.NewString({"x", kUnknownEncoding});
    CHECK(getCFString(known, 0) == &kStandsForACFString);
    CHECK(getCFString(unknown, 0) == nullptr);
    CHECK(getCFString(nullptr, 0) == nullptr);
    CHECK(made == std::vector<Text>{{"x", kUTF8}});
    CHECK(ReasonOfStop([&] { getCFString(known, 1); }) != "");
    UnlockString(known);
    UnlockString(unknown);
}

TEST_CASE("Whether CFStrings are offered can be decided against the host's age") {
    HostOptions options;
    options.makeCFString = [](const Text &) { return nullptr; };
    options.version = 2011.0;
    options.offersCFStrings = true;
    {
        HostUnderTest host(options);
        CHECK(IsOffered("REALGetStringCFString"));
    }
    options.version = 2016.0;
    options.offersCFStrings = false;
    HostUnderTest host(options);
    CHECK_FALSE(IsOffered("REALGetStringCFString"));
}

TEST_CASE("String data is on loan until it is disposed of") {
    struct {
        const char *bytes;
        int32_t length;
        uint32_t encoding;
        void *string;
    } data = {};
    HostUnderTest host;
    void *string = host.NewString({"\xE9", kISOLatin1});
    CHECK(LowByte(Ask<uint32_t(void *, uint32_t, void *)>("PluginGetStringData")(string, kUTF8, &data)));
    CHECK(std::string(data.bytes, static_cast<size_t>(data.length)) == "\xC3\xA9");
    UnlockString(string);
    CHECK(host.Balance().size() == 1);
    Ask<void(void *)>("PluginDisposeStringData")(&data);
}

} // namespace tests
