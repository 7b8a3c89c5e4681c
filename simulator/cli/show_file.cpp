#include "simulator/cli/json.h"
#include "simulator/cli/table.h"
#include "simulator/cli/tasks.h"
#include "simulator/cli/value_text.h"

#include <algorithm>

namespace sim::cli {

using host::Host;
using host::Object;
using host::Value;

void ShowFile(Session &session, const Options &options, const Output &output) {
    Host &host = session.Host();
    Object item = host.Create("MDItemQTX");
    item.Call<void>("Constructor", host.NewFolderItem(options.file.string()));
    if (item.Get<int32_t>("Handle") == 0)
        throw UsageError("\"" + options.file.string() + "\" is nothing that has attributes");

    auto names = item.Call<Object>("AttributeNames").As<std::string>();
    std::ranges::sort(names);
    if (output.format == Format::kJSON) {
        Members attributes;
        for (const std::string &name : names)
            attributes.emplace_back(name, item.Call("GetAttribute", name));
        output.results.Write(JSONText(attributes));
        return;
    }
    Table table({{.heading = "Attribute", .narrowest = 20, .style = Style::kBold, .weight = 2},
                 {.heading = "Type", .narrowest = 8, .widest = 20, .style = Style::kCyan, .weight = 0},
                 {.heading = "Value", .narrowest = 20, .weight = 1}});
    for (const std::string &name : names) {
        const Value value = item.Call("GetAttribute", name);
        table.Add({name, TypeText(value), ValueText(value)});
    }
    if (output.format == Format::kTSV)
        table.PrintTSV(output.results);
    else
        table.Print(output.results);
}

} // namespace sim::cli
