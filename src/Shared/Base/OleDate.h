#pragma once
// Date-times as OLE dates: days since 30 December 1899 (day 0), the time of day as the fraction.
// Negative values count backwards, with the fraction still measured forward from midnight of the
// day (so -1.25 is 29 December 1899, 06:00), as the platform does.
#include <cstdint>
#include <string>
#include <string_view>

using OleDate = double;

struct SDateTimeFields
{
    int year = 1899;   // four digits
    int month = 12;    // 1-12
    int day = 30;      // 1-31
    int hour = 0;      // 0-23
    int minute = 0;    // 0-59
    int second = 0;    // 0-59
    int dayOfWeek = 0; // 0 = Sunday
    int dayOfYear = 1; // 1-366
};

// Valid for years 100..9999 like the platform's conversion; false outside.
bool OleDateToFields(OleDate date, SDateTimeFields& fields);
// Uses year, month, day, hour, minute, second; false when they name no real moment.
bool FieldsToOleDate(const SDateTimeFields& fields, OleDate& date);
bool IsLeapYear(int year);
int DaysInMonth(int year, int month);

// strftime-style formatting of calendar fields: %a %A %b %B %d %H %I %j %m %M %p %S %y %Y %%
// with the C locale's English names and "AM"/"PM".
std::u16string FormatDateTime(std::u16string_view format, const SDateTimeFields& fields);

// Clock interface so that tests can set "now".
class IClock
{
public:
    virtual ~IClock() = default;
    virtual OleDate NowLocal() const = 0;     // local time as an OLE date
    virtual uint32_t TickCountMs() const = 0; // monotonic milliseconds, wraps like GetTickCount
};

// The real clock (local time zone, steady clock for ticks).
IClock& SystemClock();
