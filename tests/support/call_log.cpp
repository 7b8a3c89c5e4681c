#include "tests/support/call_log.h"

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/control/faults.h"
#include "tests/support/plugin_watch.h"

#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <bit>
#include <map>
#include <string_view>

namespace tests {

namespace {

/// A function of the system that does something, and what its arguments are: o an object, i a number, b a truth, c a
/// code of four characters, r a reference of the File Manager, p a place for an answer, - nothing that can be shown.
struct Function {
    std::string_view name;
    std::string_view arguments;
};

constexpr Function kFunctions[] = {
    {"CFArrayAppendValue", "-o"},
    {"CFArrayCreateMutable", "-i"},
    {"CFBundleCreate", "-o"},
    {"CFBundleGetFunctionPointerForName", "-o"},
    {"CFBundleLoadExecutable", "-"},
    {"CFDataCreate", "--i"},
    {"CFDateCreate", ""},
    {"CFDictionaryApplyFunction", ""},
    {"CFDictionaryCreateMutable", "-i"},
    {"CFDictionaryGetValue", "-o"},
    {"CFDictionarySetValue", "-oo"},
    {"CFNotificationCenterAddObserver", "---ooi"},
    {"CFNotificationCenterRemoveEveryObserver", ""},
    {"CFNumberCreate", "-i"},
    {"CFRelease", "o"},
    {"CFRetain", "o"},
    {"CFStringCompare", "ooi"},
    {"CFStringCreateMutableCopy", "-io"},
    {"CFStringCreateWithBytes", "--iib"},
    {"CFStringCreateWithCharacters", "--i"},
    {"CFStringNormalize", "oi"},
    {"CFURLCopyAbsoluteURL", ""},
    {"CFURLCopyLastPathComponent", ""},
    {"CFURLCreateCopyAppendingPathComponent", "-oob"},
    {"CFURLCreateCopyDeletingLastPathComponent", "-o"},
    {"CFURLCreateFromFSRef", "-"},
    {"CFURLGetFSRef", "o"},
    {"CGColorCreateGenericRGB", ""},
    {"CGColorRetain", "o"},
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

std::string DescribeObject(CFTypeRef object) {
    if (!object)
        return "null";
    const CFTypeID type = CFGetTypeID(object);
    if (type == CFStringGetTypeID())
        return '"' + sim::macos::Utf8Of(static_cast<CFStringRef>(object)) + '"';
    if (type == CFURLGetTypeID())
        return '<' + sim::macos::Utf8Of(CFURLGetString(static_cast<CFURLRef>(object))) + '>';
    if (type != CFArrayGetTypeID())
        return sim::macos::TypeName(type);
    const auto array = static_cast<CFArrayRef>(object);
    std::string text = "[";
    for (CFIndex i = 0; i < CFArrayGetCount(array); i++)
        text += (i > 0 ? ", " : "") + DescribeObject(CFArrayGetValueAtIndex(array, i));
    return text + "]";
}

std::string DescribeArgument(char kind, uint32_t word) {
    switch (kind) {
    case 'o':
        return DescribeObject(std::bit_cast<CFTypeRef>(word));
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

std::string Describe(const Function &function, const uint32_t *arguments) {
    const sim::macos::OwnCalls own;
    std::string text;
    for (size_t i = 0; i < function.arguments.size(); i++)
        if (function.arguments[i] != '-')
            text += (text.empty() ? "" : ", ") + DescribeArgument(function.arguments[i], arguments[i]);
    return std::string(function.name) + '(' + text + ')';
}

} // namespace

CallLog::CallLog(sim::Session &session) : session_(session) {
    session.Host().Listen([this](const std::string &call) { lines_.push_back(call); });
    PluginWatch::Instance().listener = [this](std::string_view name, const uint32_t *arguments) {
        const auto *function = std::ranges::find(kFunctions, name, &Function::name);
        if (function != std::end(kFunctions))
            lines_.push_back(Describe(*function, arguments));
    };
}

CallLog::~CallLog() {
    PluginWatch::Instance().listener = {};
    session_.Host().Listen({});
}

CallLines CallLog::OfRaising(const std::string &className, const std::string &message) {
    const std::string text = '"' + message + '"';
    return {"REALBuildString(..., " + std::to_string(message.size()) + ")",
            "REALSetStringEncoding(" + text + ", 1536)",
            "PluginNewInstance(\"" + className + "\")",
            "REALSetPropValueString(" + className + ", \"Message\", " + text + ")",
            "REALSetPropValueInteger(" + className + ", \"ErrorNumber\", 0)",
            "RuntimeRaiseException(" + className + ")",
            "REALUnlockObject(" + className + ")",
            "REALUnlockString(" + text + ")"};
}

CallLines CallLog::Take(const std::vector<std::string> &functions) {
    CallLines lines = Take();
    std::erase_if(lines, [&](const std::string &line) {
        return std::ranges::none_of(functions, [&](const std::string &name) { return line.starts_with(name + '('); });
    });
    return lines;
}

} // namespace tests
