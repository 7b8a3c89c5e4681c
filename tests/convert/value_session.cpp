#include "tests/convert/value_session.h"

#include "simulator/macos/CoreServices/metadata/items/item.h"
#include "simulator/macos/CoreServices/metadata/query/asked_values.h"

#include <CoreServices/CoreServices.h>
#include <doctest/doctest.h>

#include <bit>

namespace tests {

namespace {

using sim::host::Object;
using sim::host::Value;

/// A file of no place with one value.
class OneValue final : public sim::macos::AttributeSource {
public:
    explicit OneValue(CFTypeRef value) : value_(CoreValue::Retain(value)) {}

    sim::macos::FileIdentity Identity() const override { return {}; }
    std::string Path() const override { return "/value"; }
    CFTypeRef Copy(std::string_view key) const override { return key == "nothing" ? nullptr : value_.Copy().Give(); }
    std::vector<std::string> Names() const override { return {"value"}; }

private:
    CoreValue value_;
};

} // namespace

Object ItemWith(sim::Session &session, CFTypeRef value) {
    Object item = session.Host().Create("MDItemQTX");
    const MDItemRef handle = sim::macos::Item::Create(std::make_shared<OneValue>(value));
    item.Set("Handle", std::bit_cast<int32_t>(handle));
    return item;
}

Object NewQuery(sim::Session &session) {
    Object query = session.Host().Create("MDQueryQTX");
    const sim::macos::OwnCalls own;
    const auto text = sim::macos::MakeString("kMDItemFSName == \"*\"");
    query.Set("Handle", std::bit_cast<int32_t>(MDQueryCreate(nullptr, text.Get(), nullptr, nullptr)));
    return query;
}

Value ToHost(sim::Session &session, CFTypeRef value) { return ItemWith(session, value).Call("GetAttribute", "value"); }

CoreValue FromHost(sim::Session &session, const Value &value) {
    const sim::macos::AskedValues asked;
    CHECK(NewQuery(session).Call<uint32_t>("CountOfResultsWithAttributeValue", "value", value) == 0);
    REQUIRE(asked.Values().size() <= 1);
    return asked.Values().empty() ? CoreValue() : asked.Values().front().Copy();
}

sim::host::HostOptions WithCompanions(const std::vector<std::string> &names, sim::host::HostOptions options) {
    for (const std::string &name : names)
        options.companions.push_back({.name = name});
    return options;
}

const std::vector<std::string> &WrapperClasses() {
    static const std::vector<std::string> names = {
        "CGColorSpaceQTX",
        "CGColorQTX",
        "CGImageQTX",
        "CGLayerQTX",
        "CGPathQTX",
        "CGDataConsumerQTX",
        "CGDataProviderQTX",
        "CGPSConverterQTX",
        "CGContextQTX",
        "CGEventQTX",
        "CGEventSourceQTX",
        "CGFontQTX",
        "CFURLQTX",
        "CFDictionaryQTX",
        "CFStringQTX",
        "CFNumberQTX",
        "CFArrayQTX",
        "CFBooleanQTX",
        "CFBinaryDataQTX",
        "CFCharacterSetQTX",
        "CFBundleQTX",
        "CFSetQTX",
        "CFBagQTX",
        "CFUUIDQTX",
        "CFTimeZoneQTX",
        "CFDateQTX",
        "CFAttributedStringQTX",
        "CFErrorQTX",
        "CTFontQTX",
        "CTFontCollectionQTX",
        "CTFrameQTX",
        "CTFramesetterQTX",
        "CTGlyphInfoQTX",
        "CTLineQTX",
        "CTParagraphStyleQTX",
        "CTRunQTX",
        "CTTypesetterQTX",
        "CTRunDelegateQTX",
        "CFObjectQTX",
        "KeychainQTX",
        "KeychainItemQTX",
        "NSAttributedStringQTX",
        "NSTimerQTX",
        "NSCalendarQTX",
        "NSCharacterSetQTX",
        "NSErrorQTX",
        "NSLocaleQTX",
        "NSTimeZoneQTX",
    };
    return names;
}

CFTypeRef HeldBy(const Object &wrapper) { return *static_cast<CFTypeRef *>(wrapper.Data()); }

} // namespace tests
