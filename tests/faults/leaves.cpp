#include "tests/faults/leaves.h"

#include <algorithm>

namespace tests::faults {

namespace {

using sim::host::Object;
using sim::host::Value;

/// A truth value says how it went with what there was; a sort order of no names, for one, can be set.
constexpr const char *kNeutral[] = {"nil", "\"\"", "0", "false", "true", "-1"};

} // namespace

void AddLeaves(Leaves &leaves, const Value &value) {
    // The bytes alone: a host that cannot be told an encoding gets the text without one.
    if (value.Is<std::string>()) {
        leaves.push_back('"' + value.As<sim::host::Text>().bytes + '"');
        return;
    }
    if (value.IsNil() || !value.Is<Object>()) {
        leaves.push_back(value.Describe());
        return;
    }
    const auto object = value.As<Object>();
    const std::string name = object.ClassName();
    if (name.ends_with("()")) {
        for (const Value &element : object.Elements())
            AddLeaves(leaves, element);
    } else if (name == "Dictionary") {
        for (const auto &[key, held] : object.Entries()) {
            AddLeaves(leaves, key);
            AddLeaves(leaves, held);
        }
    } else if (name == "Date") {
        const sim::host::DateFields date = object.Date();
        leaves.push_back("Date " + std::to_string(date.year) + " " + std::to_string(date.day) + " " +
                         std::to_string(date.second));
    } else if (name == "MemoryBlock") {
        leaves.push_back("MemoryBlock " + std::to_string(object.Bytes().size()));
    } else if (name == "FolderItem") {
        leaves.push_back("FolderItem " + object.Path());
    } else {
        leaves.push_back(name);
    }
}

bool IsNeutral(const std::string &leaf) {
    return std::find(std::begin(kNeutral), std::end(kNeutral), leaf) != std::end(kNeutral);
}

} // namespace tests::faults
