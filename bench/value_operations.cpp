#include "bench/value_operations.h"

#include "bench/bare_metadata.h"
#include "bench/floor_methods.h"

namespace bench {

namespace {

/// A name that needs no conversion worth the word, so that what is counted is the value's.
void SetAttributeName() {
    static const auto name = TextOf("a");
    SetSampleText("a", 1, kCFStringEncodingUTF8, name.Get());
}

} // namespace

void MeasureToHost(const Measure &measure, const Plugin &plugin, const Value &what, CFTypeRef value) {
    SetAttributeName();
    SetAnswers({.attribute = value});
    measure({std::string(what.name) + ", to host", what.size},
            plugin.Method<Object *(*)(Object *, String *)>("MDItemQTX", "GetAttribute(name"), floors::GetAttribute,
            ObjectWith("MDItemQTX", CFSTR("an item")), SampleString());
}

void MeasureFromHost(const Measure &measure, const Plugin &plugin, const Value &what, Object *value) {
    SetAttributeName();
    measure({std::string(what.name) + ", from host", what.size},
            plugin.Method<uint32_t (*)(Object *, String *, Object *)>("MDQueryQTX", "CountOfResultsWith"),
            floors::CountOfResultsWithAttributeValue, ObjectWith("MDQueryQTX", CFSTR("a query")), SampleString(),
            value);
    UnlockObject(value);
}

} // namespace bench
