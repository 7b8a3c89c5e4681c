#include "simulator/cli/options.h"

#include <doctest/doctest.h>

#include <sstream>
#include <vector>

namespace sim::cli {
namespace {

Options Read(std::vector<const char *> words) {
    words.insert(words.begin(), "--plugin=library");
    return ReadOptions(words);
}

std::string Complaint(std::vector<const char *> words) {
    try {
        Read(std::move(words));
        return "";
    } catch (const UsageError &error) {
        return error.what();
    }
}

TEST_CASE("Without words a query runs that finds something in a folder that is everywhere") {
    const Options options = Read({});
    CHECK(options.task == Options::Task::kQuery);
    CHECK(options.plugin == "library");
    CHECK(options.folder == "/etc");
    CHECK(options.query == "kMDItemFSName == \"*.conf\" && kMDItemContentTypeTree == \"public.text\"");
    CHECK(options.hostVersion == 2016.1);
    CHECK_FALSE(options.once);
    CHECK_FALSE(options.live);
    CHECK_FALSE(options.limit.has_value());
}

TEST_CASE("A folder alone is looked through for every file") {
    const Options options = Read({"/usr/../usr"});
    CHECK(options.folder == "/usr");
    CHECK(options.query == "kMDItemFSName == \"*\"");
}

TEST_CASE("Options may stand anywhere, with their value behind them or behind an equals sign") {
    const Options options = Read({"--host-version", "2011.4", "/", "--limit=0", "a query", "--live"});
    CHECK(options.folder == "/");
    CHECK(options.query == "a query");
    CHECK(options.hostVersion == 2011.4);
    CHECK(options.limit == 0);
    CHECK(options.live);
    CHECK_FALSE(options.trace);
    CHECK(Read({"/", "--trace"}).trace);
    CHECK_FALSE(Read({"--host-version=none"}).hostVersion.has_value());
    CHECK(Read({"--", "/", "--once"}).query == "--once");
    CHECK(Read({"--show=/"}).file == "/");
    CHECK(Read({"--attributes"}).task == Options::Task::kAttributes);
}

TEST_CASE("An option given twice counts as it was given last") {
    CHECK(Read({"--limit", "1", "--limit", "2"}).limit == 2);
    CHECK(Read({"--format=tsv", "--format=json"}).format == Format::kJSON);
}

TEST_CASE("Every option stands in the help, and the help has no other") {
    std::istringstream help(HelpText());
    size_t count = 0;
    for (std::string line; std::getline(help, line);) {
        if (!line.starts_with("  --"))
            continue;
        const std::string name = line.substr(2, line.find(' ', 2) - 2);
        CAPTURE(name);
        CHECK(Complaint({name.c_str()}).find("there is no option") == std::string::npos);
        ++count;
    }
    CHECK(count == 10);
}

TEST_CASE("Help wins over everything else") {
    CHECK(Read({"--show", "/nowhere", "--help"}).task == Options::Task::kHelp);
    CHECK(Read({"-h", "--attributes"}).task == Options::Task::kHelp);
}

TEST_CASE("The library must be named") {
    CHECK_THROWS_WITH_AS(ReadOptions({}), "--plugin must say which library to load", UsageError);
}

TEST_CASE("Versions and limits are numbers from end to end") {
    for (const char *text : {"", "x", "2013x", " 2013", "-1", "0", "nan", "inf", "1e999", "1999", "3001"}) {
        CAPTURE(text);
        CHECK(Complaint({"--host-version", text}) ==
              "--host-version takes a number from 2005 to 3000, such as 2013.04, or none; \"" + std::string(text) +
                  "\" is neither");
    }
    for (const char *text : {"", "x", "-1", "1.5", "99999999999999999999"}) {
        CAPTURE(text);
        CHECK(Complaint({"--limit", text}) ==
              "--limit takes a number of rows, 0 for all; \"" + std::string(text) + "\" is none");
    }
}

} // namespace
} // namespace sim::cli
