#include "Alarms/AlarmManager.h"
#include "Alarms/AlarmOccurrence.h"
#include "Alarms/AlarmTree.h"
#include "Alarms/AlarmsArray.h"
#include "LogCapture.h"
#include "Shared/Base/Archive.h"

#include <gtest/gtest.h>

#include <map>

namespace
{
class CTestClock : public IClock
{
public:
    OleDate NowLocal() const override { return now; }
    uint32_t TickCountMs() const override { return 0; }
    OleDate now = 0;
};

// A flat stand-in for the item tree: items by ID in ID order, each with its alarms.
class CFlatTree : public IAlarmTree
{
public:
    bool HasRoot() const override { return open; }
    void CollectDueAlarms(OleDate date, OleDate upTo, std::vector<SAlarmQuickInfo>& entries) override
    {
        ++walks;
        for (const auto& [id, alarms] : items)
            AppendDueAlarms(alarms, id, date, upTo, entries);
    }
    CAlarmInfo* FindAlarm(const CUInt128& itemId, size_t alarmIndex) override
    {
        auto it = items.find(itemId);
        return it != items.end() && alarmIndex < it->second.GetSize() ? &it->second[alarmIndex] : nullptr;
    }
    void OnAlarmChanged(const CUInt128& itemId) override { changed.push_back(itemId); }

    bool open = true;
    int walks = 0;
    std::map<CUInt128, CAlarmsArray> items;
    std::vector<CUInt128> changed;
};

constexpr double Day = 45000; // a Friday in March 2023
constexpr double Hour = 1.0 / 24;

CAlarmInfo DailyAt(double timeOfDay, int32_t startDay = static_cast<int32_t>(Day) - 10)
{
    CAlarmInfo alarm(0.0);
    alarm.type = 1;
    alarm.startDay = startDay;
    alarm.time = timeOfDay;
    return alarm;
}

class AlarmManagerTest : public testing::Test
{
protected:
    std::vector<SAlarmQuickInfo> Refresh(bool always = false)
    {
        std::vector<SAlarmQuickInfo> entries;
        refreshed = manager.Refresh(always, entries);
        return entries;
    }

    CTestClock clock;
    CFlatTree tree;
    CAlarmManager manager{clock, &tree};
    bool refreshed = false;
};
} // namespace

TEST_F(AlarmManagerTest, PreviousDayEntriesComeBeforeTodaysInCollectionOrder)
{
    tree.items[7].Add(DailyAt(20 * Hour));
    tree.items[7].Add(DailyAt(8 * Hour));
    tree.items[9].Add(DailyAt(9 * Hour));
    clock.now = Day + 10 * Hour;
    const auto entries = Refresh();
    ASSERT_TRUE(refreshed);
    const std::vector<SAlarmQuickInfo> expected = {{Day - 1 + 20 * Hour, 1, 7, 0},
                                                   {Day - 1 + 8 * Hour, 1, 7, 1},
                                                   {Day - 1 + 9 * Hour, 1, 9, 0},
                                                   {Day + 8 * Hour, 1, 7, 1},
                                                   {Day + 9 * Hour, 1, 9, 0}};
    EXPECT_EQ(entries, expected);
    EXPECT_EQ(manager.LastRebuildDay(), static_cast<int32_t>(Day));
    EXPECT_FALSE(manager.NeedsRebuild());
}

TEST_F(AlarmManagerTest, RebuildsOnlyWhenMarkedOrOnANewDay)
{
    tree.items[1].Add(DailyAt(12 * Hour));
    clock.now = Day + 11 * Hour;
    EXPECT_EQ(Refresh().size(), 1u); // yesterday's noon
    clock.now = Day + 13 * Hour;
    EXPECT_TRUE(Refresh().empty());
    EXPECT_FALSE(refreshed);
    EXPECT_EQ(Refresh(true).size(), 1u); // unconditional: the lists as they stand
    EXPECT_TRUE(refreshed);
    EXPECT_EQ(tree.walks, 2);
    manager.MarkForRebuild();
    EXPECT_EQ(Refresh().size(), 2u);
    clock.now = Day + 1 + Hour;
    EXPECT_EQ(Refresh().size(), 1u);
    EXPECT_EQ(manager.LastRebuildDay(), static_cast<int32_t>(Day) + 1);
}

