#include "Alarms/AlarmCalendar.h"

#include <cmath>
#include <limits>

namespace
{
constexpr int DaysBeforeMonth[13] = {0, 0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};

bool IsGregorianLeapYear(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}
} // namespace

bool AlarmCalendarFields(OleDate date, SAlarmCalendarDay& fields)
{
    SDateTimeFields platform;
    if (!OleDateToFields(date, platform))
        return false;
    fields.year = platform.year;
    fields.month = platform.month;
    fields.day = platform.day;
    fields.weekDay = platform.dayOfWeek + 1;
    return true;
}

int AlarmWeekOfMonth(int dayOfMonth)
{
    const int week = (dayOfMonth - 1) / 7;
    return week > 0 ? week : 0;
}

int AlarmArithmeticWeekDay(int year, int month, int day)
{
    if (month < 1 || month > 12)
        return 0;
    int64_t count = 365LL * year + year / 4 - year / 100 + year / 400 + DaysBeforeMonth[month] + day;
    if (month <= 2 && IsGregorianLeapYear(year))
        --count;
    return static_cast<int>((count - 1) % 7) + 1;
}

int AlarmDaysInMonth(int year, int month)
{
    switch (month)
    {
    case 4:
    case 6:
    case 9:
    case 11:
        return 30;
    case 2:
        return year % 4 == 0 ? 29 : 28;
    default:
        return 31;
    }
}

bool AlarmDayNumber(OleDate date, int32_t& day)
{
    const double truncated = std::trunc(date);
    if (!(truncated >= static_cast<double>(std::numeric_limits<int32_t>::min()) &&
          truncated <= static_cast<double>(std::numeric_limits<int32_t>::max())))
        return false;
    day = static_cast<int32_t>(truncated);
    return true;
}
