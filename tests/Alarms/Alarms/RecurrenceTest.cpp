// The recurrence rules checked day by day against a plain reading of the rules, with calendar
// fields computed here from the day count rather than through the platform conversion.
#include "Alarms/AlarmCalendar.h"
#include "Alarms/AlarmInfo.h"
#include "Alarms/AlarmOccurrence.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace
{
struct SCivilDay
{
    int year, month, day, weekDay; // week day 1 = Sunday
};

// Days since 1 January 1970 to a Gregorian date (the well-known era-based conversion).
SCivilDay CivilFromOleDay(int64_t oleDay)
{
    const int64_t z = oleDay - 25569 + 719468;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const int64_t doe = z - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int64_t mp = (5 * doy + 2) / 153;
    const int day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    const int month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    const int year = static_cast<int>(yoe + era * 400 + (month <= 2 ? 1 : 0));
    const int weekDay = static_cast<int>(((oleDay % 7) + 7 + 6) % 7) + 1; // day 0 was a Saturday
    return {year, month, day, weekDay};
}

int64_t OleDayFromCivil(int year, int month, int day)
{
    for (int64_t guess = (year - 1900) * 365LL; guess < (year - 1898) * 366LL; ++guess)
    {
        const SCivilDay c = CivilFromOleDay(guess);
        if (c.year == year && c.month == month && c.day == day)
            return guess;
    }
    ADD_FAILURE() << "no such day";
    return 0;
}

// The rules' own month length: February has 29 days in every year divisible by 4.
int RuleDaysInMonth(int year, int month)
{
    static const int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && year % 4 == 0 ? 29 : lengths[month - 1];
}

bool ModelOccurs(const CAlarmInfo& a, int64_t d, double upTo)
{
    if (!a.enabled || a.startDay > d || d > (a.hasEndDate ? a.endDay : 99999999))
        return false;
    const SCivilDay D = CivilFromOleDay(d);
    const SCivilDay S = CivilFromOleDay(a.startDay);
    bool onDay = false;
    switch (a.type)
    {
    case 0:
        onDay = d == a.startDay;
        break;
    case 1:
        onDay = (d - a.startDay) % a.interval == 0;
        break;
    case 2:
    {
        const bool anyOfSunToFri = (a.weekDays & 0x3F) != 0;
        const bool chosen =
            anyOfSunToFri ? (a.weekDays & (1 << (D.weekDay - 1))) != 0 : D.weekDay == S.weekDay;
        onDay = ((d - a.startDay) / 7) % a.interval == 0 && chosen;
        break;
    }
    case 3:
    case 4:
    {
        const int months = (D.year - S.year) * 12 + D.month - S.month;
        const int weekD = (D.day - 1) / 7;
        const int weekS = (S.day - 1) / 7;
        const bool lastSeven = D.day + 7 > RuleDaysInMonth(D.year, D.month);
        onDay = months % a.interval == 0 && D.weekDay == S.weekDay &&
                (weekD == weekS || (weekD < weekS && lastSeven));
        break;
    }
    case 5:
        if ((S.year - D.year) % a.interval == 0)
            onDay = (D.day == S.day && D.month == S.month) ||
                    (D.month == 3 && D.day == 1 && S.month == 2 && S.day == 29 && D.year % 4 != 0);
        break;
    default:
        break;
    }
    return onDay && static_cast<double>(d) + a.time <= upTo;
}

CAlarmInfo MakeAlarm(int type, int64_t startDay, int interval, uint8_t weekDays = 0)
{
    CAlarmInfo alarm(0.0);
    alarm.type = type;
    alarm.startDay = static_cast<int32_t>(startDay);
    alarm.interval = interval;
    alarm.weekDays = weekDays;
    alarm.time = 0.75; // 18:00
    return alarm;
}

// Checks every day from the start to a year and a half after against the model, once with the
// moment at the end of the day and once just before the alarm's time.
void ExpectSameAsModel(const CAlarmInfo& alarm, int* occurrences = nullptr)
{
    int count = 0;
    for (int64_t d = alarm.startDay - 3; d < alarm.startDay + 550; ++d)
    {
        const double endOfDay = static_cast<double>(d) + 0.99;
        const bool expected = ModelOccurs(alarm, d, endOfDay);
        ASSERT_EQ(Occurs(alarm, static_cast<double>(d) + 0.3, endOfDay), expected)
            << "type " << alarm.type << " interval " << alarm.interval << " start " << alarm.startDay
            << " day " << d;
        ASSERT_FALSE(Occurs(alarm, static_cast<double>(d), static_cast<double>(d) + 0.74));
        count += expected ? 1 : 0;
    }
    if (occurrences)
        *occurrences = count;
}
} // namespace

