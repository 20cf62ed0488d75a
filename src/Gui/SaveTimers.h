#pragma once
// The timers that keep the data file safe while the program runs: autosave every
// "OtherPrefsAutoSaveMinutes" when "OtherPrefsAutoSaveData" is set, and an automatic backup every
// "BackupPrefsBackupInterval" minutes when "BackupPrefsEnableAutobackup" is set. Both read the
// preferences again after each run, so a changed setting takes effect at the next tick.
#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>

#include <functional>

class CPreferences;

class CSaveTimers : public QObject
{
    Q_OBJECT

public:
    CSaveTimers(const CPreferences& preferences, std::function<bool()> save, std::function<bool()> backup);

    // Starts both timers over with the current preference values.
    void Restart();
    // Milliseconds until the next autosave or backup; -1 when it is off.
    qint64 AutoSaveDueMs() const { return m_AutoSave.isActive() ? m_AutoSaveDue.remainingTime() : -1; }
    qint64 BackupDueMs() const { return m_Backup.isActive() ? m_BackupDue.remainingTime() : -1; }

private:
    const CPreferences& m_Preferences;
    std::function<bool()> m_Save;
    std::function<bool()> m_BackupNow;
    QTimer m_AutoSave;
    QTimer m_Backup;
    QDeadlineTimer m_AutoSaveDue;
    QDeadlineTimer m_BackupDue;
};
