#include "Shared/Base/OleDate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace
{
SDateTimeFields Fields(OleDate date)
{
    SDateTimeFields fields;
    EXPECT_TRUE(OleDateToFields(date, fields)) << date;
    return fields;
}

std::string Text(const SDateTimeFields& f)
{
    char text[64];
    std::snprintf(text, sizeof(text), "%04d-%02d-%02d %02d:%02d:%02d w%d y%d", f.year, f.month, f.day, f.hour,
                  f.minute, f.second, f.dayOfWeek, f.dayOfYear);
    return text;
}
} // namespace

TEST(OleDate, KnownDays)
{
    EXPECT_EQ("1899-12-30 00:00:00 w6 y364", Text(Fields(0.0)));
    EXPECT_EQ("1899-12-31 00:00:00 w0 y365", Text(Fields(1.0)));
    EXPECT_EQ("1900-01-01 12:00:00 w1 y1", Text(Fields(2.5)));
    EXPECT_EQ("2000-01-01 00:00:00 w6 y1", Text(Fields(36526.0)));
    EXPECT_EQ("2023-03-15 18:00:00 w3 y74", Text(Fields(45000.75)));
    EXPECT_EQ("2024-12-31 00:00:00 w2 y366", Text(Fields(45657.0)));
}

TEST(OleDate, NegativeDatesCountTheFractionForwardFromMidnight)
{
    EXPECT_EQ("1899-12-29 06:00:00 w5 y363", Text(Fields(-1.25)));
    EXPECT_EQ("1899-12-30 12:00:00 w6 y364", Text(Fields(-0.5)));
    OleDate date = 0;
    SDateTimeFields f = Fields(-1.25);
    ASSERT_TRUE(FieldsToOleDate(f, date));
    EXPECT_DOUBLE_EQ(-1.25, date);
}

TEST(OleDate, RangeIsYear100ToYear9999)
{
    EXPECT_EQ("0100-01-01 00:00:00 w5 y1", Text(Fields(-657434.0)));
    EXPECT_EQ("9999-12-31 23:59:59 w5 y365", Text(Fields(2958465.0 + 86399.0 / 86400.0)));
    SDateTimeFields f;
    EXPECT_FALSE(OleDateToFields(-657435.0, f));
    EXPECT_FALSE(OleDateToFields(2958466.0, f));
    EXPECT_FALSE(OleDateToFields(std::nan(""), f));
    EXPECT_FALSE(OleDateToFields(1e300, f));
}

TEST(OleDate, TimesRoundToTheNearestSecond)
{
    EXPECT_EQ("1900-01-01 00:00:00 w1 y1", Text(Fields(2.0 - 0.4 / 86400.0)));
    EXPECT_EQ("1899-12-31 23:59:59 w0 y365", Text(Fields(2.0 - 0.6 / 86400.0)));
}

TEST(OleDate, WalkingDayByDayAgreesWithACalendarModel)
{
    SDateTimeFields model;
    model.year = 1600;
    model.month = 1;
    model.day = 1;
    OleDate start = 0;
    ASSERT_TRUE(FieldsToOleDate(model, start));
    int dayOfWeek = Fields(start).dayOfWeek;
    int dayOfYear = 1;
    for (long long day = static_cast<long long>(start); model.year < 2401; ++day)
    {
        // Before day zero the noon of a day lies below its whole number.
        const SDateTimeFields f = Fields(static_cast<double>(day) + (day >= 0 ? 0.5 : -0.5));
        ASSERT_EQ(model.year, f.year);
        ASSERT_EQ(model.month, f.month);
        ASSERT_EQ(model.day, f.day);
        ASSERT_EQ(12, f.hour);
        ASSERT_EQ(dayOfWeek, f.dayOfWeek);
        ASSERT_EQ(dayOfYear, f.dayOfYear);
        dayOfWeek = (dayOfWeek + 1) % 7;
        ++dayOfYear;
        if (++model.day > DaysInMonth(model.year, model.month))
        {
            model.day = 1;
            if (++model.month > 12)
            {
                model.month = 1;
                ++model.year;
                dayOfYear = 1;
            }
        }
    }
}

TEST(OleDate, RandomFieldsRoundTrip)
{
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i)
    {
        SDateTimeFields f;
        f.year = 100 + static_cast<int>(random() % 9900);
        f.month = 1 + static_cast<int>(random() % 12);
        f.day = 1 + static_cast<int>(random() % DaysInMonth(f.year, f.month));
        f.hour = static_cast<int>(random() % 24);
        f.minute = static_cast<int>(random() % 60);
        f.second = static_cast<int>(random() % 60);
        OleDate date = 0;
        ASSERT_TRUE(FieldsToOleDate(f, date));
        const SDateTimeFields back = Fields(date);
        ASSERT_EQ(std::tie(f.year, f.month, f.day, f.hour, f.minute, f.second),
                  std::tie(back.year, back.month, back.day, back.hour, back.minute, back.second))
            << Text(f) << " " << date;
    }
}

TEST(OleDate, ImpossibleFieldsAreRejected)
{
    const auto valid = [](int y, int mo, int d, int h = 0, int mi = 0, int s = 0)
    {
        SDateTimeFields f;
        f.year = y, f.month = mo, f.day = d, f.hour = h, f.minute = mi, f.second = s;
        OleDate date = 0;
        return FieldsToOleDate(f, date);
    };
    EXPECT_TRUE(valid(2024, 2, 29));
    EXPECT_FALSE(valid(2023, 2, 29));
    EXPECT_FALSE(valid(1900, 2, 29));
    EXPECT_TRUE(valid(2000, 2, 29));
    EXPECT_FALSE(valid(2024, 13, 1));
    EXPECT_FALSE(valid(2024, 4, 31));
    EXPECT_FALSE(valid(2024, 1, 1, 24));
    EXPECT_FALSE(valid(2024, 1, 1, 0, 60));
    EXPECT_FALSE(valid(2024, 1, 1, 0, 0, 60));
    EXPECT_FALSE(valid(99, 12, 31));
    EXPECT_FALSE(valid(10000, 1, 1));
}

TEST(OleDate, StrftimeStyleFormatting)
{
    SDateTimeFields f;
    OleDate date = 0;
    f.year = 2024, f.month = 3, f.day = 5, f.hour = 14, f.minute = 7, f.second = 9;
    ASSERT_TRUE(FieldsToOleDate(f, date));
    f = Fields(date);
    EXPECT_EQ(u"03\\05\\2024 - 02:07:09 PM", FormatDateTime(u"%m\\%d\\%Y - %I:%M:%S %p", f));
    EXPECT_EQ(u"Tue Tuesday Mar March 065 24 14 100%", FormatDateTime(u"%a %A %b %B %j %y %H 100%%", f));
    f.hour = 0;
    EXPECT_EQ(u"12 AM", FormatDateTime(u"%I %p", f));
    f.hour = 12;
    EXPECT_EQ(u"12 PM %q", FormatDateTime(u"%I %p %q", f));
}

TEST(OleDate, SystemClockIsAValidDate)
{
    SDateTimeFields f;
    EXPECT_TRUE(OleDateToFields(SystemClock().NowLocal(), f));
    EXPECT_GE(f.year, 2020);
}
