#pragma once
// One due alarm found by the walk over the item tree.
#include "Shared/Base/OleDate.h"
#include "Shared/Base/UInt128.h"

#include <cstddef>
#include <cstdint>

struct SAlarmQuickInfo
{
    OleDate moment = 0;        // the day plus the alarm's time of day (or the snooze moment)
    int32_t reminderValue = 0; // copied from the alarm
    CUInt128 itemId;           // the item that owns the alarm
    size_t alarmIndex = 0;     // position of the alarm in the item's array, for dismiss and snooze

    bool operator==(const SAlarmQuickInfo&) const = default;
};
