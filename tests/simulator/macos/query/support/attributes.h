// A file that consists of nothing but attributes.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"
#include "tests/simulator/macos/query/support/values.h"

#include <map>
#include <string>
#include <utility>

namespace sim::macos {

class Attributes final : public AttributeSource {
public:
    Attributes &With(std::string name, Value value) {
        values_[std::move(name)] = std::move(value);
        return *this;
    }
    /// An attribute that a query can search and nobody can read.
    Attributes &WithSearchable(std::string name, Value value) {
        searchable_[std::move(name)] = std::move(value);
        return *this;
    }

    FileIdentity Identity() const override { return {0, 1, 0}; }
    std::string Path() const override { return "/nowhere"; }
    CFTypeRef Copy(std::string_view key) const override {
        const auto found = values_.find(std::string(key));
        return found == values_.end() ? nullptr : found->second.Copy().Give();
    }
    CFTypeRef CopyForSearch(std::string_view key) const override {
        const auto found = searchable_.find(std::string(key));
        return found == searchable_.end() ? Copy(key) : found->second.Copy().Give();
    }
    std::vector<std::string> Names() const override { return {}; }

private:
    std::map<std::string, Value> values_;
    std::map<std::string, Value> searchable_;
};

} // namespace sim::macos
