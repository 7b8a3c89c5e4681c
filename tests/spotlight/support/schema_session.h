// A host program that asks the item class's shared methods about attributes.
#pragma once

#include "tests/spotlight/support/query_program.h"

namespace tests {

struct SchemaSession : TestSession {
    using TestSession::TestSession;

    Value Ask(const std::string &method, const Value &name) { return Host().Shared("MDItemQTX", method, name); }
    /// "" for nil.
    std::string TypeOf(const Value &name) { return Ask("AttributeType", name).As<std::string>(); }
    bool IsMultiValued(const Value &name) { return Ask("AttributeMultiValued", name).As<bool>(); }
    Object All() { return Host().Shared<Object>("MDItemQTX", "AllAttributes"); }
};

} // namespace tests
