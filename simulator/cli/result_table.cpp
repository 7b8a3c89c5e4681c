#include "simulator/cli/result_table.h"

#include "simulator/cli/table.h"
#include "simulator/cli/value_text.h"

namespace sim::cli {
namespace {

using host::Host;
using host::Object;
using host::Value;

// Reads the fields of one item after another. The keys' names are asked for once.
class ItemReader {
public:
    ItemReader(Host &host, const Screen &screen)
        : screen_(screen), kind_(host.Shared<std::string>("MDItemQTX", "kMDItemKind")),
          size_(host.Shared<std::string>("MDItemQTX", "kMDItemFSSize")),
          modified_(host.Shared<std::string>("MDItemQTX", "kMDItemFSContentChangeDate")) {}

    std::vector<std::string> Fields(Object &item) const {
        return {NameOf(item), ValueText(item.Call("GetAttribute", kind_)), Size(item),
                ValueText(item.Call("GetAttribute", modified_)), item.Get<std::string>("Path")};
    }

private:
    std::string Size(Object &item) const {
        if (item.Call("GetAttribute", size_).IsNil()) // a folder has no size of its own
            return screen_.IsTerminal() ? "–" : "";
        const auto size = item.Get<int64_t>("FSSize");
        return screen_.IsTerminal() ? SizeText(size) : ValueText(size);
    }

    const Screen &screen_;
    std::string kind_;
    std::string size_;
    std::string modified_;
};

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
    const ItemReader reader(host, screen);
    for (Object &item : asked.Call<Object>("Results", most).As<Object>())
        table.Add(reader.Fields(item));
    screen.Line();
    table.Print(screen);
    if (const size_t shown = table.RowCount(); shown < count)
        screen.Line(
            screen.Styled("… and " + ValueText(static_cast<int64_t>(count - shown)) + " more; --limit 0 shows them all",
                          Style::kDim));
}

} // namespace sim::cli
