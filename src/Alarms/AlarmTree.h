#pragma once
// How the alarm manager reaches the document's item tree without depending on the item classes:
// the document side implements this over its root folder.
#include "Alarms/AlarmQuickInfo.h"
#include "Shared/Base/OleDate.h"

#include <cstddef>
#include <vector>

class CAlarmInfo;

class IAlarmTree
{
public:
    virtual ~IAlarmTree() = default;

    // Whether a document with a root folder is open.
    virtual bool HasRoot() const = 0;
    // Walks the whole tree depth first and appends the alarms due on the day of `date` up to `upTo`.
    virtual void CollectDueAlarms(OleDate date, OleDate upTo, std::vector<SAlarmQuickInfo>& entries) = 0;
    // The alarm at `alarmIndex` of the item with `itemId`, or null when there is none.
    virtual CAlarmInfo* FindAlarm(const CUInt128& itemId, size_t alarmIndex) = 0;
    // Called after the manager changed an alarm of the item, so that the change is stored.
    virtual void OnAlarmChanged(const CUInt128& itemId) = 0;
};
