#pragma once
// Keeps the list of due alarms for the reminder window.
//
// Schedule: the application calls OnTimer every RefreshIntervalSeconds and MarkForRebuild whenever
// the item tree changes (items added, removed or moved, alarms edited, a document opened or
// closed). OnTimer rebuilds the lists each time, so an alarm later today is offered at most
// RefreshIntervalSeconds after its moment. The reminder window opens whenever OnTimer hands back
// entries. Dismissing an entry stores the occurrence as handled in the alarm; snoozing stores it
// as handled too and sets the alarm's snooze moment (now + the chosen minutes), at which the
// entry comes back, also after a restart, since both live in the alarm's stored fields.
#include "Alarms/AlarmQuickInfo.h"
#include "Shared/Base/OleDate.h"

#include <array>
#include <cstdint>
#include <vector>

class CAlarmInfo;
class IAlarmTree;

struct SSnoozeChoice
{
    const char16_t* text;    // "%s" stands for the unit's language text
    const char16_t* unitKey; // language key of the unit
    int minutes;
};

class CAlarmManager
{
public:
    static constexpr int RefreshIntervalSeconds = 30;
    static const std::array<SSnoozeChoice, 9> SnoozeChoices;

    CAlarmManager(const IClock& clock, IAlarmTree* tree);

    // A null tree means no document is open. Changing it marks the lists for rebuild.
    void SetTree(IAlarmTree* tree);
    void MarkForRebuild() { m_NeedsRebuild = true; }
    bool NeedsRebuild() const { return m_NeedsRebuild; }
    int32_t LastRebuildDay() const { return m_LastRebuildDay; }

    // Rebuilds the lists when marked or when the day has changed since the last rebuild. When the
    // lists were rebuilt, or `always` is set, `entries` receives the previous day's entries
    // followed by today's and the result is true; otherwise `entries` is left alone.
    bool Refresh(bool always, std::vector<SAlarmQuickInfo>& entries);
    // The periodic refresh: rebuilds the lists and hands back the entries when there are any.
    bool OnTimer(std::vector<SAlarmQuickInfo>& entries);

    bool Dismiss(const SAlarmQuickInfo& entry);
    bool Snooze(const SAlarmQuickInfo& entry, int minutes);

    const std::vector<SAlarmQuickInfo>& TodayAlarms() const { return m_Today; }
    const std::vector<SAlarmQuickInfo>& PreviousDayAlarms() const { return m_PreviousDay; }

private:
    bool RebuildIfDue(OleDate now);
    CAlarmInfo* FindEntryAlarm(const SAlarmQuickInfo& entry);

    const IClock& m_Clock;
    IAlarmTree* m_Tree;
    bool m_NeedsRebuild = true;
    int32_t m_LastRebuildDay = 0;
    std::vector<SAlarmQuickInfo> m_Today;
    std::vector<SAlarmQuickInfo> m_PreviousDay;
};
