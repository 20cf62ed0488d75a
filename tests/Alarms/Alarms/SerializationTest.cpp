#include "Alarms/AlarmsArray.h"
#include "LogCapture.h"
#include "Shared/Base/Archive.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{
constexpr const char16_t* FailureLine =
    u"Error: General exception caught on serializing alarm array information.";

CAlarmInfo HandMadeAlarm()
{
    CAlarmInfo alarm(0.0);
    alarm.time = 0.5;
    alarm.startDay = 40000;
    alarm.hasEndDate = true;
    alarm.endDay = 40010;
    alarm.type = 2;
    alarm.interval = 3;
    alarm.texts = {u"Hi", u"", u"\u00e9"};
    alarm.reminderValue = -2;
    alarm.weekDays = 0x22;
    alarm.enabled = false;
    alarm.flag = 7;
    alarm.reserved[0] = 0x11;
    alarm.reserved[99] = 0x7A;
    alarm.dates = {1.0};
    return alarm;
}

std::vector<uint8_t> HandMadeBytes()
{
    std::vector<uint8_t> b = {0,    0,    0,    0, 0,    0, 0xE0, 0x3F, // time 0.5
                              0x40, 0x9C, 0,    0,                      // start day 40000
                              1,                                        // has end date
                              0x4A, 0x9C, 0,    0,                      // end day 40010
                              2,    0,    0,    0,                      // weekly
                              3,    0,    0,    0,                      // interval
                              0xFF, 0xFE, 0xFF, 2, 'H',  0, 'i',  0,    0xFF, 0xFE, 0xFF, 0,
                              0xFF, 0xFE, 0xFF, 1, 0xE9, 0, 0xFE, 0xFF, 0xFF, 0xFF, // reminder value -2
                              0x22,                                                 // week days
                              0,                                                    // disabled
                              7};                                                   // flag
    std::vector<uint8_t> reserved(100, 0);
    reserved[0] = 0x11;
    reserved[99] = 0x7A;
    b.insert(b.end(), reserved.begin(), reserved.end());
    const uint8_t dates[] = {1, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F};
    b.insert(b.end(), std::begin(dates), std::end(dates));
    return b;
}

CAlarmInfo RandomAlarm(std::mt19937& rng)
{
    std::uniform_int_distribution<int> any(INT32_MIN, INT32_MAX);
    std::uniform_int_distribution<int> byte(0, 255);
    CAlarmInfo alarm(0.0);
    alarm.enabled = byte(rng) & 1;
    alarm.time = any(rng) / 1000.0;
    alarm.startDay = any(rng);
    alarm.hasEndDate = byte(rng) & 1;
    alarm.endDay = any(rng);
    alarm.type = any(rng);
    alarm.interval = any(rng);
    for (std::u16string& text : alarm.texts)
    {
        text.resize(static_cast<size_t>(byte(rng)) * (byte(rng) % 3));
        for (char16_t& ch : text)
            ch = static_cast<char16_t>(any(rng));
    }
    alarm.reminderValue = any(rng);
    alarm.weekDays = static_cast<uint8_t>(byte(rng));
    alarm.flag = static_cast<uint8_t>(byte(rng));
    for (uint8_t& b : alarm.reserved)
        b = static_cast<uint8_t>(byte(rng));
    alarm.dates.resize(static_cast<size_t>(byte(rng) % 5));
    for (double& d : alarm.dates)
        d = any(rng) / 7.0;
    return alarm;
}
} // namespace

TEST(AlarmSerialization, OneAlarmHasTheExpectedBytes)
{
    CArchiveWriter writer;
    HandMadeAlarm().Save(writer);
    EXPECT_EQ(writer.Bytes(), HandMadeBytes());

    const std::vector<uint8_t> bytes = HandMadeBytes();
    CArchiveReader reader(bytes);
    CAlarmInfo loaded(0.0);
    ASSERT_TRUE(loaded.Load(reader));
    EXPECT_EQ(loaded, HandMadeAlarm());
    EXPECT_EQ(reader.Remaining(), 0u);
}

TEST(AlarmSerialization, DefaultsFollowTheGivenMoment)
{
    const CAlarmInfo alarm(41000.25);
    EXPECT_TRUE(alarm.enabled);
    EXPECT_DOUBLE_EQ(alarm.time, 0.25);
    EXPECT_EQ(alarm.startDay, 41001);
    EXPECT_EQ(alarm.endDay, 41001);
    EXPECT_FALSE(alarm.hasEndDate);
    EXPECT_EQ(alarm.type, 0);
    EXPECT_EQ(alarm.interval, 1);
    EXPECT_EQ(alarm.reminderValue, 1);
    EXPECT_EQ(alarm.weekDays, 0);
    EXPECT_EQ(alarm.flag, 1);
    EXPECT_TRUE(alarm.dates.empty());
    EXPECT_EQ(alarm.reserved, (std::array<uint8_t, 100>{}));
}

