#include "simulator/cli/json.h"

#include "simulator/cli/value_text.h"

#include <nlohmann/json.hpp>

namespace sim::cli {
namespace {

using host::Object;
using host::Value;
using nlohmann::ordered_json;

ordered_json JSONOf(const Value &value);

ordered_json JSONOfObject(const Value &value) {
    const Object object = value.As<Object>();
    const std::string name = object.ClassName();
    if (name.ends_with("()")) {
        ordered_json array = ordered_json::array();
        for (const Value &element : object.Elements())
            array.push_back(JSONOf(element));
        return array;
    }
    if (name == "Dictionary") {
        ordered_json entries = ordered_json::object();
        for (const auto &[key, entry] : object.Entries())
            entries[ValueText(key)] = JSONOf(entry);
        return entries;
    }
    std::string text = ValueText(value);
    if (name == "Date")
        text.replace(text.find(' '), 1, "T").append("Z");
    return text;
}

ordered_json JSONOf(const Value &value) {
    return value.Visit([&](const auto &held) -> ordered_json {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>)
            return nullptr;
        else if constexpr (std::is_arithmetic_v<Held>)
            return held;
        else
            return value.Is<Object>() ? JSONOfObject(value) : ordered_json(ValueText(value));
    });
}

ordered_json JSONOf(const Members &members) {
    ordered_json object = ordered_json::object();
    for (const auto &[name, value] : members)
        object[name] = JSONOf(value);
    return object;
}

std::string TextOf(const ordered_json &json) {
    return json.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

} // namespace

std::string JSONText(const Members &object) { return TextOf(JSONOf(object)); }

std::string JSONText(const std::vector<Members> &objects) {
    ordered_json array = ordered_json::array();
    for (const Members &object : objects)
        array.push_back(JSONOf(object));
    return TextOf(array);
}

} // namespace sim::cli
