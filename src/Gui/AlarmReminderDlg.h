#pragma once
// The reminder window and the watch behind it. Every RefreshIntervalSeconds the alarm manager is
// asked for the due alarms (yesterday's and today's that were neither dismissed nor snoozed, and
// snoozes whose moment has come); when there are any the window shows them, a sound is played
// for each newly due alarm that names one, and RemindersDue is emitted for the tray. The first
// check runs as soon as the watch starts, so alarms that fell due while the program was closed
// are offered at once.
#include "Alarms/AlarmManager.h"

#include <QDialog>

#include <functional>
#include <vector>

class CLanguageModule;
class QComboBox;
class QPushButton;
class QTimer;
class QTreeWidget;

class CAlarmReminderDlg : public QDialog
{
    Q_OBJECT

public:
    using SoundPlayer = std::function<void(const QString& soundFile)>;
    using ItemCaption = std::function<QString(const CUInt128& itemId)>;

    // `tree` is the manager's tree, asked for each entry's alarm texts; `caption` (may be empty)
    // names an entry's item when its alarm has no description.
    CAlarmReminderDlg(CAlarmManager& manager, IAlarmTree& tree, const CLanguageModule* language,
                      ItemCaption caption = {}, QWidget* parent = nullptr);

    // Replaces the platform's sound output (a test records what would be played).
    void SetSoundPlayer(SoundPlayer player) { m_Sound = std::move(player); }

    void StartWatching();
    void StopWatching();
    // One check of the manager, as the watch's timer runs it.
    void CheckNow();

    const std::vector<SAlarmQuickInfo>& Entries() const { return m_Entries; }
    QTreeWidget* DueList() const { return m_List; }
    QComboBox* SnoozeChoice() const { return m_Snooze; }
    QPushButton* SnoozeButton() const { return m_SnoozeButton; }
    QPushButton* DismissButton() const { return m_Dismiss; }
    QPushButton* DismissAllButton() const { return m_DismissAll; }
    QPushButton* OpenButton() const { return m_Open; }

    void DismissSelected();
    void DismissAll();
    void SnoozeSelected();

    // The platform's sound output: the file played by the desktop's sound tool, or the bell.
    static void PlaySoundFile(const QString& soundFile);

signals:
    void OpenItem(const CUInt128& itemId);
    // `message` says how many reminders are due, for a tray notification.
    void RemindersDue(const QString& message);
    // Dismissing or snoozing changed the stored fields of alarms; the document is to be saved.
    void AlarmsChanged();

private:
    void SetEntries(std::vector<SAlarmQuickInfo> entries);
    void RemoveRow(int row);
    void UpdateButtons();

    CAlarmManager& m_Manager;
    IAlarmTree& m_Tree;
    const CLanguageModule* m_Language;
    ItemCaption m_Caption;
    SoundPlayer m_Sound = &CAlarmReminderDlg::PlaySoundFile;
    std::vector<SAlarmQuickInfo> m_Entries;
    QTimer* m_Timer;
    QTreeWidget* m_List;
    QComboBox* m_Snooze;
    QPushButton* m_SnoozeButton;
    QPushButton* m_Dismiss;
    QPushButton* m_DismissAll;
    QPushButton* m_Open;
};
