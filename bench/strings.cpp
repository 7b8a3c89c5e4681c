// Strings in both directions, by the two methods that do little else: QueryString gives the program a text of the
// system's, the search window gets one of the program's.
#include "bench/bare_metadata.h"
#include "bench/floor_methods.h"
#include "bench/operations.h"

namespace bench {

namespace {

constexpr int kLengths[] = {5, 99, 100, 10'000};
constexpr int kLongestOnStack = 99;

std::string Kind(bool isASCII) { return isASCII ? "ASCII" : "not ASCII"; }

void MeasureToHost(const Measure &measure, const Plugin &plugin, bool isASCII) {
    const auto queryString = plugin.Method<String *(*)(Object *)>("MDQueryQTX", "QueryString as string");
    Object *query = ObjectWith("MDQueryQTX", CFSTR("a query"));
    for (const int length : kLengths) {
        const auto text = TextOf(Text(length, isASCII));
        SetAnswers({.queryText = text.Get()});
        measure({"text to host, " + Kind(isASCII), length, length <= kLongestOnStack}, queryString, floors::QueryString,
                query);
    }
}

void MeasureFromHost(const Measure &measure, const Plugin &plugin, bool isASCII, bool hasCFString) {
    const auto showWindow = plugin.GlobalMethod<int32_t (*)(String *)>();
    const std::string name = std::string("text from host, ") + (hasCFString ? "" : "by bytes, ") + Kind(isASCII);
    for (const int length : kLengths) {
        // The bytes of an old host's string follow a byte of its length.
        const std::string bytes = " " + Text(length, isASCII);
        const auto text = TextOf(bytes.substr(1));
        SetSampleText(bytes.data() + 1, static_cast<int32_t>(bytes.size() - 1), kCFStringEncodingUTF8,
                      hasCFString ? text.Get() : nullptr);
        measure({name, length, true}, showWindow, floors::ShowSearchWindow, SampleString());
    }
}

} // namespace

void MeasureStrings(const Settings &settings, const Plugin &plugin) {
    const Measure measure(settings, "strings", plugin.HostAge());
    if (!measure.IsWanted())
        return;
    for (const bool isASCII : {true, false}) {
        MeasureToHost(measure, plugin, isASCII);
        MeasureFromHost(measure, plugin, isASCII, false);
        MeasureFromHost(measure, plugin, isASCII, true);
    }
}

} // namespace bench
