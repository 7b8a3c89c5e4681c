// Items as references: what makes one, which are equal, and what happens to them when their file changes or goes.
#include "simulator/macos/CoreServices/metadata/items/file_source.h"
#include "simulator/macos/CoreServices/metadata/items/item.h"
#include "simulator/macos/control/stop.h"
#include "tests/simulator/macos/items/support/reading.h"
#include "tests/simulator/macos/items/support/sample_images.h"
#include "tests/simulator/macos/support/balance.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <unistd.h>

namespace sim::macos {

namespace {

/// A file that no disk has, and a count of what was asked about it.
class ScriptedFile final : public AttributeSource {
public:
    explicit ScriptedFile(std::uint64_t number) : number_(number) {}

    FileIdentity Identity() const override { return {.volume = 0, .file = number_}; }
    std::string Path() const override { return "/scripted/" + std::to_string(number_); }
    CFTypeRef Copy(std::string_view key) const override {
        asked_++;
        return key == "com_example_color" ? CFStringCreateWithCString(nullptr, "red", kCFStringEncodingUTF8) : nullptr;
    }
    std::vector<std::string> Names() const override { return {"com_example_color"}; }

    int Asked() const { return asked_; }

private:
    std::uint64_t number_;
    mutable int asked_ = 0;
};

CFRef<MDItemRef> ItemOf(std::shared_ptr<const AttributeSource> source) {
    return CFRef<MDItemRef>::Adopt(Item::Create(std::move(source)));
}

CFRef<CFMutableArrayRef> Array(const std::vector<std::string> &texts) {
    auto array = CFRef<CFMutableArrayRef>::Adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    for (const std::string &text : texts)
        CFArrayAppendValue(array.Get(), String(text).Get());
    return array;
}

CFRef<MDItemRef> ItemAtURL(const char *url) {
    const auto reference = CFRef<CFURLRef>::Adopt(CFURLCreateWithString(nullptr, String(url).Get(), nullptr));
    REQUIRE(reference);
    return CFRef<MDItemRef>::Adopt(MDItemCreateWithURL(nullptr, reference.Get()));
}

} // namespace

TEST_CASE("an item has the type of items") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto item = ItemAt(folder.Path());
    REQUIRE(item);
    CHECK(CFGetTypeID(item.Get()) == MDItemGetTypeID());
    CHECK(MDItemGetTypeID() != CFStringGetTypeID());
}

TEST_CASE("there is no item of a file that does not exist, nor of a URL that names no file") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK_FALSE(ItemAt(folder.PathOf("missing")));
    CHECK_FALSE(ItemAt(folder.PathOf("missing/below")));
    CHECK_FALSE(ItemAtURL("http://example.org/tmp"));
    CHECK_FALSE(ItemAtURL("mailto:zoe@example.org"));
    CHECK(ItemAtURL("file:///"));
}

TEST_CASE("a dangling link is a file that exists") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    REQUIRE(symlink("nowhere", folder.PathOf("link").c_str()) == 0);
    CHECK(ItemAt(folder.PathOf("link")));
}

TEST_CASE("a folder's URL may end with a slash, a file's path hold blanks and dots") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    folder.File("a b", "words");
    CHECK(Text(Attribute(folder.Path() + "/", "kMDItemPath")) == folder.Path());
    CHECK(Text(Attribute(folder.Path() + "/./x/../a b", "kMDItemPath")) == folder.PathOf("a b"));
    CHECK(Text(Attribute(ItemAtURL(("file://" + folder.Path() + "/a%20b").c_str()), "kMDItemFSName")) == "a b");
}

TEST_CASE("two items of one file are equal and hash alike, whichever path they were made from") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto first = ItemAt(folder.File("first", ""));
    REQUIRE(link(folder.PathOf("first").c_str(), folder.PathOf("second").c_str()) == 0);
    const auto second = ItemAt(folder.PathOf("second"));
    const auto other = ItemAt(folder.File("other", ""));
    CHECK(first.Get() != second.Get());
    CHECK(CFEqual(first.Get(), second.Get()));
    CHECK(CFHash(first.Get()) == CFHash(second.Get()));
    CHECK_FALSE(CFEqual(first.Get(), other.Get()));
}

