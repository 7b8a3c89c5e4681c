#include "simulator/cli/query_mistakes.h"

#include "simulator/cli/closest.h"
#include "simulator/cli/text_width.h"
#include "simulator/macos/control/query_text.h"

#include <algorithm>
#include <set>

namespace sim::cli {

std::string ExplainMistake(const std::string &query) {
    const auto mistake = macos::MistakeIn(query);
    if (!mistake)
        return "\"" + query + "\" could not be made a query";
    const std::string shown = Printable(query);
    const size_t column = WidthOf(Printable(std::string_view(query).substr(0, mistake->at)));
    return "this is no query; at the mark it takes " + mistake->expected + "\n  " + shown + "\n  " +
           std::string(column, ' ') + "^";
}

std::vector<std::string> UnknownAttributes(host::Host &host, const std::string &query) {
    std::vector<std::string> sentences;
    std::set<std::string> seen;
    for (const std::string &name : macos::AttributesIn(query)) {
        // Nearly all attributes have a name for people; the others, and what is none, are looked up.
        if (!seen.insert(name).second ||
            !host.Shared<std::string>("MDItemQTX", "DisplayNameForAttribute", name).empty())
            continue;
        const auto known = host.Shared<host::Object>("MDItemQTX", "AllAttributes").As<std::string>();
        if (std::ranges::find(known, name) != known.end())
            continue;
        const auto closest = Closest(name, known);
        sentences.push_back("no attribute is called " + name + (closest ? "; did you mean " + *closest + "?" : ""));
    }
    return sentences;
}

} // namespace sim::cli
