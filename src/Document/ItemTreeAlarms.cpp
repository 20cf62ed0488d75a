#include "Document/ItemTreeAlarms.h"

#include "Alarms/AlarmOccurrence.h"
#include "Document/FolderBase.h"

#include <exception>

namespace
{
void AppendItemAlarms(const CItem& item, OleDate date, OleDate upTo, std::vector<SAlarmQuickInfo>& entries)
{
    if (const CAlarmsArray* alarms = item.FindAlarms())
        AppendDueAlarms(*alarms, item.GetId(), date, upTo, entries);
}
} // namespace

void CollectDueAlarms(const CFolderBase& folder, OleDate date, OleDate upTo,
                      std::vector<SAlarmQuickInfo>& entries)
{
    try
    {
        AppendItemAlarms(folder, date, upTo, entries);
        for (size_t i = 0; i < folder.GetChildCount(); ++i)
        {
            const CItem& child = *folder.GetChild(i);
            if (const auto* subFolder = dynamic_cast<const CFolderBase*>(&child))
                CollectDueAlarms(*subFolder, date, upTo, entries);
            else
                AppendItemAlarms(child, date, upTo, entries);
        }
    }
    catch (const std::exception&)
    {
        // Ends this folder's walk; what was collected so far stays in the list.
    }
}

CItem* FindItemById(CFolderBase& root, const CUInt128& id)
{
    if (root.GetId() == id)
        return &root;
    for (size_t i = 0; i < root.GetChildCount(); ++i)
    {
        CItem* child = root.GetChild(i);
        if (auto* folder = dynamic_cast<CFolderBase*>(child))
        {
            if (CItem* found = FindItemById(*folder, id))
                return found;
        }
        else if (child->GetId() == id)
            return child;
    }
    return nullptr;
}

void CItemTreeAlarmSource::CollectDueAlarms(OleDate date, OleDate upTo, std::vector<SAlarmQuickInfo>& entries)
{
    if (m_Root)
        ::CollectDueAlarms(*m_Root, date, upTo, entries);
}

CAlarmInfo* CItemTreeAlarmSource::FindAlarm(const CUInt128& itemId, size_t alarmIndex)
{
    CItem* item = m_Root ? FindItemById(*m_Root, itemId) : nullptr;
    CAlarmsArray* alarms = item ? item->GetAlarms(false) : nullptr;
    return alarms && alarmIndex < alarms->GetSize() ? &(*alarms)[alarmIndex] : nullptr;
}

void CItemTreeAlarmSource::OnAlarmChanged(const CUInt128& itemId)
{
    if (CItem* item = m_Root ? FindItemById(*m_Root, itemId) : nullptr)
        item->NotifyChange(EItemChange::Alarms);
}