TEST_CASE("a file's identity is its device, its number and its birth as stat(1) reads them") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("known", "");
    const FileIdentity identity = FileSource::At(path)->Identity();
    CHECK(std::to_string(identity.volume) == OutputOf("stat --format=%d " + path));
    CHECK(std::to_string(identity.file) == OutputOf("stat --format=%i " + path));
    const std::string birth = OutputOf("stat --format=%.9W " + path); // seconds, a point and nine digits
    CHECK(identity.birth == std::stoll(birth) * 1'000'000'000 + std::stoll(birth.substr(birth.find('.') + 1)));
}

TEST_CASE("items of scripted files go by their identity and answer from their source") {
    const tests::Balanced balance;
    const auto file = std::make_shared<ScriptedFile>(1);
    const auto item = ItemOf(file);
    CHECK(file->Asked() == 0);
    CHECK(Text(Attribute(item, "com_example_color")) == "red");
    CHECK(file->Asked() == 1);
    CHECK_FALSE(Attribute(item, "kMDItemFSName"));
    CHECK(CFEqual(item.Get(), ItemOf(std::make_shared<ScriptedFile>(1)).Get()));
    CHECK_FALSE(CFEqual(item.Get(), ItemOf(std::make_shared<ScriptedFile>(2)).Get()));
}

TEST_CASE("an item tells the state of the moment it is asked") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto item = ItemAt(folder.File("growing.txt", "one"));
    CHECK(Whole(Attribute(item, "kMDItemFSSize")) == 3);
    std::ofstream(folder.PathOf("growing.txt"), std::ios::app) << "two";
    CHECK(Whole(Attribute(item, "kMDItemFSSize")) == 6);
}

TEST_CASE("an item whose file has gone tells which one it was and nothing else") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("gone.png", kRGBAPicture);
    tests::SetExtendedAttribute(path, "user.xdg.comment", "soon gone");
    const auto item = ItemAt(path);
    REQUIRE(std::filesystem::remove(path));
    CHECK(Text(Attribute(item, "kMDItemFSName")) == "gone.png");
    CHECK(Text(Attribute(item, "kMDItemDisplayName")) == "gone.png");
    CHECK(Text(Attribute(item, "kMDItemPath")) == path);
    CHECK(Texts(Value::Adopt(MDItemCopyAttributeNames(item.Get()))) ==
          std::vector<std::string>{"kMDItemFSName", "kMDItemDisplayName", "kMDItemPath"});
}

TEST_CASE("an item follows its file to a new name and refuses to become another's") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto item = ItemAt(folder.File("old", ""));
    const CFHashCode hash = CFHash(item.Get());
    std::filesystem::rename(folder.PathOf("old"), folder.PathOf("new"));
    Item::From(item.Get())->SetSource(FileSource::At(folder.PathOf("new")));
    CHECK(Text(Attribute(item, "kMDItemFSName")) == "new");
    CHECK(CFHash(item.Get()) == hash);
    folder.File("other", "");
    const StopsThrow stops;
    CHECK_THROWS_AS(Item::From(item.Get())->SetSource(FileSource::At(folder.PathOf("other"))), Stopped);
}

TEST_CASE("several attributes come as a dictionary that lacks those the file lacks") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto item = ItemAt(folder.File("a.txt", "words"));
    const auto names = Array({"kMDItemFSName", "kMDItemAlbum", "kMDItemFSSize", "no such", "kMDItemFSName"});
    const auto attributes = CFRef<CFDictionaryRef>::Adopt(MDItemCopyAttributes(item.Get(), names.Get()));
    CHECK(CFDictionaryGetCount(attributes.Get()) == 2);
    CHECK(Text(CFDictionaryGetValue(attributes.Get(), kMDItemFSName)) == "a.txt");
    CHECK(Whole(CFDictionaryGetValue(attributes.Get(), kMDItemFSSize)) == 5);
    const auto none = CFRef<CFDictionaryRef>::Adopt(MDItemCopyAttributes(item.Get(), Array({}).Get()));
    CHECK(CFDictionaryGetCount(none.Get()) == 0);
}

TEST_CASE("the names of an item's attributes are those it has values for, each once") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto item = ItemAt(folder.File("a.png", kRGBAPicture));
    const auto names = Texts(Value::Adopt(MDItemCopyAttributeNames(item.Get())));
    const std::set<std::string> set(names.begin(), names.end());
    CHECK(set.size() == names.size());
    for (const std::string &name : names) {
        CAPTURE(name);
        CHECK(Attribute(item, name));
    }
    for (const char *name : {"kMDItemFSName", "kMDItemFSSize", "kMDItemContentType", "kMDItemKind", "kMDItemPixelWidth",
                             "kMDItemDateAdded", "kMDItemFSInvisible"})
        CHECK(set.contains(name));
    for (const char *name : {"kMDItemTextContent", "kMDItemFSNodeCount", "kMDItemAlbum", "kMDItemFinderComment"})
        CHECK_FALSE(set.contains(name));
}

