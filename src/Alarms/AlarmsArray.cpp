#include "Alarms/AlarmsArray.h"

#include "Alarms/ArchiveCount.h"
#include "Shared/Base/Archive.h"
#include "Shared/Log/Log.h"

#include <exception>

namespace
{
// The fewest bytes one stored alarm can take: the fixed fields, three strings in the shortest
// (single length byte) form, the reserved block and an empty dates count. A count is never
// believed beyond what the remaining data could hold.
constexpr size_t MinStoredAlarmSize =
    8 + 4 + 1 + 4 + 4 + 4 + 3 * 1 + 4 + 1 + 1 + 1 + CAlarmInfo::ReservedSize + 2;

void LogSerializeFailure()
{
    LogMessage(u"Error: General exception caught on serializing alarm array information.");
}

bool LoadAlarms(CArchiveReader& archive, std::vector<CAlarmInfo>& alarms)
{
    uint32_t count = 0;
    if (!ReadElementCount(archive, count) || count > archive.Remaining() / MinStoredAlarmSize)
        return false;
    alarms.reserve(count);
    for (uint32_t i = 0; i < count; ++i)
    {
        CAlarmInfo alarm(0.0);
        if (!alarm.Load(archive))
            return false;
        alarms.push_back(std::move(alarm));
    }
    return true;
}
} // namespace

bool CAlarmsArray::Save(CArchiveWriter& archive) const
{
    try
    {
        WriteElementCount(archive, m_Alarms.size());
        for (const CAlarmInfo& alarm : m_Alarms)
            alarm.Save(archive);
        return true;
    }
    catch (const std::exception&)
    {
        LogSerializeFailure();
        return false;
    }
}

int CAlarmsArray::Load(CArchiveReader& archive)
{
    try
    {
        std::vector<CAlarmInfo> alarms;
        if (LoadAlarms(archive, alarms))
        {
            m_Alarms = std::move(alarms);
            return 0;
        }
    }
    catch (const std::exception&)
    {
        // Falls through to the failure below: memory ran out while the alarms were read.
    }
    LogSerializeFailure();
    return 2;
}

void CAlarmsArray::RemoveAt(size_t index)
{
    if (index < m_Alarms.size())
        m_Alarms.erase(m_Alarms.begin() + static_cast<std::ptrdiff_t>(index));
}
