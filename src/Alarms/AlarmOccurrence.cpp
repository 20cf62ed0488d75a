#include "Alarms/AlarmOccurrence.h"

#include "Alarms/AlarmCalendar.h"
#include "Alarms/AlarmsArray.h"

#include <cmath>

namespace
{
struct SOccurrenceDays
{
    int64_t day = 0;      // the asked day
    int64_t startDay = 0; // the alarm's first day
    SAlarmCalendarDay asked;
    SAlarmCalendarDay start;
};

bool IsChosenWeekDay(uint8_t weekDays, int weekDay, int startWeekDay)
{
    constexpr uint8_t SundayToFriday = 0x3F;
    if ((weekDays & SundayToFriday) == 0)
        return weekDay == startWeekDay;
    return (weekDays >> (weekDay - 1)) & 1;
}

bool OccursWeekly(const CAlarmInfo& alarm, const SOccurrenceDays& days)
{
    const int64_t weeks = (days.day - days.startDay) / 7;
    return weeks % alarm.interval == 0 &&
           IsChosenWeekDay(alarm.weekDays, days.asked.weekDay, days.start.weekDay);
}

// An alarm that started in the fifth week of a month falls on the same week day in the last
// seven days of months that have no fifth such week day.
bool OccursMonthly(const CAlarmInfo& alarm, const SOccurrenceDays& days)
{
    const SAlarmCalendarDay& d = days.asked;
    const SAlarmCalendarDay& s = days.start;
    const int64_t months = (static_cast<int64_t>(d.year) - s.year) * 12 + d.month - s.month;
    if (months % alarm.interval != 0)
        return false;
    if (AlarmArithmeticWeekDay(d.year, d.month, d.day) != AlarmArithmeticWeekDay(s.year, s.month, s.day))
        return false;
    const int askedWeek = AlarmWeekOfMonth(d.day);
    const int startWeek = AlarmWeekOfMonth(s.day);
    if (askedWeek == startWeek)
        return true;
    return askedWeek < startWeek && d.day + 7 > AlarmDaysInMonth(d.year, d.month);
}

bool OccursYearly(const CAlarmInfo& alarm, const SOccurrenceDays& days)
{
    const SAlarmCalendarDay& d = days.asked;
    const SAlarmCalendarDay& s = days.start;
    if ((static_cast<int64_t>(s.year) - d.year) % alarm.interval != 0)
        return false;
    if (d.day == s.day)
        return d.month == s.month;
    return d.month == 3 && d.day == 1 && s.month == 2 && s.day == 29 && AlarmDaysInMonth(d.year, 2) != 29;
}

bool OccursByType(const CAlarmInfo& alarm, const SOccurrenceDays& days)
{
    // A stored interval below 1 can only come from damaged data; such a repeating alarm never
    // falls due.
    if (alarm.type != static_cast<int32_t>(EAlarmType::Once) && alarm.interval < 1)
        return false;
    switch (static_cast<EAlarmType>(alarm.type))
    {
    case EAlarmType::Once:
        return days.day == days.startDay;
    case EAlarmType::Daily:
        return (days.day - days.startDay) % alarm.interval == 0;
    case EAlarmType::Weekly:
        return OccursWeekly(alarm, days);
    case EAlarmType::MonthlyByDate:
    case EAlarmType::MonthlyByWeekDay:
        return OccursMonthly(alarm, days);
    case EAlarmType::Yearly:
        return OccursYearly(alarm, days);
    }
    return false;
}

bool NeedsCalendarFields(int32_t type)
{
    return type >= static_cast<int32_t>(EAlarmType::Weekly) &&
           type <= static_cast<int32_t>(EAlarmType::Yearly);
}
} // namespace

bool Occurs(const CAlarmInfo& alarm, OleDate date, OleDate upTo)
{
    int32_t day = 0;
    if (!alarm.enabled || !AlarmDayNumber(date, day) || alarm.startDay > day)
        return false;
    const int32_t lastDay = alarm.hasEndDate ? alarm.endDay : CAlarmInfo::NoEndDay;
    if (day > lastDay)
        return false;
    SOccurrenceDays days;
    days.day = day;
    days.startDay = alarm.startDay;
    if (NeedsCalendarFields(alarm.type) &&
        (!AlarmCalendarFields(date, days.asked) || !AlarmCalendarFields(alarm.startDay, days.start)))
        return false;
    if (!OccursByType(alarm, days))
        return false;
    return day + (alarm.time - std::trunc(alarm.time)) <= upTo;
}

void AppendDueAlarms(const CAlarmsArray& alarms, const CUInt128& itemId, OleDate date, OleDate upTo,
                     std::vector<SAlarmQuickInfo>& entries)
{
    const double day = std::trunc(date);
    for (size_t index = 0; index < alarms.GetSize(); ++index)
    {
        const CAlarmInfo& alarm = alarms[index];
        const OleDate moment = alarm.MomentOnDay(date);
        if (Occurs(alarm, date, upTo) && !alarm.IsHandled(moment))
            entries.push_back({moment, alarm.reminderValue, itemId, index});
        const OleDate snoozed = alarm.SnoozeMoment();
        if (alarm.enabled && snoozed != 0 && std::trunc(snoozed) == day && snoozed <= upTo)
            entries.push_back({snoozed, alarm.reminderValue, itemId, index});
    }
}
