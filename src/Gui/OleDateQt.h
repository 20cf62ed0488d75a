#pragma once
// OLE automation dates (days since 30 December 1899, the fraction the time of day) as Qt dates
// and times, for the date and time fields of the dialogs.
#include "Shared/Base/OleDate.h"

#include <QDate>
#include <QDateTime>
#include <QTime>

#include <cmath>
#include <cstdint>

inline QDate OleDayToQDate(int32_t day)
{
    return QDate(1899, 12, 30).addDays(day);
}

inline int32_t QDateToOleDay(const QDate& date)
{
    return static_cast<int32_t>(QDate(1899, 12, 30).daysTo(date));
}

// The time of day of a fraction of a day, to the second.
inline QTime DayFractionToQTime(double fraction)
{
    const double dayPart = fraction - std::floor(fraction);
    const int seconds = static_cast<int>(std::lround(dayPart * 86400.0)) % 86400;
    return QTime(0, 0).addSecs(seconds);
}

inline double QTimeToDayFraction(const QTime& time)
{
    return QTime(0, 0).secsTo(time) / 86400.0;
}

inline QDateTime OleDateToQDateTime(OleDate date)
{
    const double day = std::floor(date);
    return QDateTime(OleDayToQDate(static_cast<int32_t>(day)), DayFractionToQTime(date - day));
}