TEST_CASE("every name that an item offers is known to the schema, with the type that the value has") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("a.png", kRGBAPicture);
    tests::SetExtendedAttribute(path, "user.xdg.comment", "words");
    tests::SetExtendedAttribute(path, "user.xdg.tags", "Red");
    tests::SetExtendedAttribute(path, "user.xdg.origin.url", "https://example.org/");
    tests::SetExtendedAttribute(path, "user.baloo.rating", "7");
    for (const auto &item : {ItemAt(path).Give(), ItemAt(folder.Path()).Give()}) {
        const auto owned = CFRef<MDItemRef>::Adopt(item);
        for (const std::string &name : Texts(Value::Adopt(MDItemCopyAttributeNames(item)))) {
            CAPTURE(name);
            const auto known =
                CFRef<CFDictionaryRef>::Adopt(MDSchemaCopyMetaAttributesForAttribute(String(name).Get()));
            REQUIRE(known);
            const auto type = static_cast<CFTypeID>(Whole(CFDictionaryGetValue(known.Get(), kMDAttributeType)));
            CHECK(CFGetTypeID(Attribute(owned, name).Get()) == type);
        }
    }
}

TEST_CASE("a name that is not UTF-8 shows its odd bytes in hexadecimal") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto item = ItemOf(FileSource::At(folder.File("Gr\xFC\xC3\xBC\xE2\x82.txt", "words")));
    CHECK(Text(Attribute(item, "kMDItemFSName")) == "Gr%FC\xC3\xBC%E2%82.txt");
    CHECK(Whole(Attribute(item, "kMDItemFSSize")) == 5);
}

TEST_CASE("each call of an item fails on demand and recovers") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    faults::FailCall("MDItemCreateWithURL", 1);
    CHECK_FALSE(ItemAt(folder.Path()));
    const auto item = ItemAt(folder.Path());
    REQUIRE(item);
    faults::FailCall("MDItemCopyAttribute", 1);
    CHECK_FALSE(Attribute(item, "kMDItemFSName"));
    CHECK(Attribute(item, "kMDItemFSName"));
    const auto names = Array({"kMDItemFSName"});
    faults::FailCall("MDItemCopyAttributes", 1);
    CHECK(MDItemCopyAttributes(item.Get(), names.Get()) == nullptr);
    faults::FailCall("MDItemCopyAttributeNames", 1);
    CHECK(MDItemCopyAttributeNames(item.Get()) == nullptr);
}

TEST_CASE("one call of an item counts once, whatever it does inside") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto item = ItemAt(folder.Path());
    faults::Reset();
    CHECK(Value::Adopt(MDItemCopyAttributeNames(item.Get())));
    CHECK(faults::Count() == 1);
}

TEST_CASE("a hundred thousand items cost no look at their files") {
    const tests::Balanced balance;
    std::vector<CFRef<MDItemRef>> items;
    items.reserve(100'000);
    const auto missing = std::make_shared<const FileSource>("/nowhere/to/be/found", FileIdentity{1, 2, 3});
    for (int i = 0; i < 100'000; i++)
        items.push_back(ItemOf(missing));
    CHECK(CFEqual(items.front().Get(), items.back().Get()));
    CHECK(Text(Attribute(items.back(), "kMDItemFSName")) == "found");
}

TEST_CASE("calling an item's functions with something else is refused") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto item = ItemAt(folder.Path());
    const StopsThrow stops;
    const auto notAnItem = reinterpret_cast<MDItemRef>(const_cast<void *>(static_cast<const void *>(kMDItemFSName)));
    CHECK_THROWS_AS(MDItemCopyAttribute(notAnItem, kMDItemFSName), Stopped);
    CHECK_THROWS_AS(MDItemCopyAttribute(nullptr, kMDItemFSName), Stopped);
    CHECK_THROWS_AS(MDItemCopyAttribute(item.Get(), nullptr), Stopped);
    CHECK_THROWS_AS(MDItemCreateWithURL(nullptr, nullptr), Stopped);
}

} // namespace sim::macos
