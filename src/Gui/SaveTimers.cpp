#include "Gui/SaveTimers.h"

#include "Prefs/Preferences.h"

namespace
{
constexpr qint64 MsPerMinute = 60 * 1000;
// A timer's interval is an int of milliseconds (under 25 days) while a backup interval may be a
// year: longer waits tick at this interval and count down.
constexpr qint64 LongestTickMs = 60 * MsPerMinute;

void StartCountdown(QTimer& timer, QDeadlineTimer& due, int minutes)
{
    const qint64 ms = minutes * MsPerMinute;
    due.setRemainingTime(ms);
    timer.start(static_cast<int>(std::min(ms, LongestTickMs)));
}
} // namespace

CSaveTimers::CSaveTimers(const CPreferences& preferences, std::function<bool()> save,
                         std::function<bool()> backup)
    : m_Preferences(preferences), m_Save(std::move(save)), m_BackupNow(std::move(backup))
{
    connect(&m_AutoSave, &QTimer::timeout, this,
            [this]
            {
                if (!m_AutoSaveDue.hasExpired())
                    return;
                m_Save();
                Restart();
            });
    connect(&m_Backup, &QTimer::timeout, this,
            [this]
            {
                if (!m_BackupDue.hasExpired())
                    return;
                m_BackupNow();
                Restart();
            });
    Restart();
}

void CSaveTimers::Restart()
{
    if (m_Preferences.Other().autoSaveData && m_Preferences.Other().autoSaveMinutes > 0)
        StartCountdown(m_AutoSave, m_AutoSaveDue, m_Preferences.Other().autoSaveMinutes);
    else
        m_AutoSave.stop();
    if (m_Preferences.Backup().enableAutobackup && m_Preferences.Backup().backupIntervalMinutes > 0)
        StartCountdown(m_Backup, m_BackupDue, m_Preferences.Backup().backupIntervalMinutes);
    else
        m_Backup.stop();
}