TEST_F(AlarmManagerTest, NothingIsBuiltWithoutADocument)
{
    tree.open = false;
    tree.items[1].Add(DailyAt(Hour));
    clock.now = Day + 0.5;
    EXPECT_TRUE(Refresh().empty());
    EXPECT_FALSE(refreshed);
    EXPECT_TRUE(manager.NeedsRebuild());
    tree.open = true;
    EXPECT_EQ(Refresh().size(), 2u);
}

TEST_F(AlarmManagerTest, TimerOffersAnAlarmOnceItsMomentHasPassed)
{
    tree.items[1].Add(DailyAt(15 * Hour, static_cast<int32_t>(Day)));
    std::vector<SAlarmQuickInfo> entries;
    clock.now = Day + 14.9 * Hour;
    EXPECT_FALSE(manager.OnTimer(entries));
    clock.now = Day + 15 * Hour + 1e-6;
    ASSERT_TRUE(manager.OnTimer(entries));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].moment, Day + 15 * Hour);
}

TEST_F(AlarmManagerTest, DismissedOccurrencesStayHandled)
{
    CLogCapture log;
    tree.items[3].Add(DailyAt(6 * Hour));
    clock.now = Day + 7 * Hour;
    auto entries = Refresh();
    ASSERT_EQ(entries.size(), 2u);
    ASSERT_TRUE(manager.Dismiss(entries[1]));
    EXPECT_EQ(tree.changed, std::vector<CUInt128>{3});
    entries = Refresh();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].moment, Day - 1 + 6 * Hour);
    ASSERT_TRUE(manager.Dismiss(entries[0]));
    EXPECT_TRUE(Refresh().empty());
    // The next day brings the next occurrence; the old handled moments fall out of the list.
    clock.now = Day + 2 + 7 * Hour;
    ASSERT_TRUE(manager.Dismiss(Refresh().at(1)));
    EXPECT_EQ(tree.items[3][0].dates, std::vector<double>{Day + 2 + 6 * Hour});
    EXPECT_EQ(log.CountMessages(), 0u);
}

TEST_F(AlarmManagerTest, SnoozedRemindersComeBackAfterTheChosenMinutes)
{
    tree.items[4].Add(DailyAt(6 * Hour, static_cast<int32_t>(Day)));
    clock.now = Day + 7 * Hour;
    auto entries = Refresh();
    ASSERT_EQ(entries.size(), 1u);
    ASSERT_TRUE(manager.Snooze(entries[0], 10));
    const double back = Day + 7 * Hour + 10.0 / 1440;
    EXPECT_DOUBLE_EQ(tree.items[4][0].SnoozeMoment(), back);
    clock.now = back - 1e-5;
    EXPECT_TRUE(Refresh().empty());
    clock.now = back;
    manager.MarkForRebuild();
    entries = Refresh();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].moment, tree.items[4][0].SnoozeMoment());

    // The snooze survives storing and loading the alarms.
    CArchiveWriter writer;
    ASSERT_TRUE(tree.items[4].Save(writer));
    CArchiveReader reader(writer.Bytes());
    CAlarmsArray reloaded;
    ASSERT_EQ(reloaded.Load(reader), 0);
    tree.items[4] = reloaded;
    manager.MarkForRebuild();
    ASSERT_EQ(Refresh().size(), 1u);

    // Snoozing again moves it on; dismissing it clears it.
    ASSERT_TRUE(manager.Snooze(entries[0], 60));
    EXPECT_DOUBLE_EQ(tree.items[4][0].SnoozeMoment(), back + Hour);
    clock.now = back + Hour;
    entries = Refresh();
    ASSERT_EQ(entries.size(), 1u);
    ASSERT_TRUE(manager.Dismiss(entries[0]));
    EXPECT_EQ(tree.items[4][0].SnoozeMoment(), 0);
    EXPECT_TRUE(Refresh().empty());
}

TEST_F(AlarmManagerTest, UnknownEntriesAreRefusedWithALogLine)
{
    CLogCapture log;
    EXPECT_FALSE(manager.Dismiss({Day, 1, 99, 0}));
    EXPECT_FALSE(manager.Snooze({Day, 1, 99, 0}, 5));
    EXPECT_EQ(log.CountLines(u"Error: Cannot find alarm 0 of item 63"), 2u);
    EXPECT_TRUE(tree.changed.empty());
}
