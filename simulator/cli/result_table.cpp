#include "simulator/cli/result_table.h"

#include "simulator/cli/table.h"
#include "simulator/cli/value_text.h"

namespace sim::cli {
namespace {

using host::Host;
using host::Object;
using host::Value;

Value Attribute(Host &host, const Object &item, const char *key) {
    Object reader = item;
    return reader.Call("GetAttribute", host.Shared<std::string>("MDItemQTX", key));
}

std::string Size(const Value &attribute, const Object &item, const Screen &screen) {
    if (attribute.IsNil()) // a folder has no size of its own
        return screen.IsTerminal() ? "–" : "";
    const auto size = item.Get<int64_t>("FSSize");
    return screen.IsTerminal() ? SizeText(size) : ValueText(size);
}

} // namespace

std::string NameOf(const Object &item) { return item.Get<std::string>("FSName"); }

void PrintResults(Host &host, const Object &query, size_t limit, const Screen &screen) {
    const auto count = static_cast<size_t>(query.Get<int32_t>("ResultCount"));
    if (count == 0)
        return;
    Table table({{.heading = "Name", .narrowest = 12, .style = Style::kBold},
                 {.heading = "Kind", .narrowest = 8, .widest = 28},
                 {.heading = "Size", .alignsRight = true, .narrowest = 9, .widest = 12},
                 {.heading = "Modified (GMT)", .narrowest = 19, .widest = 19, .style = Style::kDim},
                 {.heading = "Path", .narrowest = 12, .cut = Cut::kMiddle, .style = Style::kDim}});
    Object asked = query;
    const auto most = limit == 0 ? -1 : static_cast<int32_t>(limit);
    for (const Object &item : asked.Call<Object>("Results", most).As<Object>()) {
        const std::string kind = ValueText(Attribute(host, item, "kMDItemKind"));
        const std::string size = Size(Attribute(host, item, "kMDItemFSSize"), item, screen);
        const std::string modified = ValueText(Attribute(host, item, "kMDItemFSContentChangeDate"));
        table.Add({NameOf(item), kind, size, modified, item.Get<std::string>("Path")});
    }
    screen.Line();
    table.Print(screen);
    if (const size_t shown = table.RowCount(); shown < count)
        screen.Line(
            screen.Styled("… and " + ValueText(static_cast<int64_t>(count - shown)) + " more; --limit 0 shows them all",
                          Style::kDim));
}

} // namespace sim::cli
