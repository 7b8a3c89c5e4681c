#include "simulator/cli/table.h"
#include "simulator/cli/tasks.h"
#include "simulator/cli/value_text.h"

#include <algorithm>

namespace sim::cli {

using host::Host;
using host::Object;
using host::Value;

void ShowFile(Session &session, const Options &options, const Screen &screen) {
    Host &host = session.Host();
    Object item = host.Create("MDItemQTX");
    item.Call<void>("Constructor", host.NewFolderItem(options.file.string()));
    if (item.Get<int32_t>("Handle") == 0)
        throw UsageError("\"" + options.file.string() + "\" is nothing that has attributes");

    auto names = item.Call<Object>("AttributeNames").As<std::string>();
    std::ranges::sort(names);
    Table table({{.heading = "Attribute", .narrowest = 20, .style = Style::kBold},
                 {.heading = "Type", .narrowest = 8, .widest = 20, .style = Style::kCyan},
                 {.heading = "Value", .narrowest = 20}});
    for (const std::string &name : names) {
        const Value value = item.Call("GetAttribute", name);
        table.Add({name, TypeText(value), ValueText(value)});
    }
    table.Print(screen);
}

} // namespace sim::cli
