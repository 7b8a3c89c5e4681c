// One value of each kind, in both directions.
#include "bench/value_operations.h"

#include <ApplicationServices/ApplicationServices.h>

#include <limits>

namespace bench {

namespace {

template <class Number> Ref<CFNumberRef> NumberOfType(CFNumberType type, Number number) {
    return Ref<CFNumberRef>::Adopt(CFNumberCreate(kCFAllocatorDefault, type, &number));
}

void MeasureAllToHost(const Measure &measure, const Plugin &plugin, CFURLRef file) {
    const auto toHost = [&](const char *name, CFTypeRef value) { MeasureToHost(measure, plugin, {name}, value); };
    toHost("string", TextOf("text").Get());
    toHost("boolean", kCFBooleanTrue);
    toHost("32-bit integer", NumberOf(1).Get());
    toHost("64-bit integer", NumberOfType(kCFNumberSInt64Type, std::numeric_limits<int64_t>::max()).Get());
    toHost("double", NumberOfType(kCFNumberFloat64Type, 0.5).Get());
    toHost("date", Ref<CFDateRef>::Adopt(CFDateCreate(kCFAllocatorDefault, 4e8)).Get());
    const UInt8 bytes[64] = {};
    toHost("data", Ref<CFDataRef>::Adopt(CFDataCreate(kCFAllocatorDefault, bytes, sizeof bytes)).Get());
    toHost("file", file);
    toHost("color, wrapped", Ref<CGColorRef>::Adopt(CGColorCreateGenericRGB(0, 0, 0, 1)).Get());
    toHost("null", kCFNull);
}

/// A variant that holds a value of this type, read from the same place whatever it is.
Object *VariantOfType(int32_t type) {
    Object *variant = IntegerToVariant(1);
    variant->type = type;
    return variant;
}

void MeasureAllFromHost(const Measure &measure, const Plugin &plugin) {
    const auto fromHost = [&](const char *name, Object *value) { MeasureFromHost(measure, plugin, {name}, value); };
    fromHost("string", VariantOfType(8));
    fromHost("boolean", BooleanToVariant(1));
    fromHost("32-bit integer", IntegerToVariant(1));
    fromHost("64-bit integer", Int64ToVariant(1));
    fromHost("single", VariantOfType(4));
    fromHost("double", DoubleToVariant(0.5));
    Object *date = NewInstance("Date");
    date->integer = 10;
    fromHost("date", date);
    fromHost("color", VariantOfType(16));
    fromHost("memory block", NewMemoryBlock(0));
    fromHost("folder item", NewInstance("FolderItem"));
}

} // namespace

void MeasureVariants(const Settings &settings, const Plugin &plugin) {
    const Measure measure(settings, "variants", plugin.HostAge());
    if (!measure.IsWanted())
        return;
    const auto file = Ref<CFURLRef>::Adopt(
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, CFSTR("/etc/passwd"), kCFURLPOSIXPathStyle, false));
    FSRef place;
    CFURLGetFSRef(file.Get(), &place);
    SetFile(place);
    MeasureAllToHost(measure, plugin, file.Get());
    MeasureAllFromHost(measure, plugin);
}

} // namespace bench
