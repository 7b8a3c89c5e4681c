// Raising, with arguments that no host program brings about: no message, a class that does not exist, the range of the
// numbers.
#include <doctest/doctest.h>

#include "host/exceptions.h"
#include "tests/whitebox/failing_memory.h"
#include "tests/whitebox/small_host.h"

using whitebox::FailingMemory;
using whitebox::HostException;
using whitebox::HostText;
using whitebox::SmallHost;

namespace {

using Calls = std::vector<std::string>;
using Raised = std::vector<HostException>;

HostException Exception(const char *className, const std::string &message) {
    return {className, HostText{message, 0x0600}, 0};
}

} // namespace

TEST_CASE("Raising builds the message, makes the object, sets its properties, raises it and lets go, in that order") {
    SmallHost host(2013.04);
    RaiseException("NilObjectException", "gone");
    CHECK(host.Calls() == Calls{"REALBuildString(4)", "REALSetStringEncoding(1536)",
                                "PluginNewInstance(NilObjectException)", "REALSetPropValueString(Message)",
                                "REALSetPropValueInteger(ErrorNumber, 0)", "RuntimeRaiseException()",
                                "REALUnlockObject()", "REALUnlockString()"});
    CHECK(host.raised == Raised{Exception("NilObjectException", "gone")});
    CHECK(host.Alive() == 0);
}

TEST_CASE("A null message raises the exception with no \"Message\" set") {
    SmallHost host(2013.04);
    RaiseException("RuntimeException", nullptr);
    CHECK(host.raised == Raised{{"RuntimeException", std::nullopt, 0}});
    CHECK(host.CallCount("REALSetPropValueString") == 0);
    CHECK(host.CallCount("REALUnlockString") == 0);
    CHECK(host.Alive() == 0);
}

TEST_CASE("An empty message raises the exception with no \"Message\" set, for no host string is empty") {
    SmallHost host(2013.04);
    RaiseException("RuntimeException", "");
    CHECK(host.raised == Raised{{"RuntimeException", std::nullopt, 0}});
}

TEST_CASE("An unknown exception class name raises a \"RuntimeException\" carrying the same message") {
    SmallHost host(2013.04);
    RaiseException("NoSuchException", "the message");
    CHECK(host.raised == Raised{Exception("RuntimeException", "the message")});
    CHECK(host.Alive() == 0);
}

TEST_CASE("Without any class to make an exception of, nothing is raised and the message is released") {
    SmallHost host(2013.04);
    host.Withhold("RuntimeException");
    RaiseException("NoSuchException", "the message");
    CHECK(host.raised.empty());
    CHECK(host.Calls() == Calls{"REALBuildString(11)", "REALSetStringEncoding(1536)",
                                "PluginNewInstance(NoSuchException)", "PluginNewInstance(RuntimeException)",
                                "REALUnlockString()"});
    CHECK(host.Alive() == 0);
}

TEST_CASE("ErrorNumber is 0 whatever number and flags were passed") {
    SmallHost host(2013.04);
    RaiseException("OutOfMemoryException", "none left", 0xDEADBEEF, -7);
    CHECK(host.raised == Raised{Exception("OutOfMemoryException", "none left")});
}

TEST_CASE("An index outside the array names the index and the range, with a double blank") {
    const struct {
        int64_t value, count;
        const char *message;
    } rows[] = {
        {-1, 3, "Parameter index  is too small. Range is 0 to 2, but value is -1."},
        {3, 3, "Parameter index  is too big. Range is 0 to 2, but value is 3."},
        {7, 5, "Parameter index  is too big. Range is 0 to 4, but value is 7."},
        {0, 0, "Parameter index  is too big. Range is 0 to -1, but value is 0."},
        {-1, 0, "Parameter index  is too small. Range is 0 to -1, but value is -1."},
        {INT64_MIN, INT64_MAX,
         "Parameter index  is too small. Range is 0 to 9223372036854775806, but value is -9223372036854775808."},
        {INT64_MAX, 1, "Parameter index  is too big. Range is 0 to 0, but value is 9223372036854775807."},
        {2147483648, 2147483648, "Parameter index  is too big. Range is 0 to 2147483647, but value is 2147483648."},
    };
    for (const auto &row : rows) {
        SmallHost host(2013.04);
        RaiseOutOfBoundsException(row.value, row.count);
        CHECK(host.raised == Raised{Exception("OutOfBoundsException", row.message)});
        CHECK(host.Alive() == 0);
    }
}

TEST_CASE("The message of an index outside the array is written into 205 zeroed bytes") {
    SmallHost host(2013.04);
    const FailingMemory memory(0);
    RaiseOutOfBoundsException(3, 3);
    CHECK(memory.Asked() == std::vector<size_t>{205});
}

TEST_CASE("The further arguments of an index outside the array are not used") {
    SmallHost host(2013.04);
    RaiseOutOfBoundsException(3, 3, 100, "prefix", "suffix");
    CHECK(host.raised ==
          Raised{Exception("OutOfBoundsException", "Parameter index  is too big. Range is 0 to 2, but value is 3.")});
}
