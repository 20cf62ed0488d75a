#include "Alarms/AlarmManager.h"

#include "Alarms/AlarmCalendar.h"
#include "Alarms/AlarmInfo.h"
#include "Alarms/AlarmTree.h"
#include "Shared/Log/Log.h"

#include <cmath>

const std::array<SSnoozeChoice, 9> CAlarmManager::SnoozeChoices = {{
    {u"2 %s", u"ALARMREMINDDLG_SNOOZE_BTN_MINUTES", 2},
    {u"5 %s", u"ALARMREMINDDLG_SNOOZE_BTN_MINUTES", 5},
    {u"10 %s", u"ALARMREMINDDLG_SNOOZE_BTN_MINUTES", 10},
    {u"15 %s", u"ALARMREMINDDLG_SNOOZE_BTN_MINUTES", 15},
    {u"30 %s", u"ALARMREMINDDLG_SNOOZE_BTN_MINUTES", 30},
    {u"1 %s", u"ALARMREMINDDLG_SNOOZE_BTN_HOUR", 60},
    {u"2 %s", u"ALARMREMINDDLG_SNOOZE_BTN_HOURS", 120},
    {u"3 %s", u"ALARMREMINDDLG_SNOOZE_BTN_HOURS", 180},
    {u"4 %s", u"ALARMREMINDDLG_SNOOZE_BTN_HOURS", 240},
}};

CAlarmManager::CAlarmManager(const IClock& clock, IAlarmTree* tree) : m_Clock(clock), m_Tree(tree) {}

void CAlarmManager::SetTree(IAlarmTree* tree)
{
    m_Tree = tree;
    m_Today.clear();
    m_PreviousDay.clear();
    MarkForRebuild();
}

bool CAlarmManager::RebuildIfDue(OleDate now)
{
    int32_t today = 0;
    if (!AlarmDayNumber(now, today))
        return false;
    if (!m_NeedsRebuild && m_LastRebuildDay == today)
        return false;
    if (m_Tree == nullptr || !m_Tree->HasRoot())
        return false;
    m_Today.clear();
    m_PreviousDay.clear();
    m_Tree->CollectDueAlarms(now, now, m_Today);
    m_Tree->CollectDueAlarms(now - 1, now, m_PreviousDay);
    m_LastRebuildDay = today;
    m_NeedsRebuild = false;
    return true;
}

bool CAlarmManager::Refresh(bool always, std::vector<SAlarmQuickInfo>& entries)
{
    const bool changed = RebuildIfDue(m_Clock.NowLocal());
    if (!always && !changed)
        return false;
    entries = m_PreviousDay;
    entries.insert(entries.end(), m_Today.begin(), m_Today.end());
    return true;
}

bool CAlarmManager::OnTimer(std::vector<SAlarmQuickInfo>& entries)
{
    MarkForRebuild();
    std::vector<SAlarmQuickInfo> due;
    if (!Refresh(false, due) || due.empty())
        return false;
    entries = std::move(due);
    return true;
}

CAlarmInfo* CAlarmManager::FindEntryAlarm(const SAlarmQuickInfo& entry)
{
    CAlarmInfo* alarm = m_Tree != nullptr ? m_Tree->FindAlarm(entry.itemId, entry.alarmIndex) : nullptr;
    if (alarm == nullptr)
        LogMessage(u"Error: Cannot find alarm %d of item %s", static_cast<int>(entry.alarmIndex),
                   entry.itemId.ToHex());
    return alarm;
}

// A snoozed reminder that comes back is the snooze itself, not an occurrence of the rule: handling
// it only clears the snooze.
bool CAlarmManager::Dismiss(const SAlarmQuickInfo& entry)
{
    CAlarmInfo* alarm = FindEntryAlarm(entry);
    if (alarm == nullptr)
        return false;
    if (alarm->SnoozeMoment() == entry.moment)
        alarm->ClearSnooze();
    else
        alarm->MarkHandled(entry.moment, m_Clock.NowLocal());
    m_Tree->OnAlarmChanged(entry.itemId);
    MarkForRebuild();
    return true;
}

bool CAlarmManager::Snooze(const SAlarmQuickInfo& entry, int minutes)
{
    CAlarmInfo* alarm = FindEntryAlarm(entry);
    if (alarm == nullptr)
        return false;
    const OleDate now = m_Clock.NowLocal();
    if (alarm->SnoozeMoment() != entry.moment)
        alarm->MarkHandled(entry.moment, now);
    alarm->SetSnoozeMoment(now + minutes / (24.0 * 60.0));
    m_Tree->OnAlarmChanged(entry.itemId);
    MarkForRebuild();
    return true;
}
