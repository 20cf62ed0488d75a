// Loads arbitrary bytes as a stored alarm array, stores what loaded and loads it again; the second
// load must give the same alarms. Every loaded alarm is also run through the recurrence rules.
#include "Alarms/AlarmOccurrence.h"
#include "Alarms/AlarmsArray.h"
#include "Shared/Base/Archive.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CArchiveReader reader(data, size);
    CAlarmsArray alarms;
    if (alarms.Load(reader) != 0)
        return 0;
    std::vector<SAlarmQuickInfo> entries;
    for (const CAlarmInfo& alarm : alarms)
    {
        const double day = static_cast<double>(alarm.startDay) + 3;
        Occurs(alarm, day, day + 1);
    }
    AppendDueAlarms(alarms, 1, 45000.5, 45000.5, entries);

    CArchiveWriter writer;
    if (!alarms.Save(writer))
        std::abort();
    CArchiveReader again(writer.Bytes());
    CAlarmsArray reloaded;
    if (reloaded.Load(again) != 0 || again.Remaining() != 0)
        std::abort();
    CArchiveWriter second;
    reloaded.Save(second);
    if (second.Bytes() != writer.Bytes())
        std::abort();
    return 0;
}
