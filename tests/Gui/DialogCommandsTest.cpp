// The dialogs reached through the program's own commands: a boolean search going to a note and
// filtering the tree, a preference that survives a restart, and a reminder for an alarm that
// fell due while the program was closed.
#include "Gui/DialogCommands.h"

#include "Document/ItemExtendedData.h"
#include "Gui/AlarmReminderDlg.h"
#include "Gui/GlobalSearchDlg.h"
#include "Gui/PreferencesDlg.h"
#include "GuiSession.h"
#include "Prefs/Preferences.h"
#include "Shared/Base/OleDate.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTreeWidget>

#include <cmath>

namespace
{
class DialogCommandsSession : public GuiSession
{
protected:
    // Notes "Red roses" (text about red flowers), "Blue sky" (red and blue) and "Shopping" (no
    // red) at the top of the tree.
    std::u16string MakeGardenFile()
    {
        const std::u16string path = m_Home.File16("garden.ddb");
        CDataCenter center;
        EXPECT_TRUE(center.CreateDocument(path));
        center.AddNote(*center.GetRoot(), u"Roses", u"red flowers by the fence");
        center.AddNote(*center.GetRoot(), u"Sky", u"red sunset, blue hour");
        center.AddNote(*center.GetRoot(), u"Shopping", u"bread and milk");
        center.CloseDocument();
        return path;
    }
};

TEST_F(DialogCommandsSession, BooleanSearchFromTheMenuGoesToTheNoteAndFiltersTheTree)
{
    auto app = Start(MakeGardenFile());
    CMainWindow& window = *app->MainWindow();
    CItem* roses = ChildNamed(*app->Center()->GetRoot(), u"Roses");
    int step = 0;
    CExpectModal answer(
        [&](QWidget* modal)
        {
            auto* dlg = qobject_cast<CGlobalSearchDlg*>(modal);
            if (!dlg)
                return false;
            if (step == 0)
            {
                dlg->QueryEdit()->setText(QStringLiteral("+red -blue"));
                dlg->BooleanCheck()->setChecked(true);
                dlg->SearchButton()->click();
                step = 1;
            }
            else if (step == 1 && !dlg->IsSearching() && dlg->ResultList()->topLevelItemCount() > 0)
            {
                EXPECT_EQ(dlg->ResultList()->topLevelItemCount(), 1);
                dlg->GoToButton()->click();
                EXPECT_EQ(window.CurrentItem(), roses);
                dlg->FilterButton()->click(); // shows the filtered tree and closes the window
                step = 2;
            }
            return true;
        });
    ASSERT_NE(window.FindAction(QStringLiteral("ToolsGlobalSearch")), nullptr);
    window.FindAction(QStringLiteral("ToolsGlobalSearch"))->trigger();
    ASSERT_EQ(step, 2);
    EXPECT_EQ(window.CurrentItem(), roses);
    EXPECT_TRUE(app->Dialogs()->IsTreeFiltered());
    int shown = 0;
    for (int i = 0; i < window.Tree()->topLevelItemCount(); ++i)
        shown += window.Tree()->topLevelItem(i)->isHidden() ? 0 : 1;
    EXPECT_EQ(shown, 1);
    EXPECT_FALSE(TopLevel(window, QStringLiteral("Roses"))->isHidden());

    window.FindAction(QStringLiteral("ViewShowAllItems"))->trigger();
    EXPECT_FALSE(TopLevel(window, QStringLiteral("Shopping"))->isHidden());
    EXPECT_EQ(app->Preferences()->Search().globalText, u"+red -blue");
}

TEST_F(DialogCommandsSession, APreferenceChangedInTheWindowSurvivesARestart)
{
    {
        auto app = Start(u"");
        CExpectModal answer(
            [](QWidget* modal)
            {
                auto* dlg = qobject_cast<CPreferencesDlg*>(modal);
                if (!dlg)
                    return false;
                dlg->AutoSaveMinutesSpin()->setValue(17);
                dlg->StampEachLineCheck()->setChecked(true);
                dlg->accept();
                return true;
            });
        app->MainWindow()->FindAction(QStringLiteral("ToolsPreferences"))->trigger();
        EXPECT_EQ(app->Preferences()->Other().autoSaveMinutes, 17);
        app->Shutdown();
    }
    auto app = Start(u"");
    EXPECT_EQ(app->Preferences()->Other().autoSaveMinutes, 17);
    EXPECT_TRUE(app->Preferences()->Editor().stampDateTimeForEachNewLine);
}

TEST_F(DialogCommandsSession, AnAlarmThatFellDueWhileTheProgramWasClosedIsOfferedAtStart)
{
    const std::u16string path = MakeGardenFile();
    {
        CDataCenter center;
        ASSERT_TRUE(center.OpenDocument(path));
        center.GetRoot()->LoadChildren(EChildKind::Any);
        CItem* shopping = ChildNamed(*center.GetRoot(), u"Shopping");
        // Yesterday at this time: due whatever the time of day now.
        const OleDate now = SystemClock().NowLocal();
        CAlarmInfo alarm(now);
        alarm.startDay = static_cast<int32_t>(std::trunc(now)) - 1;
        alarm.SetText(EAlarmText::Description, u"Buy bread");
        shopping->GetAlarms(true)->Add(alarm);
        shopping->NotifyChange(EItemChange::Alarms);
        ASSERT_TRUE(center.Save());
        center.CloseDocument();
    }
    auto app = Start(path);
    CAlarmReminderDlg* reminder = app->Dialogs()->ReminderWindow();
    ASSERT_TRUE(reminder->isVisible());
    ASSERT_EQ(reminder->DueList()->topLevelItemCount(), 1);
    EXPECT_EQ(reminder->DueList()->topLevelItem(0)->text(1), QStringLiteral("Buy bread"));

    // The item with the alarm carries the alarm mark on its icon in the tree.
    CMainWindow& window = *app->MainWindow();
    EXPECT_NE(TopLevel(window, QStringLiteral("Shopping"))->icon(0).pixmap(16).toImage(),
              TopLevel(window, QStringLiteral("Roses"))->icon(0).pixmap(16).toImage());

    // Open selects the item; dismissing is stored, so the next start shows no reminder.
    reminder->OpenButton()->click();
    EXPECT_EQ(app->MainWindow()->CurrentItem(), ChildNamed(*app->Center()->GetRoot(), u"Shopping"));
    reminder->DismissButton()->click();
    EXPECT_FALSE(reminder->isVisible());
    // One program at a time: the first one ends before the next starts.
    app.reset();
    app = Start(path);
    EXPECT_FALSE(app->Dialogs()->ReminderWindow()->isVisible());
}
} // namespace
