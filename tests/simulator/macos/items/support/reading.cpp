#include "tests/simulator/macos/items/support/reading.h"

#include <doctest/doctest.h>

#include <cstdio>

namespace sim::macos {

std::string Text(CFTypeRef value) {
    REQUIRE(value != nullptr);
    REQUIRE(CFGetTypeID(value) == CFStringGetTypeID());
    const auto string = static_cast<CFStringRef>(value);
    std::string text(static_cast<std::size_t>(CFStringGetLength(string)) * 3 + 1, '\0');
    REQUIRE(CFStringGetCString(string, text.data(), static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8));
    text.resize(text.find('\0'));
    return text;
}

std::vector<std::string> Texts(CFTypeRef value) {
    REQUIRE(value != nullptr);
    REQUIRE(CFGetTypeID(value) == CFArrayGetTypeID());
    const auto array = static_cast<CFArrayRef>(value);
    std::vector<std::string> texts;
    for (CFIndex i = 0; i < CFArrayGetCount(array); i++)
        texts.push_back(Text(CFArrayGetValueAtIndex(array, i)));
    return texts;
}

std::int64_t Whole(CFTypeRef value) {
    REQUIRE(value != nullptr);
    REQUIRE(CFGetTypeID(value) == CFNumberGetTypeID());
    const auto number = static_cast<CFNumberRef>(value);
    REQUIRE_FALSE(CFNumberIsFloatType(number));
    std::int64_t whole = 0;
    REQUIRE(CFNumberGetValue(number, kCFNumberSInt64Type, &whole));
    return whole;
}

double Fraction(CFTypeRef value) {
    REQUIRE(value != nullptr);
    REQUIRE(CFGetTypeID(value) == CFNumberGetTypeID());
    const auto number = static_cast<CFNumberRef>(value);
    REQUIRE(CFNumberIsFloatType(number));
    double fraction = 0;
    REQUIRE(CFNumberGetValue(number, kCFNumberDoubleType, &fraction));
    return fraction;
}

bool Truth(CFTypeRef value) {
    REQUIRE(value != nullptr);
    REQUIRE(CFGetTypeID(value) == CFBooleanGetTypeID());
    return CFBooleanGetValue(static_cast<CFBooleanRef>(value));
}

double Seconds(CFTypeRef value) {
    REQUIRE(value != nullptr);
    REQUIRE(CFGetTypeID(value) == CFDateGetTypeID());
    constexpr double kFrom1970To2001 = 978307200;
    return CFDateGetAbsoluteTime(static_cast<CFDateRef>(value)) + kFrom1970To2001;
}

CFRef<CFStringRef> String(std::string_view text) {
    return CFRef<CFStringRef>::Adopt(
        CFStringCreateWithCString(kCFAllocatorDefault, std::string(text).c_str(), kCFStringEncodingUTF8));
}

CFRef<MDItemRef> ItemAt(const std::string &path) {
    const auto url = CFRef<CFURLRef>::Adopt(
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, String(path).Get(), kCFURLPOSIXPathStyle, false));
    REQUIRE(url);
    return CFRef<MDItemRef>::Adopt(MDItemCreateWithURL(kCFAllocatorDefault, url.Get()));
}

Value Attribute(const CFRef<MDItemRef> &item, std::string_view key) {
    return Value::Adopt(MDItemCopyAttribute(item.Get(), String(key).Get()));
}

Value Attribute(const std::string &path, std::string_view key) {
    const auto item = ItemAt(path);
    REQUIRE(item);
    return Attribute(item, key);
}

std::string OutputOf(const std::string &command) {
    FILE *pipe = popen(("LC_ALL=C " + command).c_str(), "re");
    REQUIRE(pipe != nullptr);
    std::string output;
    for (int c; (c = fgetc(pipe)) != EOF;)
        output += static_cast<char>(c);
    REQUIRE(pclose(pipe) == 0);
    if (output.ends_with('\n'))
        output.pop_back();
    return output;
}

} // namespace sim::macos