TEST(AlarmCalendar, ArithmeticWeekDayMatchesTheRealWeekDay)
{
    for (int64_t d = OleDayFromCivil(1999, 12, 1); d < OleDayFromCivil(2001, 3, 31); ++d)
    {
        const SCivilDay c = CivilFromOleDay(d);
        const SCivilDay next = CivilFromOleDay(d + 7);
        const SCivilDay tomorrow = CivilFromOleDay(d + 1);
        ASSERT_EQ(AlarmArithmeticWeekDay(c.year, c.month, c.day),
                  AlarmArithmeticWeekDay(next.year, next.month, next.day));
        ASSERT_NE(AlarmArithmeticWeekDay(c.year, c.month, c.day),
                  AlarmArithmeticWeekDay(tomorrow.year, tomorrow.month, tomorrow.day));
    }
    // Over the 2100 February end, where the century rule matters.
    EXPECT_NE(AlarmArithmeticWeekDay(2100, 2, 28), AlarmArithmeticWeekDay(2100, 3, 1));
    EXPECT_EQ(AlarmArithmeticWeekDay(2100, 2, 22), AlarmArithmeticWeekDay(2100, 3, 1));
}

TEST(AlarmCalendar, MonthLengthsKeepTheSimpleLeapRule)
{
    EXPECT_EQ(AlarmDaysInMonth(2000, 2), 29);
    EXPECT_EQ(AlarmDaysInMonth(2100, 2), 29);
    EXPECT_EQ(AlarmDaysInMonth(2011, 2), 28);
    EXPECT_EQ(AlarmDaysInMonth(2011, 4), 30);
    EXPECT_EQ(AlarmDaysInMonth(2011, 12), 31);
    EXPECT_EQ(AlarmWeekOfMonth(1), 0);
    EXPECT_EQ(AlarmWeekOfMonth(7), 0);
    EXPECT_EQ(AlarmWeekOfMonth(8), 1);
    EXPECT_EQ(AlarmWeekOfMonth(29), 4);
}

TEST(AlarmCalendar, FieldsComeFromThePlatformConversion)
{
    SAlarmCalendarDay fields;
    ASSERT_TRUE(AlarmCalendarFields(static_cast<double>(OleDayFromCivil(2012, 2, 29)) + 0.5, fields));
    EXPECT_EQ(fields.year, 2012);
    EXPECT_EQ(fields.month, 2);
    EXPECT_EQ(fields.day, 29);
    EXPECT_EQ(fields.weekDay, 4); // a Wednesday
    int32_t day = 0;
    EXPECT_FALSE(AlarmDayNumber(1e12, day));
}

TEST(AlarmRecurrence, EveryRuleAgreesWithTheModelOverLeapAndCenturyYears)
{
    const int starts[][3] = {{2000, 1, 31}, {2000, 2, 29},  {2011, 12, 31}, {2012, 2, 29},
                             {2012, 3, 30}, {2099, 12, 29}, {2099, 11, 30}, {2100, 2, 28},
                             {2100, 1, 30}, {2013, 3, 29},  {2012, 8, 31}};
    for (const auto& s : starts)
    {
        const int64_t start = OleDayFromCivil(s[0], s[1], s[2]);
        for (int type = 0; type <= 6; ++type)
            for (int interval : {1, 2, 3})
            {
                int occurrences = 0;
                ExpectSameAsModel(MakeAlarm(type, start, interval), &occurrences);
                if (type <= 5)
                    EXPECT_GT(occurrences, 0) << "type " << type;
                else
                    EXPECT_EQ(occurrences, 0);
            }
    }
}

TEST(AlarmRecurrence, WeekDaySetsAgreeWithTheModel)
{
    const int64_t monday = OleDayFromCivil(2012, 1, 2);
    for (int set = 0; set < 128; ++set)
        for (int interval : {1, 2, 5})
            ExpectSameAsModel(MakeAlarm(2, monday, interval, static_cast<uint8_t>(set)));
}

