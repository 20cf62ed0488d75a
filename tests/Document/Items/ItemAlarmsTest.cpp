#include "Alarms/AlarmManager.h"
#include "Document/ItemTreeAlarms.h"
#include "TestTree.h"

#include <gtest/gtest.h>

namespace
{
class CFixedClock : public IClock
{
public:
    OleDate NowLocal() const override { return now; }
    uint32_t TickCountMs() const override { return 0; }
    OleDate now = 0;
};

constexpr double Day = 44000;

void AddDailyAlarm(CItem& item, double timeOfDay, int32_t reminder)
{
    CAlarmInfo alarm(0.0);
    alarm.type = 1;
    alarm.startDay = static_cast<int32_t>(Day) - 5;
    alarm.time = timeOfDay;
    alarm.reminderValue = reminder;
    item.GetAlarms(true)->Add(alarm);
}
} // namespace

TEST(ItemTreeAlarms, CollectsDepthFirstFolderBeforeChildren)
{
    CMemFolder root;
    root.SetId(1);
    CMemNote* first = AddNote(root, u"first");
    first->SetId(2);
    CMemFolder* sub = AddFolder(root, u"sub");
    sub->SetId(3);
    CMemNote* inner = AddNote(*sub, u"inner");
    inner->SetId(4);
    CMemNote* last = AddNote(root, u"last");
    last->SetId(5);
    for (CItem* item : std::initializer_list<CItem*>{last, inner, sub, first, &root})
        AddDailyAlarm(*item, 0.25, static_cast<int32_t>(item->GetId().Low()) * 10);
    AddDailyAlarm(*inner, 0.9, 99); // later than the asked moment
    AddDailyAlarm(*inner, 0.1, 41);

    std::vector<SAlarmQuickInfo> entries;
    CollectDueAlarms(root, Day + 0.5, Day + 0.5, entries);
    std::vector<int32_t> reminders;
    for (const SAlarmQuickInfo& entry : entries)
    {
        reminders.push_back(entry.reminderValue);
        EXPECT_EQ(entry.itemId.Low() * 10, static_cast<uint64_t>(entry.reminderValue / 10 * 10));
    }
    EXPECT_EQ(reminders, (std::vector<int32_t>{10, 20, 30, 40, 41, 50}));
    EXPECT_EQ(entries[4].moment, Day + 0.1);
    EXPECT_EQ(entries[4].alarmIndex, 2u);
}

TEST(ItemTreeAlarms, ManagerDismissesThroughTheTreeAndTheItemAnnouncesIt)
{
    CMemFolder root;
    CRecordingHost host;
    root.SetTreeHost(&host);
    CMemNote* note = AddNote(root, u"n");
    note->SetId(7);
    note->SetNotify(true);
    AddDailyAlarm(*note, 0.25, 1);
    CItemTreeAlarmSource source(&root);
    CFixedClock clock;
    clock.now = Day + 0.5;
    CAlarmManager manager(clock, &source);
    std::vector<SAlarmQuickInfo> entries;
    ASSERT_TRUE(manager.Refresh(false, entries));
    ASSERT_EQ(entries.size(), 2u);
    ASSERT_TRUE(manager.Dismiss(entries[1]));
    EXPECT_EQ(host.changes, (std::vector<std::pair<CUInt128, EItemChange>>{{7, EItemChange::Alarms}}));
    ASSERT_TRUE(manager.Refresh(false, entries));
    EXPECT_EQ(entries.size(), 1u);

    source.SetRoot(nullptr);
    manager.SetTree(&source);
    EXPECT_FALSE(manager.Refresh(false, entries));
}
