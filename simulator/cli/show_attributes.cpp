#include "simulator/cli/json.h"
#include "simulator/cli/table.h"
#include "simulator/cli/tasks.h"

#include <algorithm>

namespace sim::cli {
namespace {

using host::Host;
using host::Object;

constexpr const char *kItem = "MDItemQTX";

struct Attribute {
    std::string name, type, displayName, description;
    bool hasMany;
};

std::vector<Attribute> SchemaOf(Host &host) {
    auto names = host.Shared<Object>(kItem, "AllAttributes").As<std::string>();
    std::ranges::sort(names);
    std::vector<Attribute> attributes;
    for (const std::string &name : names)
        attributes.push_back({name, host.Shared<std::string>(kItem, "AttributeType", name),
                              host.Shared<std::string>(kItem, "DisplayNameForAttribute", name),
                              host.Shared<std::string>(kItem, "DisplayDescriptionForAttribute", name),
                              host.Shared<bool>(kItem, "AttributeMultiValued", name)});
    return attributes;
}

} // namespace

void ShowAttributes(Session &session, const Output &output) {
    const std::vector<Attribute> attributes = SchemaOf(session.Host());
    if (output.format == Format::kJSON) {
        std::vector<Members> objects;
        for (const auto &[name, type, displayName, description, hasMany] : attributes)
            objects.push_back({{"attribute", name},
                               {"type", type},
                               {"many", hasMany},
                               {"name", displayName},
                               {"description", description}});
        output.results.Write(JSONText(objects));
        return;
    }
    Table table({{.heading = "Attribute", .narrowest = 20, .style = Style::kBold, .weight = 4},
                 {.heading = "Type", .narrowest = 7, .widest = 10, .style = Style::kCyan, .weight = 3},
                 {.heading = "Values", .narrowest = 6, .widest = 8, .style = Style::kCyan, .weight = 0},
                 {.heading = "Name", .narrowest = 10, .widest = 32, .weight = 2},
                 {.heading = "Description", .narrowest = 12, .style = Style::kDim, .weight = 1}});
    for (const auto &[name, type, displayName, description, hasMany] : attributes)
        table.Add({name, type, hasMany ? "many" : "one", displayName, description});
    if (output.format == Format::kTSV)
        table.PrintTSV(output.results);
    else
        table.Print(output.results);
}

} // namespace sim::cli