TEST(AlarmRecurrence, EndDaysAndDisabledAlarmsAgreeWithTheModel)
{
    const int64_t start = OleDayFromCivil(2012, 1, 31);
    for (int type = 0; type <= 5; ++type)
    {
        CAlarmInfo ending = MakeAlarm(type, start, 1);
        ending.hasEndDate = true;
        ending.endDay = static_cast<int32_t>(start + 100);
        ExpectSameAsModel(ending);
        CAlarmInfo disabled = MakeAlarm(type, start, 1);
        disabled.enabled = false;
        int occurrences = -1;
        ExpectSameAsModel(disabled, &occurrences);
        EXPECT_EQ(occurrences, 0);
    }
}

TEST(AlarmRecurrence, OnceFallsDueAtItsTime)
{
    const double today = static_cast<double>(OleDayFromCivil(2020, 5, 5));
    CAlarmInfo alarm = MakeAlarm(0, static_cast<int64_t>(today), 1);
    alarm.time = 9.0 / 24.0;
    EXPECT_FALSE(Occurs(alarm, today, today + 9.0 / 24.0 - 1.0 / 1440.0));
    EXPECT_TRUE(Occurs(alarm, today, today + 9.0 / 24.0));
    EXPECT_FALSE(Occurs(alarm, today + 1, today + 2));
}

TEST(AlarmRecurrence, DailyEveryThirdDay)
{
    const int64_t s = OleDayFromCivil(2020, 2, 27);
    const CAlarmInfo alarm = MakeAlarm(1, s, 3);
    for (int offset = 0; offset < 9; ++offset)
        EXPECT_EQ(Occurs(alarm, static_cast<double>(s + offset), static_cast<double>(s + offset) + 0.9),
                  offset % 3 == 0);
}

TEST(AlarmRecurrence, SaturdayAloneActsAsAnEmptySet)
{
    const int64_t monday = OleDayFromCivil(2021, 3, 1);
    const CAlarmInfo alarm = MakeAlarm(2, monday, 1, 0x40);
    for (int offset = 0; offset < 21; ++offset)
    {
        const double d = static_cast<double>(monday + offset);
        EXPECT_EQ(Occurs(alarm, d, d + 0.9), offset % 7 == 0) << offset;
    }
}

TEST(AlarmRecurrence, FifthFridayFallsOnTheLastFridayOfShorterMonths)
{
    const CAlarmInfo alarm = MakeAlarm(4, OleDayFromCivil(2013, 3, 29), 1);
    auto on = [&](int y, int m, int d)
    {
        const double day = static_cast<double>(OleDayFromCivil(y, m, d));
        return Occurs(alarm, day, day + 0.9);
    };
    EXPECT_TRUE(on(2013, 3, 29));
    EXPECT_TRUE(on(2013, 4, 26)); // April 2013 has four Fridays
    EXPECT_FALSE(on(2013, 4, 19));
    EXPECT_TRUE(on(2013, 5, 31)); // May 2013 has a fifth Friday
    EXPECT_FALSE(on(2013, 5, 24));
    const CAlarmInfo byDate = MakeAlarm(3, OleDayFromCivil(2013, 3, 29), 1);
    const double april26 = static_cast<double>(OleDayFromCivil(2013, 4, 26));
    EXPECT_TRUE(Occurs(byDate, april26, april26 + 0.9));
}

TEST(AlarmRecurrence, YearlyFromTheTwentyNinthOfFebruary)
{
    const CAlarmInfo alarm = MakeAlarm(5, OleDayFromCivil(2008, 2, 29), 1);
    auto on = [&](int y, int m, int d)
    {
        const double day = static_cast<double>(OleDayFromCivil(y, m, d));
        return Occurs(alarm, day, day + 0.9);
    };
    EXPECT_TRUE(on(2011, 3, 1));
    EXPECT_FALSE(on(2011, 2, 28));
    EXPECT_TRUE(on(2012, 2, 29));
    EXPECT_FALSE(on(2012, 3, 1));
    EXPECT_FALSE(on(2100, 3, 1)); // the rules count 29 days in February 2100
    EXPECT_FALSE(on(2100, 2, 28));
}

TEST(AlarmRecurrence, DamagedIntervalsNeverFallDue)
{
    const int64_t s = OleDayFromCivil(2020, 1, 1);
    for (int type = 1; type <= 5; ++type)
        for (int interval : {0, -1, INT32_MIN})
            for (int offset = 0; offset < 400; offset += 7)
            {
                const double d = static_cast<double>(s + offset);
                EXPECT_FALSE(Occurs(MakeAlarm(type, s, interval), d, d + 1));
            }
    EXPECT_TRUE(Occurs(MakeAlarm(0, s, 0), static_cast<double>(s), static_cast<double>(s) + 1));
}
