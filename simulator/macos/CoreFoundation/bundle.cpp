// Bundles. Any folder is one; the only executable that can be loaded is that of the CoreServices framework, which is
// the stand-in library itself. Which functions it exports is a property of the system (control/environment.h).
#include "simulator/macos/CoreFoundation/file_system.h"
#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreFoundation/url.h"
#include "simulator/macos/control/environment.h"
#include "simulator/macos/control/faults.h"

#include <CoreFoundation/CFBundle.h>

#include <dlfcn.h>

using namespace sim::macos;

namespace {

FallibleCall createBundle("CFBundleCreate");
FallibleCall loadExecutable("CFBundleLoadExecutable");

class Bundle final : public Object {
public:
    explicit Bundle(std::string path) : path_(std::move(path)) {}

    CFTypeID TypeID() const override { return CFBundleGetTypeID(); }
    bool EqualTo(const Object &other) const override { return path_ == static_cast<const Bundle &>(other).path_; }
    CFHashCode Hash() const override { return std::hash<std::string>()(path_); }
    std::string Description() const override { return path_; }

    bool Load() {
        loaded_ = loaded_ || (path_ == environment::kCoreServicesFramework && environment::FrameworkLoads());
        return loaded_;
    }

    void *Find(const std::string &function) const {
        if (!loaded_ || !environment::Exports(function))
            return nullptr;
        // Never closed: a bundle's executable stays as long as the process does.
        static void *library = dlopen("libCoreServices.so", RTLD_NOW | RTLD_LOCAL);
        if (!library)
            Stop(std::string("the stand-in CoreServices cannot be loaded: ") + dlerror());
        void *address = dlsym(library, function.c_str());
        if (!address)
            Stop("the stand-in CoreServices has no function " + function);
        return address;
    }

private:
    std::string path_;
    bool loaded_ = false;
};

} // namespace

CFTypeID CFBundleGetTypeID() {
    static const CFTypeID type = RegisterType("CFBundle");
    return type;
}

CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef url) {
    const std::optional<std::string> path = FilePathOf(url);
    if (createBundle.Fails() || !path)
        return nullptr;
    std::optional<std::string> existing = ExistingPath(*path);
    if (!existing || !IsDirectory(*existing))
        return nullptr;
    return (new Bundle(std::move(*existing)))->As<CFBundleRef>();
}

Boolean CFBundleLoadExecutable(CFBundleRef bundle) {
    Bundle &object = Expect<Bundle>(bundle);
    return !loadExecutable.Fails() && object.Load();
}

void *CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name) {
    Bundle &object = Expect<Bundle>(bundle);
    return object.Find(Utf8Of(name));
}
