#include "Shared/Base/OleDate.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>

namespace
{
// Day numbers of the proleptic Gregorian calendar counted from 1 January 1970.
constexpr long long OleDayOfUnixEpoch = 25569; // 1 January 1970 as an OLE day
constexpr double MinOleDate = -657434.0;       // 1 January 100
constexpr double MaxOleDate = 2958466.0;       // 1 January 10000 (exclusive)
constexpr double HalfSecond = 1.0 / (2.0 * 86400.0);

constexpr const char16_t* ShortDayNames[] = {u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"};
constexpr const char16_t* DayNames[] = {u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
                                        u"Thursday", u"Friday", u"Saturday"};
constexpr const char16_t* ShortMonthNames[] = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                               u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
constexpr const char16_t* MonthNames[] = {u"January",   u"February", u"March",    u"April",
                                          u"May",       u"June",     u"July",     u"August",
                                          u"September", u"October",  u"November", u"December"};

long long DaysFromCivil(long long year, unsigned month, unsigned day)
{
    year -= month <= 2;
    const long long era = (year >= 0 ? year : year - 399) / 400;
    const unsigned yearOfEra = static_cast<unsigned>(year - era * 400);
    const unsigned dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + static_cast<long long>(dayOfEra) - 719468;
}

void CivilFromDays(long long days, int& year, int& month, int& day)
{
    days += 719468;
    const long long era = (days >= 0 ? days : days - 146096) / 146097;
    const unsigned dayOfEra = static_cast<unsigned>(days - era * 146097);
    const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned shifted = (5 * dayOfYear + 2) / 153;
    day = static_cast<int>(dayOfYear - (153 * shifted + 2) / 5 + 1);
    month = static_cast<int>(shifted < 10 ? shifted + 3 : shifted - 9);
    year = static_cast<int>(static_cast<long long>(yearOfEra) + era * 400 + (month <= 2));
}

std::u16string TwoDigits(int value)
{
    return {static_cast<char16_t>(u'0' + value / 10 % 10), static_cast<char16_t>(u'0' + value % 10)};
}

std::u16string Digits(int value, int width)
{
    std::u16string text;
    for (int i = 0; i < width || value != 0; ++i)
    {
        text.insert(text.begin(), static_cast<char16_t>(u'0' + value % 10));
        value /= 10;
    }
    return text;
}

// One strftime conversion; an unknown one is kept as written.
std::u16string Conversion(char16_t code, const SDateTimeFields& f)
{
    const int hour12 = f.hour % 12 == 0 ? 12 : f.hour % 12;
    const int weekDay = ((f.dayOfWeek % 7) + 7) % 7;
    const int monthIndex = (f.month >= 1 && f.month <= 12) ? f.month - 1 : 0;
    switch (code)
    {
    case u'a':
        return ShortDayNames[weekDay];
    case u'A':
        return DayNames[weekDay];
    case u'b':
        return ShortMonthNames[monthIndex];
    case u'B':
        return MonthNames[monthIndex];
    case u'd':
        return TwoDigits(f.day);
    case u'H':
        return TwoDigits(f.hour);
    case u'I':
        return TwoDigits(hour12);
    case u'j':
        return Digits(f.dayOfYear, 3);
    case u'm':
        return TwoDigits(f.month);
    case u'M':
        return TwoDigits(f.minute);
    case u'p':
        return f.hour < 12 ? u"AM" : u"PM";
    case u'S':
        return TwoDigits(f.second);
    case u'y':
        return TwoDigits(f.year % 100);
    case u'Y':
        return Digits(f.year, 4);
    case u'%':
        return u"%";
    default:
        return {u'%', code};
    }
}
} // namespace

bool IsLeapYear(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysInMonth(int year, int month)
{
    static constexpr int Days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12)
        return 0;
    return month == 2 && IsLeapYear(year) ? 29 : Days[month - 1];
}

bool OleDateToFields(OleDate date, SDateTimeFields& fields)
{
    if (!(date >= MinOleDate && date < MaxOleDate))
        return false;
    // Rounded to the nearest second, away from day zero as the platform does.
    const double rounded = date + (date >= 0 ? HalfSecond : -HalfSecond);
    const auto oleDay = static_cast<long long>(rounded); // towards zero: the fraction counts forward
    const double fraction = std::fabs(rounded - static_cast<double>(oleDay));
    const long long secondsOfDay = std::min(86399ll, static_cast<long long>(fraction * 86400.0));
    const long long unixDay = oleDay - OleDayOfUnixEpoch;
    CivilFromDays(unixDay, fields.year, fields.month, fields.day);
    if (fields.year < 100 || fields.year > 9999)
        return false;
    fields.hour = static_cast<int>(secondsOfDay / 3600);
    fields.minute = static_cast<int>(secondsOfDay / 60 % 60);
    fields.second = static_cast<int>(secondsOfDay % 60);
    fields.dayOfWeek = static_cast<int>(((unixDay + 4) % 7 + 7) % 7); // 1 January 1970 was a Thursday
    fields.dayOfYear = static_cast<int>(unixDay - DaysFromCivil(fields.year, 1, 1) + 1);
    return true;
}

bool FieldsToOleDate(const SDateTimeFields& fields, OleDate& date)
{
    const SDateTimeFields& f = fields;
    if (f.year < 100 || f.year > 9999 || f.month < 1 || f.month > 12 || f.day < 1 ||
        f.day > DaysInMonth(f.year, f.month) || f.hour < 0 || f.hour > 23 || f.minute < 0 || f.minute > 59 ||
        f.second < 0 || f.second > 59)
        return false;
    const long long oleDay =
        DaysFromCivil(f.year, static_cast<unsigned>(f.month), static_cast<unsigned>(f.day)) +
        OleDayOfUnixEpoch;
    const double time = (f.hour * 3600 + f.minute * 60 + f.second) / 86400.0;
    date = oleDay >= 0 ? static_cast<double>(oleDay) + time : static_cast<double>(oleDay) - time;
    return true;
}

std::u16string FormatDateTime(std::u16string_view format, const SDateTimeFields& fields)
{
    std::u16string text;
    for (size_t i = 0; i < format.size(); ++i)
    {
        if (format[i] != u'%' || i + 1 == format.size())
            text.push_back(format[i]);
        else
            text += Conversion(format[++i], fields);
    }
    return text;
}

namespace
{
class CSystemClock : public IClock
{
public:
    OleDate NowLocal() const override
    {
        using namespace std::chrono;
        const auto now = system_clock::now();
        const std::time_t seconds = system_clock::to_time_t(now);
        std::tm local{};
        localtime_r(&seconds, &local);
        SDateTimeFields fields;
        fields.year = local.tm_year + 1900;
        fields.month = local.tm_mon + 1;
        fields.day = local.tm_mday;
        fields.hour = local.tm_hour;
        fields.minute = local.tm_min;
        fields.second = std::min(local.tm_sec, 59); // a leap second is shown as :59
        OleDate date = 0;
        FieldsToOleDate(fields, date);
        const auto millis = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
        return date + static_cast<double>(millis) / 86400000.0;
    }

    uint32_t TickCountMs() const override
    {
        using namespace std::chrono;
        return static_cast<uint32_t>(
            duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
    }
};
} // namespace

IClock& SystemClock()
{
    static CSystemClock clock;
    return clock;
}