TEST(AlarmSerialization, ArrayStartsWithItsCount)
{
    CAlarmsArray array;
    array.Add(HandMadeAlarm());
    array.Add(HandMadeAlarm());
    CArchiveWriter writer;
    ASSERT_TRUE(array.Save(writer));
    std::vector<uint8_t> expected = {2, 0};
    for (int i = 0; i < 2; ++i)
    {
        const std::vector<uint8_t> one = HandMadeBytes();
        expected.insert(expected.end(), one.begin(), one.end());
    }
    EXPECT_EQ(writer.Bytes(), expected);
}

TEST(AlarmSerialization, RandomArraysRoundTrip)
{
    std::mt19937 rng(5);
    for (int round = 0; round < 200; ++round)
    {
        CAlarmsArray array;
        const int count = static_cast<int>(rng() % 6);
        for (int i = 0; i < count; ++i)
            array.Add(RandomAlarm(rng));
        CArchiveWriter writer;
        ASSERT_TRUE(array.Save(writer));
        CArchiveReader reader(writer.Bytes());
        CAlarmsArray loaded;
        ASSERT_EQ(loaded.Load(reader), 0);
        ASSERT_EQ(loaded, array);
        ASSERT_EQ(reader.Remaining(), 0u);
    }
}

TEST(AlarmSerialization, LongDatesListUsesTheWideCount)
{
    CAlarmInfo alarm(0.0);
    alarm.dates.assign(0x10000, 2.5);
    CArchiveWriter writer;
    alarm.Save(writer);
    const std::vector<uint8_t>& bytes = writer.Bytes();
    const size_t countAt = bytes.size() - 0x10000 * 8 - 6;
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + countAt, bytes.begin() + countAt + 6),
              (std::vector<uint8_t>{0xFF, 0xFF, 0, 0, 1, 0}));
    CArchiveReader reader(bytes);
    CAlarmInfo loaded(0.0);
    ASSERT_TRUE(loaded.Load(reader));
    EXPECT_EQ(loaded, alarm);
}

TEST(AlarmSerialization, EveryTruncationFailsWithOneLineAndKeepsTheArray)
{
    CLogCapture log;
    CAlarmsArray original;
    original.Add(HandMadeAlarm());
    original.Add(HandMadeAlarm());
    CArchiveWriter writer;
    ASSERT_TRUE(original.Save(writer));
    const std::vector<uint8_t>& bytes = writer.Bytes();
    std::mt19937 rng(1);
    for (size_t size = 0; size < bytes.size(); ++size)
    {
        CAlarmsArray target;
        target.Add(RandomAlarm(rng));
        const CAlarmsArray before = target;
        CArchiveReader reader(bytes.data(), size);
        ASSERT_EQ(target.Load(reader), 2) << size;
        ASSERT_EQ(target, before);
        ASSERT_EQ(log.CountLines(FailureLine), size + 1);
    }
    EXPECT_EQ(log.CountMessages(), bytes.size());
}

TEST(AlarmSerialization, CountsBeyondTheDataAreRefusedBeforeAllocating)
{
    CLogCapture log;
    const std::vector<std::vector<uint8_t>> inputs = {
        {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, // four thousand million alarms in six bytes
        {0x02, 0x00},                         // two alarms, no data
    };
    for (const auto& input : inputs)
    {
        CArchiveReader reader(input);
        CAlarmsArray array;
        EXPECT_EQ(array.Load(reader), 2);
        EXPECT_TRUE(array.IsEmpty());
    }
    // One alarm whose dates list claims more entries than there are bytes left.
    std::vector<uint8_t> bytes = {1, 0};
    const std::vector<uint8_t> alarm = HandMadeBytes();
    bytes.insert(bytes.end(), alarm.begin(), alarm.end() - 10); // without its dates list
    const uint8_t claim[] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 0, 0, 0, 0, 0, 0, 0, 0};
    bytes.insert(bytes.end(), std::begin(claim), std::end(claim));
    CArchiveReader reader(bytes);
    CAlarmsArray array;
    EXPECT_EQ(array.Load(reader), 2);
    EXPECT_EQ(log.CountLines(FailureLine), 3u);
}
