// ISO 8601 dates, in the extended form (with dashes and colons) and the basic one (without).
#include "simulator/macos/CoreServices/metadata/items/iso_date.h"

#include <chrono>

namespace sim::macos {

namespace {

/// Takes apart a text from its start; the first thing that is not there makes all of it fail.
class Reader {
public:
    explicit Reader(std::u16string_view text) : text_(text) {}

    bool AtEnd() const { return text_.empty(); }
    bool Failed() const { return failed_; }

    bool Skip(char16_t expected) {
        if (text_.empty() || text_.front() != expected)
            return false;
        text_.remove_prefix(1);
        return true;
    }

    bool AtDigit() const { return !text_.empty() && text_.front() >= u'0' && text_.front() <= u'9'; }

    int Digits(int count) {
        int value = 0;
        for (; count > 0; --count)
            value = value * 10 + Digit();
        return value;
    }

    double Fraction() {
        double value = 0;
        double unit = 0.1;
        if (!AtDigit())
            failed_ = true;
        for (; AtDigit(); unit /= 10)
            value += Digit() * unit;
        return value;
    }

private:
    int Digit() {
        if (!AtDigit()) {
            failed_ = true;
            return 0;
        }
        const int value = text_.front() - u'0';
        text_.remove_prefix(1);
        return value;
    }

    std::u16string_view text_;
    bool failed_ = false;
};

constexpr double kSecondsPerMinute = 60;
constexpr double kSecondsPerHour = 3600;
constexpr double kSecondsPerDay = 86400;

std::optional<double> ReadDay(Reader &reader) {
    using namespace std::chrono;
    const int yearNumber = reader.Digits(4);
    const bool extended = reader.Skip(u'-');
    const int monthNumber = reader.Digits(2);
    const bool secondDash = reader.Skip(u'-');
    const int dayNumber = reader.Digits(2);
    const year_month_day date{year{yearNumber}, month{static_cast<unsigned>(monthNumber)},
                              day{static_cast<unsigned>(dayNumber)}};
    if (reader.Failed() || extended != secondDash || !date.ok())
        return std::nullopt;
    const auto days = sys_days{date} - sys_days{year{2001} / January / 1};
    return static_cast<double>(days.count()) * kSecondsPerDay;
}

std::optional<double> ReadTimeOfDay(Reader &reader) {
    const int hour = reader.Digits(2);
    reader.Skip(u':');
    const int minute = reader.Digits(2);
    double second = 0;
    if (reader.Skip(u':') || reader.AtDigit()) {
        second = reader.Digits(2);
        if (reader.Skip(u'.') || reader.Skip(u','))
            second += reader.Fraction();
    }
    // A leap second is a second of the next minute, and 24:00 the start of the next day.
    const bool inDay = hour < 24 || (hour == 24 && minute == 0 && second == 0);
    if (reader.Failed() || !inDay || minute > 59 || second >= 61)
        return std::nullopt;
    return hour * kSecondsPerHour + minute * kSecondsPerMinute + second;
}

/// Seconds east of Greenwich; 0 when no zone is written.
std::optional<double> ReadZone(Reader &reader) {
    reader.Skip(u' ');
    if (reader.AtEnd() || reader.Skip(u'Z'))
        return 0;
    const bool west = reader.Skip(u'-');
    if (!west && !reader.Skip(u'+'))
        return std::nullopt;
    const int hour = reader.Digits(2);
    const int minute = reader.Skip(u':') || reader.AtDigit() ? reader.Digits(2) : 0;
    if (reader.Failed() || hour > 23 || minute > 59)
        return std::nullopt;
    const double east = hour * kSecondsPerHour + minute * kSecondsPerMinute;
    return west ? -east : east;
}

} // namespace

std::optional<CFAbsoluteTime> ParseIsoDate(std::u16string_view text) {
    Reader reader(text);
    const auto day = ReadDay(reader);
    if (!day)
        return std::nullopt;
    if (reader.AtEnd())
        return *day;
    if (!reader.Skip(u'T') && !reader.Skip(u' '))
        return std::nullopt;
    const auto timeOfDay = ReadTimeOfDay(reader);
    const auto zone = timeOfDay ? ReadZone(reader) : std::nullopt;
    if (!zone || !reader.AtEnd())
        return std::nullopt;
    return *day + *timeOfDay - *zone;
}

} // namespace sim::macos
