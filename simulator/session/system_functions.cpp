#include "simulator/session/system_functions.h"

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/control/faults.h"

#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <bit>

namespace sim {
namespace {

constexpr SystemFunction kFunctions[] = {
    {"CFAbsoluteTimeGetGregorianDate", "", true},
    {"CFArrayAppendValue", "-o"},
    {"CFArrayCreateMutable", "-i"},
    {"CFArrayGetCount", "o", true},
    {"CFArrayGetValueAtIndex", "oi", true},
    {"CFBooleanGetValue", "o", true},
    {"CFBundleCreate", "-o"},
    {"CFBundleGetFunctionPointerForName", "-o"},
    {"CFBundleLoadExecutable", "-"},
    {"CFDataCreate", "--i"},
    {"CFDataGetBytePtr", "o", true},
    {"CFDataGetLength", "o", true},
    {"CFDateCreate", ""},
    {"CFDateGetAbsoluteTime", "o", true},
    {"CFDictionaryApplyFunction", ""},
    {"CFDictionaryCreateMutable", "-i"},
    {"CFDictionaryGetValue", "-o"},
    {"CFDictionarySetValue", "-oo"},
    {"CFGetTypeID", "o", true},
    {"CFGregorianDateGetAbsoluteTime", "", true},
    {"CFNotificationCenterAddObserver", "---ooi"},
    {"CFNotificationCenterGetLocalCenter", "", true},
    {"CFNotificationCenterRemoveEveryObserver", ""},
    {"CFNumberCreate", "-i"},
    {"CFNumberGetByteSize", "o", true},
    {"CFNumberGetValue", "oi", true},
    {"CFNumberIsFloatType", "o", true},
    {"CFRelease", "o"},
    {"CFRetain", "o"},
    {"CFStringCompare", "ooi"},
    {"CFStringCreateMutableCopy", "-io"},
    {"CFStringCreateWithBytes", "--ieb"},
    {"CFStringCreateWithCharacters", "--i"},
    {"CFStringGetCString", "o-ie", true},
    {"CFStringGetCharacters", "oii", true},
    {"CFStringGetLength", "o", true},
    {"CFStringNormalize", "oi"},
    {"CFURLCopyAbsoluteURL", ""},
    {"CFURLCopyLastPathComponent", ""},
    {"CFURLCreateCopyAppendingPathComponent", "-oob"},
    {"CFURLCreateCopyDeletingLastPathComponent", "-o"},
    {"CFURLCreateFromFSRef", "-"},
    {"CFURLGetFSRef", "o"},
    {"CFURLGetString", "o", true},
    {"CGColorCreateGenericRGB", ""},
    {"CGColorRetain", "o"},
    {"CGColorSpaceRetain", "o"},
    {"CGContextRetain", "o"},
    {"CGDataConsumerRetain", "o"},
    {"CGDataProviderRetain", "o"},
    {"CGFontRetain", "o"},
    {"CGImageRetain", "o"},
    {"CGLayerRetain", "o"},
    {"CGPathRetain", "o"},
    {"FSFindFolder", "icb"},
    {"FSGetCatalogInfo", "ripppp"},
    {"HISearchWindowShow", "oi"},
    {"MDItemCopyAttribute", "oo"},
    {"MDItemCopyAttributeNames", "o"},
    {"MDItemCopyAttributes", "oo"},
    {"MDItemCreateWithURL", "-o"},
    {"MDQueryCopyQueryString", "o"},
    {"MDQueryCopySortingAttributes", "o"},
    {"MDQueryCopyValueListAttributes", "o"},
    {"MDQueryCopyValuesOfAttribute", "oo"},
    {"MDQueryCreate", "-ooo"},
    {"MDQueryCreateSubset", "-oooo"},
    {"MDQueryDisableUpdates", "o"},
    {"MDQueryEnableUpdates", "o"},
    {"MDQueryExecute", "oi"},
    {"MDQueryGetAttributeValueOfResultAtIndex", "ooi"},
    {"MDQueryGetBatchingParameters", "-o"},
    {"MDQueryGetCountOfResultsWithAttributeValue", "ooo"},
    {"MDQueryGetIndexOfResult", "oo"},
    {"MDQueryGetResultAtIndex", "oi"},
    {"MDQueryGetResultCount", "o"},
    {"MDQueryIsGatheringComplete", "o"},
    {"MDQuerySetBatchingParameters", "oiiiiii"},
    {"MDQuerySetMaxCount", "oi"},
    {"MDQuerySetSearchScope", "ooi"},
    {"MDQueryStop", "o"},
    {"MDSchemaCopyAllAttributes", ""},
    {"MDSchemaCopyDisplayDescriptionForAttribute", "o"},
    {"MDSchemaCopyDisplayNameForAttribute", "o"},
    {"MDSchemaCopyMetaAttributesForAttribute", "o"},
};

// More elements of a list are only counted where contents are told.
constexpr CFIndex kShownElements = 5;

std::string DescribeObject(CFTypeRef object, Detail detail) {
    if (!object)
        return "null";
    const CFTypeID type = CFGetTypeID(object);
    if (type == CFStringGetTypeID())
        return '"' + macos::Utf8Of(static_cast<CFStringRef>(object)) + '"';
    if (type == CFURLGetTypeID())
        return '<' + macos::Utf8Of(CFURLGetString(static_cast<CFURLRef>(object))) + '>';
    if (type != CFArrayGetTypeID()) {
        const std::string contents =
            detail == Detail::kContents ? macos::ObjectOf(object, "a call in words").Description() : "";
        return macos::TypeName(type) + (contents.empty() ? "" : " " + contents);
    }
    const auto array = static_cast<CFArrayRef>(object);
    const CFIndex count = CFArrayGetCount(array);
    const CFIndex shown = detail == Detail::kContents ? std::min(count, kShownElements) : count;
    std::string text = "[";
    for (CFIndex i = 0; i < shown; i++)
        text += (i > 0 ? ", " : "") + DescribeObject(CFArrayGetValueAtIndex(array, i), detail);
    return text + (shown < count ? ", … and " + std::to_string(count - shown) + " more]" : "]");
}

std::string DescribeArgument(char kind, uint32_t word, Detail detail) {
    switch (kind) {
    case 'o':
        return DescribeObject(std::bit_cast<CFTypeRef>(word), detail);
    case 'e':
        if (detail == Detail::kContents) {
            char text[16];
            std::snprintf(text, sizeof text, "0x%08X", word);
            return text;
        }
        [[fallthrough]];
    case 'i':
        return std::to_string(static_cast<int32_t>(word));
    case 'p':
        return word == 0 ? "null" : "out";
    case 'r': {
        const auto *reference = std::bit_cast<const FSRef *>(word);
        return std::ranges::all_of(reference->hidden, [](UInt8 byte) { return byte == 0; }) ? "nothing" : "item";
    }
    case 'b':
        return (word & 0xFF) != 0 ? "true" : "false";
    default:
        const std::string code = {static_cast<char>(word >> 24), static_cast<char>(word >> 16),
                                  static_cast<char>(word >> 8), static_cast<char>(word)};
        return '\'' + code + '\'';
    }
}

} // namespace

const SystemFunction *FindSystemFunction(std::string_view name) {
    const auto *function = std::ranges::find(kFunctions, name, &SystemFunction::name);
    return function == std::end(kFunctions) ? nullptr : function;
}

std::string DescribeCall(const SystemFunction &function, const uint32_t *arguments, Detail detail) {
    const macos::OwnCalls own;
    std::string text;
    for (size_t i = 0; i < function.arguments.size(); i++)
        if (function.arguments[i] != '-')
            text += (text.empty() ? "" : ", ") + DescribeArgument(function.arguments[i], arguments[i], detail);
    return std::string(function.name) + '(' + text + ')';
}

} // namespace sim
