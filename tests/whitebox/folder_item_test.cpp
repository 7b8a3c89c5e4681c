// Folder items of a host that gives a name longer than the File Manager's records hold.
#include "simulator/macos/control/faults.h"
#include <doctest/doctest.h>

#include "convert/folder_items.h"
#include "host/owned.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"

#include <algorithm>

namespace {

UInt16 nameLength = 0;

/// An item in the root folder that does not exist; its name is as many times "a" as the test says.
HostBoolean ReferenceOfMissing(REALfolderItemStruct *, FSRef *out, HFSUniStr255 *name) {
    if (!name)
        return 0;
    const auto root = OwnedCF<CFURLRef>::Adopt(
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, CFSTR("/"), kCFURLPOSIXPathStyle, true));
    REQUIRE(CFURLGetFSRef(root.Get(), out));
    name->length = nameLength;
    std::fill(std::begin(name->unicode), std::end(name->unicode), UniChar{'a'});
    return 1;
}

OwnedCF<CFURLRef> URLOfNameOfLength(UInt16 length) {
    const whitebox::Restored restored(REALFSRefFromFolderItem);
    whitebox::FakeResolver resolver;
    resolver.Offer("REALFSRefFromFolderItem", ReferenceOfMissing);
    nameLength = length;
    return OwnedCF<CFURLRef>::Adopt(CreateCFURLfromFolderItem(reinterpret_cast<REALfolderItemStruct *>(&nameLength)));
}

} // namespace

TEST_CASE("A name of up to 255 units is appended to its folder, and a longer one is not read") {
    for (const UInt16 length : {UInt16{1}, UInt16{255}}) {
        const auto url = URLOfNameOfLength(length);
        REQUIRE(url);
        const auto name = OwnedCF<CFStringRef>::Adopt(CFURLCopyLastPathComponent(url.Get()));
        CHECK(CFStringGetLength(name.Get()) == length);
    }
    for (const UInt16 length : {UInt16{0}, UInt16{256}, UInt16{0xFFFF}})
        CHECK_FALSE(URLOfNameOfLength(length));
}

TEST_CASE("For a name longer than the record nobody else is asked") {
    sim::macos::faults::Reset();
    sim::macos::faults::FailEvery("CFURLCreateFromFSRef");
    CHECK_FALSE(URLOfNameOfLength(256));
    CHECK(sim::macos::faults::Failed() == 0);
    CHECK_FALSE(URLOfNameOfLength(255));
    CHECK(sim::macos::faults::Failed() == 1);
    sim::macos::faults::Reset();
}
