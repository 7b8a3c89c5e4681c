// The handbook of attributes that host programmers read, row by row: each query finds the sample and nothing else, and
// the sample comes to the host as what the handbook says.
#include <doctest/doctest.h>

#include "tests/spotlight/support/query_program.h"
#include "tests/support/host_ages.h"

#include <CoreFoundation/CoreFoundation.h>

#include <fstream>
#include <sstream>

using namespace tests;

namespace {

struct HandbookRow {
    std::string key, type, several, since, host, sample, query;
};

std::vector<HandbookRow> ReadHandbook() {
    std::ifstream file(ATTRIBUTE_HANDBOOK);
    std::string line;
    REQUIRE(std::getline(file, line));
    REQUIRE(line == "key\ttype\tseveral\tsince\thost\tsample\tquery");
    std::vector<HandbookRow> rows;
    while (std::getline(file, line)) {
        std::istringstream cells(line);
        HandbookRow row;
        for (std::string *cell : {&row.key, &row.type, &row.several, &row.since, &row.host, &row.sample, &row.query})
            std::getline(cells, *cell, '\t');
        rows.push_back(row);
    }
    return rows;
}

CFRef<CFTypeRef> MomentOf(const std::string &text) {
    CFGregorianDate date = {};
    int year = 0, month = 0, day = 0, hour = 0, minute = 0;
    REQUIRE(std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%lf", &year, &month, &day, &hour, &minute, &date.second) == 6);
    date.year = year;
    date.month = static_cast<SInt8>(month);
    date.day = static_cast<SInt8>(day);
    date.hour = static_cast<SInt8>(hour);
    date.minute = static_cast<SInt8>(minute);
    return CFRef<CFTypeRef>::Adopt(CFDateCreate(kCFAllocatorDefault, CFGregorianDateGetAbsoluteTime(date, nullptr)));
}

CFRef<CFTypeRef> SampleNumber(const std::string &text) {
    if (text.find('.') != std::string::npos) {
        const double real = std::stod(text);
        return CFRef<CFTypeRef>::Adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberFloat64Type, &real));
    }
    const int32_t whole = std::stoi(text);
    return CFRef<CFTypeRef>::Adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &whole));
}

CFRef<CFTypeRef> SampleList(std::string text) {
    const auto list = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (size_t end = 0; end != std::string::npos; text.erase(0, end + 2)) {
        end = text.find("; ");
        CFArrayAppendValue(list, MakeString(text.substr(0, end)).Get());
        if (end == std::string::npos)
            break;
    }
    return CFRef<CFTypeRef>::Adopt(list);
}

CFRef<CFTypeRef> SampleOf(const HandbookRow &row) {
    if (row.type == "Boolean")
        return CFRef<CFTypeRef>::Adopt(CFRetain(row.sample == "true" ? kCFBooleanTrue : kCFBooleanFalse));
    if (row.type == "Number")
        return SampleNumber(row.sample);
    if (row.type == "Date")
        return MomentOf(row.sample);
    if (row.several == "yes")
        return SampleList(row.sample);
    // Where no type is stated there is no sample; any value is one that the file has.
    return CFRef<CFTypeRef>::Adopt(CFRetain(MakeString(row.sample.empty() ? "anything" : row.sample).Get()));
}

/// The word of the handbook for what the host got.
std::string KindOf(QueryProgram &program, const Value &value) {
    if (value.IsNil())
        return "nil";
    const Object variant = program.Host().Box(value);
    constexpr int32_t kListOfVariants = 4105;
    if (variant.TypeCode() == kListOfVariants) {
        for (const Value &element : variant.Elements())
            CHECK(KindOf(program, element) == "String");
        return "list of String";
    }
    const std::map<int32_t, std::string> kinds = {
        {2, "Integer"}, {5, "Double"}, {7, "Date"}, {8, "String"}, {11, "Boolean"}};
    const auto kind = kinds.find(variant.TypeCode());
    return kind == kinds.end() ? "type " + std::to_string(variant.TypeCode()) : kind->second;
}

} // namespace

TEST_CASE("Each query of the attribute handbook finds the sample of its row and no other, and the host gets what the "
          "row says") {
    const std::vector<HandbookRow> rows = ReadHandbook();
    REQUIRE(rows.size() == 169);
    AtAges({2011.4, 2016.1}, [&](double version) {
        QueryProgram program(version);
        for (const HandbookRow &row : rows)
            program.store.Set(program.Add(row.key), row.key, SampleOf(row).Get());
        for (const HandbookRow &row : rows) {
            CAPTURE(row.key);
            const auto file = program.FileNamed(row.key);
            Object item = program.NewItem(file);
            if (row.host != "not stated")
                CHECK(KindOf(program, item.CallWith("GetAttribute", {row.key})) == row.host);
            if (row.query.empty())
                continue;
            const Object query = program.NewQuery(row.query);
            REQUIRE(QueryOf(query));
            program.Gather(query);
            std::vector<QueryProgram::File> found;
            for (const Value &result : query.GetValue("Results").As<Object>().Elements())
                found.push_back(sim::macos::ScriptedStore::FileOf(ItemOf(result.As<Object>())));
            CHECK(found == std::vector{file});
        }
        CHECK(program.Host().Raised().empty());
    });
}
