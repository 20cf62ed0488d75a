#pragma once
// The main window's commands that open the dialogs: global search (with going to a result and
// filtering the tree), password generator, preferences, item alarms and properties, data file
// properties; and the alarm watch with its reminder window, which follows the document the
// window shows. The commands are named actions of the window, so menus, toolbar and tests reach
// them like every other command.
#include "Alarms/AlarmManager.h"
#include "Document/ItemTreeAlarms.h"

#include <QObject>

#include <string>
#include <vector>

class CAlarmReminderDlg;
class CItem;
class CMainWindow;

class CDialogCommands : public QObject
{
    Q_OBJECT

public:
    // `window` outlives the commands; `applicationFolder` ends with '/'.
    CDialogCommands(CMainWindow& window, const std::u16string& applicationFolder, const IClock& clock);
    ~CDialogCommands() override;

    CAlarmManager& AlarmManager() { return m_Alarms; }
    CAlarmReminderDlg* ReminderWindow() const { return m_Reminder; }

    void RunGlobalSearch();
    void RunPasswordGenerator();
    void RunPreferences();
    void RunItemAlarms();
    void RunItemProperties();
    void RunFileProperties();

    // Shows only the given items (and the folders above them) in the tree, or everything again.
    void FilterTree(const std::vector<CItem*>& items);
    void ClearTreeFilter();
    bool IsTreeFiltered() const { return m_Filtered; }

private:
    void OnDocumentShown();
    void AddActions();

    CMainWindow& m_Window;
    std::u16string m_ApplicationFolder;
    const IClock& m_Clock;
    CItemTreeAlarmSource m_AlarmSource;
    CAlarmManager m_Alarms;
    CAlarmReminderDlg* m_Reminder; // a child of the window
    bool m_Filtered = false;
};
