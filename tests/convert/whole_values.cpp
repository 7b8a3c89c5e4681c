#include "tests/convert/whole_values.h"

#include <cstring>

namespace tests {

namespace {

using sim::host::Host;
using sim::host::Object;
using sim::host::Value;

Object Numbers(Host &host, const char *className, std::initializer_list<double> numbers) {
    Object object = host.Create(className);
    std::memcpy(object.Data(), std::data(numbers), numbers.size() * sizeof(double));
    return object;
}

Object Wrapper(Host &host, const char *className, const char *typeName) {
    Object wrapper = host.Create(className);
    const CFTypeRef held = CoreInstance(typeName).Give();
    std::memcpy(wrapper.Data(), &held, sizeof held);
    return wrapper;
}

} // namespace

CoreValue WholeCoreValue(const TemporaryFolder &folder) {
    std::vector<CoreValue> kept;
    for (const std::string &type : sim::macos::OpaqueTypeNames())
        kept.push_back(CoreInstance(type));
    std::vector<CFTypeRef> references;
    for (const CoreValue &value : kept)
        references.push_back(value.Get());

    return CoreArray({
        CoreText("text"),
        CoreText(std::string(200, 'x')),
        CoreText(""),
        CoreTruth(true),
        CoreInteger(700),
        CoreNumber<int64_t>(kCFNumberSInt64Type, 3'000'000'000),
        CoreDouble(2.5),
        CoreDate(425863859.9),
        CoreData("bytes"),
        CoreData(""),
        CoreNull(),
        CoreFileURL(folder.File("there")),
        CoreFileURL(folder.PathOf("n\xC3\xA9w")),
        CoreURL("file:///"),
        CoreURL("http://example.org/"),
        CoreArray(references),
        CoreDictionary({{CoreText("a"), CoreDictionary({{CoreText("b"), CoreDate(0)}})},
                        {CoreArray({CoreInteger(1)}), CoreNull()},
                        {CoreDate(1), CoreData("c")}}),
    });
}

Value WholeHostValue(Host &host, const TemporaryFolder &folder) {
    const Object unreadable = host.NewDate({2014});
    unreadable.MakeDateUnreadable();
    return host.NewDictionary({
        {"text", "Gr\xC3\xB6\xC3\x9F"
                 "e"},
        {"scalars", host.NewArray("variant", {true, 7, int64_t{3'000'000'000}, 1.5F, 2.5, sim::host::Color{0x336699},
                                              "", nullptr, host.NewVariant(10, "other"), host.NewVariant(6, 1.25)})},
        {"date", host.NewDate({2014, 6, 30})},
        {"block", host.NewMemoryBlock("bytes")},
        {"files", host.NewArray("folderitem", {host.NewFolderItem(folder.File("here")),
                                               host.NewFolderItem(folder.PathOf("n\xC3\xA9w")),
                                               host.NewFolderItem("/no such folder/file")})},
        {"strings", host.NewArray("string", {"a", nullptr, "b"})},
        {"dates", host.NewArray("date", {host.NewDate({2001, 1, 1}), unreadable, nullptr})},
        {"booleans", host.NewArray("boolean", {true, false})},
        {"numbers",
         host.NewArray("variant", {host.NewArray("integer", {1, 2}), host.NewArray("int64", {int64_t{1}, int64_t{2}}),
                                   host.NewArray("single", {1.5F, 2.5F}), host.NewArray("double", {1.5, 2.5})})},
        {"geometry",
         host.NewArray("variant", {Numbers(host, "CGRectQTX", {1, 2, 3, 4}), Numbers(host, "CGSizeQTX", {1, 2}),
                                   Numbers(host, "CGPointQTX", {1, 2})})},
        {"wrappers",
         host.NewArray("variant", {Wrapper(host, "CGImageQTX", "CGImage"), Wrapper(host, "CFObjectQTX", "CFReadStream"),
                                   host.Create("CGFontQTX"), host.Create("RuntimeException")})},
        {host.NewDate({2014}), host.NewDictionary({{nullptr, 1}, {2, nullptr}, {"c", host.NewDictionary()}})},
    });
}

sim::host::HostOptions OptionsOf(const HostKind &kind) {
    sim::host::HostOptions options;
    options.version = kind.version;
    options.directArrayStorage = kind.directArrayStorage;
    options.offersCFStrings = kind.offersCFStrings;
    options.recordCalls = false;
    for (const auto &[name, count] :
         {std::pair("CGRectQTX", 4U), std::pair("CGSizeQTX", 2U), std::pair("CGPointQTX", 2U)})
        options.companions.push_back({.name = name, .wraps = false, .dataSize = count * 8});
    return WithCompanions(WrapperClasses(), options);
}

} // namespace tests
