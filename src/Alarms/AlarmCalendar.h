#pragma once
// Calendar helpers of the alarm recurrence rules. They deliberately differ from one another in the
// same way the stored alarms have always been evaluated: the arithmetic week day applies the
// Gregorian century rule, while the month length used by the rules counts 29 February days in
// every year divisible by 4 (2100 included). Changing either would move existing alarms.
#include "Shared/Base/OleDate.h"

#include <cstdint>

struct SAlarmCalendarDay
{
    int year = 0;
    int month = 0;   // 1-12
    int day = 0;     // 1-31
    int weekDay = 0; // 1 = Sunday ... 7 = Saturday
};

// Calendar fields of an OLE date through the platform conversion; false when it has none.
bool AlarmCalendarFields(OleDate date, SAlarmCalendarDay& fields);

// 0 for days 1-7 of a month, 1 for days 8-14, and so on.
int AlarmWeekOfMonth(int dayOfMonth);

// A week day number from 1 to 7 counted arithmetically; only equality of two results matters.
int AlarmArithmeticWeekDay(int year, int month, int day);

// February has 29 days whenever the year is divisible by 4.
int AlarmDaysInMonth(int year, int month);

// The day number of a date (its truncation); false when it does not fit a 32-bit day number.
bool AlarmDayNumber(OleDate date, int32_t& day);
