// The alarm editor and the reminder window over an in-memory tree, with a clock the test moves.
#include "Gui/AlarmEditorDlg.h"
#include "Gui/AlarmReminderDlg.h"

#include "DialogTestSupport.h"
#include "Document/ItemTreeAlarms.h"
#include "Document/MemFolder.h"
#include "Document/MemNote.h"
#include "Gui/OleDateQt.h"
#include "Gui/QtText.h"
#include "GuiTestModal.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTimeEdit>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace
{
constexpr double Minute = 1.0 / (24 * 60);
constexpr int32_t Today = 46000; // Tuesday 9 December 2025

class AlarmDialogsTest : public ::testing::Test
{
protected:
    SDialogTestEnv env;
    CMemFolder root;
    CMemNote* note;
    CItemTreeAlarmSource source{&root};
    CAlarmManager manager{env.clock, &source};

    AlarmDialogsTest()
    {
        root.SetId(1);
        auto child = std::make_unique<CMemNote>();
        child->SetCaption(u"Dentist");
        child->SetId(CUInt128(7, 42));
        note = static_cast<CMemNote*>(root.AddChild(std::move(child)));
        env.clock.now = Today + 10 * 60 * Minute; // 10:00
    }

    CAlarmInfo& AddOnceAlarm(int32_t day, double time, const std::u16string& description)
    {
        CAlarmInfo alarm(env.clock.now);
        alarm.startDay = day;
        alarm.time = time;
        alarm.SetText(EAlarmText::Description, description);
        note->GetAlarms(true)->Add(alarm);
        return (*note->GetAlarms(false))[note->GetAlarms(false)->GetSize() - 1];
    }

    std::unique_ptr<CAlarmReminderDlg> MakeReminder(QStringList& sounds)
    {
        auto dlg = std::make_unique<CAlarmReminderDlg>(manager, source, &env.english);
        dlg->SetSoundPlayer([&sounds](const QString& file) { sounds << file; });
        return dlg;
    }
};

TEST_F(AlarmDialogsTest, AnAlarmDueAMinuteAgoIsShownAndComesBackFiveMinutesAfterASnooze)
{
    AddOnceAlarm(Today, 10 * 60 * Minute - Minute, u"Call the dentist")
        .SetText(EAlarmText::Sound, u"/s/ding.wav");
    QStringList sounds;
    QStringList trayMessages;
    auto dlg = MakeReminder(sounds);
    QObject::connect(dlg.get(), &CAlarmReminderDlg::RemindersDue,
                     [&](const QString& message) { trayMessages << message; });
    dlg->StartWatching();

    ASSERT_TRUE(dlg->isVisible());
    ASSERT_EQ(dlg->DueList()->topLevelItemCount(), 1);
    EXPECT_EQ(dlg->DueList()->topLevelItem(0)->text(1), QStringLiteral("Call the dentist"));
    EXPECT_EQ(dlg->DueList()->topLevelItem(0)->text(0),
              QLocale().toString(QDateTime(OleDayToQDate(Today), QTime(9, 59)), QLocale::ShortFormat));
    EXPECT_EQ(sounds, QStringList{QStringLiteral("/s/ding.wav")});
    EXPECT_EQ(trayMessages, QStringList{QStringLiteral("1 reminders are due.")});

    // The same entry on the next check: no second sound, no second notification.
    dlg->CheckNow();
    EXPECT_EQ(dlg->DueList()->topLevelItemCount(), 1);
    EXPECT_EQ(sounds.size(), 1);
    EXPECT_EQ(trayMessages.size(), 1);

    // The nine snooze choices, 5 minutes chosen.
    ASSERT_EQ(dlg->SnoozeChoice()->count(), 9);
    EXPECT_EQ(dlg->SnoozeChoice()->itemText(0), QStringLiteral("2 minutes"));
    EXPECT_EQ(dlg->SnoozeChoice()->itemText(5), QStringLiteral("1 hour"));
    EXPECT_EQ(dlg->SnoozeChoice()->itemText(8), QStringLiteral("4 hours"));
    dlg->SnoozeChoice()->setCurrentIndex(1);
    dlg->SnoozeButton()->click();
    EXPECT_FALSE(dlg->isVisible());
    EXPECT_TRUE(dlg->Entries().empty());

    env.clock.now += 4 * Minute + 59.0 / 86400;
    dlg->CheckNow();
    EXPECT_FALSE(dlg->isVisible());
    env.clock.now += 1.0 / 86400;
    dlg->CheckNow();
    ASSERT_TRUE(dlg->isVisible());
    ASSERT_EQ(dlg->Entries().size(), 1u);
    EXPECT_NEAR(dlg->Entries()[0].moment, Today + 10 * 60 * Minute + 5 * Minute, 1e-9);

    // Dismissed, it stays away.
    dlg->DismissButton()->click();
    env.clock.now += 30 * Minute;
    dlg->CheckNow();
    EXPECT_FALSE(dlg->isVisible());
}

TEST_F(AlarmDialogsTest, AlarmsThatFellDueWhileClosedAreOfferedAtStartAndOpenNamesTheItem)
{
    AddOnceAlarm(Today - 1, 23 * 60 * Minute, u"Yesterday late");
    AddOnceAlarm(Today, 8 * 60 * Minute, u"This morning");
    AddOnceAlarm(Today, 11 * 60 * Minute, u"Later today");
    QStringList sounds;
    auto dlg = MakeReminder(sounds);
    std::vector<CUInt128> opened;
    QObject::connect(dlg.get(), &CAlarmReminderDlg::OpenItem,
                     [&](const CUInt128& id) { opened.push_back(id); });
    dlg->StartWatching();
    ASSERT_EQ(dlg->DueList()->topLevelItemCount(), 2);
    EXPECT_EQ(dlg->DueList()->topLevelItem(0)->text(1), QStringLiteral("Yesterday late"));
    EXPECT_EQ(dlg->DueList()->topLevelItem(1)->text(1), QStringLiteral("This morning"));
    EXPECT_TRUE(sounds.isEmpty());

    dlg->DueList()->setCurrentItem(dlg->DueList()->topLevelItem(1));
    dlg->OpenButton()->click();
    EXPECT_EQ(opened, std::vector<CUInt128>{CUInt128(7, 42)});

    // The later alarm joins the list at the first check after its moment.
    env.clock.now = Today + 11 * 60 * Minute;
    dlg->CheckNow();
    EXPECT_EQ(dlg->DueList()->topLevelItemCount(), 3);
    EXPECT_EQ(dlg->DueList()->currentItem(), dlg->DueList()->topLevelItem(1));

    dlg->DismissAllButton()->click();
    EXPECT_FALSE(dlg->isVisible());
    dlg->CheckNow();
    EXPECT_FALSE(dlg->isVisible());
    for (const CAlarmInfo& alarm : *note->FindAlarms())
        EXPECT_EQ(alarm.dates.size(), 1u);
}

TEST_F(AlarmDialogsTest, EditorWritesEveryFieldAndShowsThemAgain)
{
    {
        CAlarmEditorDlg dlg(*note, env.clock, &env.english);
        EXPECT_EQ(dlg.AlarmList()->count(), 0);
        EXPECT_FALSE(dlg.RemoveButton()->isEnabled());
        dlg.AddButton()->click();
        dlg.AddButton()->click();
        ASSERT_EQ(dlg.AlarmList()->count(), 2);
        EXPECT_EQ(dlg.StartEdit()->date(), OleDayToQDate(Today + 1));
        EXPECT_EQ(dlg.TimeEdit()->time(), QTime(10, 0));
        EXPECT_FALSE(dlg.IntervalSpin()->isEnabled());

        dlg.TypeCombo()->setCurrentIndex(static_cast<int>(EAlarmType::Weekly));
        EXPECT_TRUE(dlg.WeekDayCheck(2)->isEnabled());
        dlg.IntervalSpin()->setValue(2);
        dlg.WeekDayCheck(2)->setChecked(true); // Monday
        dlg.WeekDayCheck(6)->setChecked(true); // Friday
        dlg.StartEdit()->setDate(QDate(2025, 12, 1));
        dlg.EndCheck()->setChecked(true);
        dlg.EndEdit()->setDate(QDate(2026, 3, 31));
        dlg.TimeEdit()->setTime(QTime(7, 30));
        dlg.DescriptionEdit()->setText(QStringLiteral("Gym"));
        dlg.SoundEdit()->setText(QStringLiteral("/s/bell.wav"));
        dlg.EnabledCheck()->setChecked(false);
        EXPECT_EQ(dlg.AlarmList()->item(1)->text(), QStringLiteral("Gym (Weekly 07:30)"));

        dlg.AlarmList()->setCurrentRow(0);
        dlg.RemoveButton()->click();
        dlg.accept();
    }
    ASSERT_NE(note->FindAlarms(), nullptr);
    ASSERT_EQ(note->FindAlarms()->GetSize(), 1u);
    const CAlarmInfo& alarm = (*note->FindAlarms())[0];
    EXPECT_FALSE(alarm.enabled);
    EXPECT_EQ(alarm.type, static_cast<int32_t>(EAlarmType::Weekly));
    EXPECT_EQ(alarm.interval, 2);
    EXPECT_EQ(alarm.weekDays, 0b100010);
    EXPECT_EQ(alarm.startDay, QDateToOleDay(QDate(2025, 12, 1)));
    EXPECT_EQ(alarm.startDay, 45992);
    EXPECT_TRUE(alarm.hasEndDate);
    EXPECT_EQ(alarm.endDay, 46112);
    EXPECT_NEAR(alarm.time, 7.5 / 24, 1e-12);
    EXPECT_EQ(alarm.Text(EAlarmText::Description), u"Gym");
    EXPECT_EQ(alarm.Text(EAlarmText::Sound), u"/s/bell.wav");

    // Opened again it shows the stored alarm; cancelling leaves it as it is.
    CAlarmEditorDlg again(*note, env.clock, &env.english);
    ASSERT_EQ(again.AlarmList()->count(), 1);
    EXPECT_EQ(again.TypeCombo()->currentIndex(), static_cast<int>(EAlarmType::Weekly));
    EXPECT_TRUE(again.WeekDayCheck(6)->isChecked());
    EXPECT_FALSE(again.WeekDayCheck(7)->isChecked());
    EXPECT_EQ(again.EndEdit()->date(), QDate(2026, 3, 31));
    EXPECT_EQ(again.TimeEdit()->time(), QTime(7, 30));
    again.RemoveButton()->click();
    again.reject();
    EXPECT_EQ(note->FindAlarms()->GetSize(), 1u);
}
} // namespace
