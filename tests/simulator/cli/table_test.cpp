#include "simulator/cli/table.h"

#include <doctest/doctest.h>

#include <memory>
#include <sstream>

namespace sim::cli {
namespace {

// What a table prints on a screen of that kind.
std::string Printed(const Table &table, bool isTerminal, bool hasColours, size_t width) {
    char *bytes = nullptr;
    size_t size = 0;
    std::FILE *file = open_memstream(&bytes, &size);
    const Screen screen(file, isTerminal, hasColours, width);
    if (isTerminal)
        table.Print(screen);
    else
        table.PrintTSV(screen);
    std::fclose(file);
    const std::unique_ptr<char, void (*)(void *)> owner(bytes, std::free);
    return {bytes, size};
}

Table Files() {
    Table table({{.heading = "Name", .style = Style::kBold},
                 {.heading = "Size", .alignsRight = true},
                 {.heading = "Path", .cut = Cut::kMiddle}});
    table.Add({"a.txt", "12", "/a.txt"});
    table.Add({"日本\n", "1234", "/tmp/日本\n"});
    return table;
}

TEST_CASE("For programs fields are separated by tabs and nothing is cut") {
    CHECK(Printed(Files(), false, false, 10) == "Name\tSize\tPath\n"
                                                "a.txt\t12\t/a.txt\n"
                                                "日本\\n\t1234\t/tmp/日本\\n\n");
}

TEST_CASE("On a terminal columns begin at the same place whatever the characters are") {
    CHECK(Printed(Files(), true, false, 80) == "Name    Size  Path\n"
                                               "a.txt     12  /a.txt\n"
                                               "日本\\n  1234  /tmp/日本\\n\n");
}

TEST_CASE("Colours go around the cells") {
    Table table({{.heading = "A", .narrowest = 1, .style = Style::kGreen}, {.heading = "B"}});
    table.Add({"x", "y"});
    CHECK(Printed(table, true, true, 80) == "\x1b[1mA\x1b[0m  \x1b[1mB\x1b[0m\n"
                                            "\x1b[32mx\x1b[0m  y\n");
}

TEST_CASE("No line is wider than the terminal, however narrow that is") {
    Table table(
        {{.heading = "Name", .narrowest = 6, .weight = 1}, {.heading = "Path", .narrowest = 6, .cut = Cut::kMiddle}});
    table.Add({std::string(60, 'n'), "/" + std::string(60, 'p')});
    table.Add({"日本語日本語日本語日本語", "/日本語日本語日本語日本語"});
    for (size_t width = 1; width <= 130; ++width) {
        CAPTURE(width);
        std::istringstream lines(Printed(table, true, false, width));
        for (std::string line; std::getline(lines, line);)
            CHECK(WidthOf(line) <= width);
    }
}

TEST_CASE("Where there is no room for all columns those of the least weight are left out") {
    Table table({{.heading = "A", .narrowest = 6, .weight = 1},
                 {.heading = "B", .narrowest = 6, .weight = 0},
                 {.heading = "C", .narrowest = 6, .weight = 2}});
    table.Add({"a-long", "b-long", "c-long"});
    CHECK(Printed(table, true, false, 22) == "A       B       C\na-long  b-long  c-long\n");
    CHECK(Printed(table, true, false, 21) == "A       C\na-long  c-long\n");
    CHECK(Printed(table, true, false, 10) == "C\nc-long\n");
}

TEST_CASE("A column takes no more room than its cells, whatever it may take") {
    Table table({{.heading = "A", .narrowest = 10, .weight = 1}, {.heading = "B", .narrowest = 10, .weight = 0}});
    table.Add({"a", "bb"});
    CHECK(Printed(table, true, false, 5) == "A  B\na  bb\n");
}

} // namespace
} // namespace sim::cli
