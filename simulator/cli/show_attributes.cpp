#include "simulator/cli/table.h"
#include "simulator/cli/tasks.h"

#include <algorithm>

namespace sim::cli {

using host::Host;
using host::Object;

void ShowAttributes(Session &session, const Screen &screen) {
    constexpr const char *kItem = "MDItemQTX";
    Host &host = session.Host();
    auto names = host.Shared<Object>(kItem, "AllAttributes").As<std::string>();
    std::ranges::sort(names);
    Table table({{.heading = "Attribute", .narrowest = 20, .style = Style::kBold},
                 {.heading = "Type", .narrowest = 7, .widest = 10, .style = Style::kCyan},
                 {.heading = "Values", .narrowest = 6, .widest = 8, .style = Style::kCyan},
                 {.heading = "Name", .narrowest = 10, .widest = 32},
                 {.heading = "Description", .narrowest = 12, .style = Style::kDim}});
    for (const std::string &name : names)
        table.Add({name, host.Shared<std::string>(kItem, "AttributeType", name),
                   host.Shared<bool>(kItem, "AttributeMultiValued", name) ? "many" : "one",
                   host.Shared<std::string>(kItem, "DisplayNameForAttribute", name),
                   host.Shared<std::string>(kItem, "DisplayDescriptionForAttribute", name)});
    table.Print(screen);
}

} // namespace sim::cli
