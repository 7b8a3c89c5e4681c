#include "simulator/macos/control/environment.h"
#include "tests/simulator/macos/corefoundation/support.h"

using namespace sim::macos;
using namespace tests;

namespace {

CFRef<CFBundleRef> CoreServicesBundle() {
    FSRef folder;
    REQUIRE_EQ(FSFindFolder(kOnAppropriateDisk, kFrameworksFolderType, true, &folder), noErr);
    const auto folderUrl = CFRef<CFURLRef>::Adopt(CFURLCreateFromFSRef(kCFAllocatorSystemDefault, &folder));
    REQUIRE_EQ(tests::TextOf(folderUrl.Get()), "file:///System/Library/Frameworks/");
    const auto url = CFRef<CFURLRef>::Adopt(CFURLCreateCopyAppendingPathComponent(
        kCFAllocatorSystemDefault, folderUrl.Get(), CFSTR("CoreServices.framework"), false));
    return CFRef<CFBundleRef>::Adopt(CFBundleCreate(kCFAllocatorSystemDefault, url.Get()));
}

} // namespace

TEST_CASE_FIXTURE(Balanced, "The CoreServices framework is found, loads, and lacks the getter of the sort options") {
    const auto bundle = CoreServicesBundle();
    REQUIRE(bundle);
    CHECK(CFBundleLoadExecutable(bundle.Get()));
    CHECK(CFBundleLoadExecutable(bundle.Get()));
    CHECK_EQ(CFBundleGetFunctionPointerForName(bundle.Get(), CFSTR("MDQueryGetSortOptionFlagsForAttribute")), nullptr);
    CHECK_NE(CFBundleGetFunctionPointerForName(bundle.Get(), CFSTR("MDQuerySetSortOptionFlagsForAttribute")), nullptr);
    CHECK_NE(CFBundleGetFunctionPointerForName(bundle.Get(), CFSTR("MDQuerySetSortOrder")), nullptr);
    CHECK_EQ(CFBundleGetFunctionPointerForName(bundle.Get(), CFSTR("NoSuchFunction")), nullptr);
}

TEST_CASE_FIXTURE(Balanced, "Each of the three sort functions can be there or not") {
    environment::SetExports("MDQueryGetSortOptionFlagsForAttribute", true);
    environment::SetExports("MDQuerySetSortOrder", false);
    const auto bundle = CoreServicesBundle();
    CHECK(CFBundleLoadExecutable(bundle.Get()));
    CHECK_NE(CFBundleGetFunctionPointerForName(bundle.Get(), CFSTR("MDQueryGetSortOptionFlagsForAttribute")), nullptr);
    CHECK_EQ(CFBundleGetFunctionPointerForName(bundle.Get(), CFSTR("MDQuerySetSortOrder")), nullptr);
    environment::Reset();
    CHECK_EQ(CFBundleGetFunctionPointerForName(bundle.Get(), CFSTR("MDQueryGetSortOptionFlagsForAttribute")), nullptr);
}

TEST_CASE_FIXTURE(Balanced, "A framework that cannot be loaded has no functions") {
    environment::SetFrameworkLoads(false);
    const auto bundle = CoreServicesBundle();
    REQUIRE(bundle);
    CHECK_FALSE(CFBundleLoadExecutable(bundle.Get()));
    CHECK_EQ(CFBundleGetFunctionPointerForName(bundle.Get(), CFSTR("MDQuerySetSortOrder")), nullptr);
}

TEST_CASE_FIXTURE(Balanced, "A bundle is made of a folder that exists and of nothing else") {
    const TemporaryFolder folder;
    const auto create = [](const std::string &path) {
        const auto url = CFRef<CFURLRef>::Adopt(CFURLCreateWithFileSystemPath(
            nullptr, MakeString(std::string_view(path)).Get(), kCFURLPOSIXPathStyle, false));
        return CFRef<CFBundleRef>::Adopt(CFBundleCreate(nullptr, url.Get()));
    };
    CHECK_FALSE(create(folder.File("file")));
    CHECK_FALSE(create(folder.PathOf("absent")));
    CHECK_FALSE(CFRef<CFBundleRef>::Adopt(CFBundleCreate(nullptr, UrlFrom("http://example.org/").Get())));
    const auto plain = create(folder.Path());
    REQUIRE(plain);
    CHECK_EQ(CFGetTypeID(plain.Get()), CFBundleGetTypeID());
    CHECK_FALSE(CFBundleLoadExecutable(plain.Get()));
    environment::SetFrameworkExists(false);
    CHECK_FALSE(CoreServicesBundle());
}
