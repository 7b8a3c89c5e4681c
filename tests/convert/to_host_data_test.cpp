// Core Foundation data in host memory blocks, and what becomes of it when there is no memory.
#include "tests/convert/value_session.h"

#include "simulator/macos/CoreFoundation/scripted_data_length.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <new>

using sim::host::HostOptions;
using sim::host::Object;
using tests::CoreData;
using tests::ValueSession;

TEST_CASE("CFData becomes a memory block with a copy of its bytes") {
    ValueSession session;
    CHECK(session.TextInHost(CoreData(std::string_view("\0\x01\xFF", 3))) == "MemoryBlock 0001ff");
    CHECK(session.TakeException() == "");
    const Object block = session.ToHost(CoreData("copied")).As<Object>();
    CHECK(block.Bytes() == "copied");
    CHECK(block.References() == 1);
}

TEST_CASE("A new memory block is locked and unlocked once more, which changes nothing") {
    ValueSession session;
    session.Host().ClearLog();
    session.ToHost(CoreData("a"));
    const auto names = session.Host().CallNames();
    const auto lock = std::find(names.begin(), names.end(), "REALLockObject");
    REQUIRE(lock != names.end());
    CHECK(*(lock - 1) == "memoryBlockGetPtr");
    CHECK(*(lock + 1) == "REALUnlockObject");
}

TEST_CASE("A memory block is not given up once too often where the host cannot lock") {
    ValueSession session(HostOptions{.withheld = {"REALLockObject"}});
    CHECK(session.TextInHost(CoreData("a")) == "MemoryBlock 61");
}

TEST_CASE("Empty CFData gives nil, not an empty block") {
    ValueSession session;
    CHECK(session.ToHost(CoreData("")).IsNil());
    CHECK(session.Host().CallCount("newMemoryBlock") == 0);
    CHECK(session.TakeException() == "");
}

TEST_CASE("Data whose memory cannot be had raises OutOfMemoryException with the size and gives nil") {
    constexpr const char *kFailure = "OutOfMemoryException: Failed to allocate a memoryblock with 3 bytes in size.";
    SUBCASE("the host has no memory") {
        ValueSession session;
        session.Host().ReturnNothing("newMemoryBlock");
        CHECK(session.ToHost(CoreData("abc")).IsNil());
        CHECK(session.TakeException() == kFailure);
    }
    SUBCASE("the block has no memory: it is unlocked") {
        ValueSession session;
        session.Host().ReturnNothing("memoryBlockGetPtr");
        CHECK(session.ToHost(CoreData("abc")).IsNil());
        CHECK(session.TakeException() == kFailure);
        CHECK(session.Host().Alive("MemoryBlock") == 0);
    }
    SUBCASE("the host has no memory blocks") {
        ValueSession session(HostOptions{.withheld = {"newMemoryBlock"}});
        CHECK(session.ToHost(CoreData("abc")).IsNil());
        CHECK(session.TakeException() == kFailure);
    }
    SUBCASE("the host does not tell where a block's memory is") {
        ValueSession session(HostOptions{.withheld = {"memoryBlockGetPtr"}});
        CHECK(session.ToHost(CoreData("abc")).IsNil());
        CHECK(session.TakeException() == kFailure);
    }
    SUBCASE("the application has no class MemoryBlock") {
        ValueSession session(HostOptions{.missingClasses = {"MemoryBlock"}});
        CHECK(session.ToHost(CoreData("abc")).IsNil());
        CHECK(session.TakeException() == kFailure);
    }
    SUBCASE("making the block throws an allocation failure") {
        ValueSession session;
        session.Host().ThrowFrom("newMemoryBlock", std::bad_alloc());
        CHECK(session.ToHost(CoreData("abc")).IsNil());
        CHECK(session.TakeException() == kFailure);
    }
}

TEST_CASE("Data of 2 GB less a byte or more is not even asked memory for") {
    ValueSession session;
    const sim::macos::ScriptedDataLength length(0x7FFFFFFF);
    CHECK(session.ToHost(CoreData("abc")).IsNil());
    CHECK(session.TakeException() ==
          "OutOfMemoryException: Failed to allocate a memoryblock with 2147483647 bytes in size.");
    CHECK(session.Host().CallCount("newMemoryBlock") == 0);
}

TEST_CASE("Data just below that is asked memory for, which no 32-bit host has") {
    ValueSession session;
    const sim::macos::ScriptedDataLength length(0x7FFFFFFE);
    CHECK(session.ToHost(CoreData("abc")).IsNil());
    CHECK(session.TakeException() ==
          "OutOfMemoryException: Failed to allocate a memoryblock with 2147483646 bytes in size.");
    CHECK(session.Host().CallCount("newMemoryBlock") == 1);
}

TEST_CASE("Data that claims a negative length gives nil") {
    ValueSession session;
    const sim::macos::ScriptedDataLength length(INT32_MIN);
    CHECK(session.ToHost(CoreData("abc")).IsNil());
    CHECK(session.TakeException() == "");
}

TEST_CASE("Data that claims bytes and shows none gives nil, and so does data that shows bytes and claims none") {
    ValueSession session;
    for (const auto &[claimed, bytes] : {std::pair{3, ""}, std::pair{0, "abc"}}) {
        const sim::macos::ScriptedDataLength length(claimed);
        CHECK(session.ToHost(CoreData(bytes)).IsNil());
    }
    CHECK(session.Host().CallCount("newMemoryBlock") == 0);
    CHECK(session.TakeException() == "");
}

TEST_CASE("Each failure of memory is reported with its own size") {
    ValueSession session;
    session.Host().ReturnNothing("newMemoryBlock");
    for (const auto &[bytes, size] : {std::pair{"a", "1"}, std::pair{"ab", "2"}}) {
        CHECK(session.ToHost(CoreData(bytes)).IsNil());
        CHECK(session.TakeException() ==
              std::string("OutOfMemoryException: Failed to allocate a memoryblock with ") + size + " bytes in size.");
    }
}

TEST_CASE("Any other exception that making a block throws passes through, and nothing is left behind") {
    struct Other {};
    ValueSession session;
    session.Host().ThrowFrom("newMemoryBlock", Other());
    CHECK_THROWS_AS(session.ToHost(CoreData("abc")), Other);
    CHECK(session.TakeException() == "");
}

TEST_CASE("An element that finds no memory is nil; its neighbours are there") {
    ValueSession session;
    session.Host().ReturnNothing("newMemoryBlock", 1, 1);
    CHECK(session.TextInHost(tests::CoreArray({CoreData("a"), CoreData("b")})) == "[nil, MemoryBlock 62]");
    CHECK(session.TakeException() == "OutOfMemoryException: Failed to allocate a memoryblock with 1 bytes in size.");
}

TEST_CASE("A megabyte comes over whole") {
    ValueSession session;
    std::string bytes(1 << 20, '\0');
    for (size_t i = 0; i < bytes.size(); i++)
        bytes[i] = static_cast<char>(i * 31 >> 3);
    CHECK(session.ToHost(CoreData(bytes)).As<Object>().Bytes() == bytes);
}
