#pragma once
// The recurrence rule: whether an alarm falls on a given day, and the due entries of one item.
#include "Alarms/AlarmQuickInfo.h"
#include "Shared/Base/OleDate.h"

#include <vector>

class CAlarmInfo;
class CAlarmsArray;

// Whether `alarm` falls on the day of `date` at a moment not later than `upTo`.
bool Occurs(const CAlarmInfo& alarm, OleDate date, OleDate upTo);

// Appends, in array order, an entry for every alarm of the item that is due on the day of `date`
// up to `upTo`: an occurrence of its rule that the user has not handled yet, or a snoozed
// reminder whose moment falls on that day and has come.
void AppendDueAlarms(const CAlarmsArray& alarms, const CUInt128& itemId, OleDate date, OleDate upTo,
                     std::vector<SAlarmQuickInfo>& entries);
