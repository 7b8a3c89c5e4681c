#include "simulator/cli/result_table.h"

#include "simulator/cli/item_reader.h"
#include "simulator/cli/json.h"
#include "simulator/cli/table.h"
#include "simulator/cli/value_text.h"

#include <algorithm>

namespace sim::cli {
namespace {

using host::Host;
using host::Object;

void PrintColumns(const std::vector<ItemFacts> &items, const Options &options, const Screen &screen) {
    Table table({{.heading = "Name", .narrowest = 20, .style = Style::kBold, .weight = 3},
                 {.heading = "Kind", .narrowest = 8, .widest = 28, .weight = 0},
                 {.heading = "Size", .alignsRight = true, .narrowest = 9, .widest = 12, .weight = 2},
                 {.heading = "Modified (GMT)", .narrowest = 19, .widest = 19, .style = Style::kDim, .weight = 1},
                 {.heading = "Path", .narrowest = 20, .cut = Cut::kMiddle, .style = Style::kDim, .weight = 4}});
    for (const ItemFacts &item : items)
        table.Add({item.name, ValueText(item.kind), item.size.IsNil() ? "–" : SizeText(item.size.As<int64_t>()),
                   ValueText(item.modified), PathFrom(options.folder, item.path)});
    screen.Line();
    table.Print(screen);
}

void PrintTSV(const std::vector<ItemFacts> &items, const Screen &screen) {
    Table table({{.heading = "Name"},
                 {.heading = "Kind"},
                 {.heading = "Size"},
                 {.heading = "Modified (GMT)"},
                 {.heading = "Path"}});
    for (const ItemFacts &item : items)
        table.Add({item.name, ValueText(item.kind), ValueText(item.size), ValueText(item.modified), item.path});
    table.PrintTSV(screen);
}

void PrintJSON(const std::vector<ItemFacts> &items, const Screen &screen) {
    std::vector<Members> objects;
    for (const ItemFacts &item : items)
        objects.push_back({{"name", item.name},
                           {"kind", item.kind},
                           {"size", item.size},
                           {"modified", item.modified},
                           {"path", item.path}});
    screen.Write(JSONText(objects));
}

// In a terminal as many rows as its window holds with the heading above and the first lines of what follows.
size_t UsualLimit(const Output &output) {
    constexpr size_t kUsual = 50;
    constexpr size_t kOtherLines = 11;
    constexpr size_t kLeast = 5;
    if (output.format != Format::kColumns || !output.results.IsTerminal())
        return kUsual;
    return std::max(output.results.Height(), kOtherLines + kLeast) - kOtherLines;
}

} // namespace

void PrintResults(Host &host, const Object &query, const Options &options, const Output &output) {
    const auto count = static_cast<size_t>(query.Get<int32_t>("ResultCount"));
    Object asked = query;
    const size_t limit = options.limit.value_or(UsualLimit(output));
    const auto most = limit == 0 ? -1 : static_cast<int32_t>(limit);
    const ItemReader reader(host);
    std::vector<ItemFacts> items;
    if (count > 0)
        for (Object &item : asked.Call<Object>("Results", most).As<Object>())
            items.push_back(reader.Read(item));
    switch (output.format) {
    case Format::kColumns:
        if (!items.empty())
            PrintColumns(items, options, output.results);
        break;
    case Format::kTSV:
        PrintTSV(items, output.results);
        break;
    case Format::kJSON:
        PrintJSON(items, output.results);
        break;
    }
    if (items.size() < count)
        output.notes.Line(output.notes.Styled(
            output.notes.FittedBehind(0, "… and " + ValueText(static_cast<int64_t>(count - items.size())) +
                                             " more; --limit 0 shows them all"),
            Style::kDim));
}

} // namespace sim::cli
