#include "Alarms/AlarmInfo.h"

#include "Alarms/ArchiveCount.h"
#include "Shared/Base/Archive.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace
{
// Moments computed the same way compare equal; the tolerance only absorbs rounding of moments
// that went through text or another computation.
constexpr double SameMomentTolerance = 0.5 / 86400.0;
constexpr size_t SnoozeOffset = 0;
constexpr size_t StoredDateSize = 8;

uint64_t ReadLittleEndian64(const uint8_t* bytes)
{
    uint64_t value = 0;
    for (size_t i = 0; i < 8; ++i)
        value |= static_cast<uint64_t>(bytes[i]) << (8 * i);
    return value;
}

void WriteLittleEndian64(uint8_t* bytes, uint64_t value)
{
    for (size_t i = 0; i < 8; ++i)
        bytes[i] = static_cast<uint8_t>(value >> (8 * i));
}
} // namespace

CAlarmInfo::CAlarmInfo() : CAlarmInfo(SystemClock().NowLocal()) {}

CAlarmInfo::CAlarmInfo(OleDate now)
{
    const double today = std::trunc(now);
    time = now - today;
    startDay = static_cast<int32_t>(today) + 1;
    endDay = startDay;
}

void CAlarmInfo::Save(CArchiveWriter& archive) const
{
    archive.WriteDouble(time);
    archive.WriteI32(startDay);
    archive.WriteBool(hasEndDate);
    archive.WriteI32(endDay);
    archive.WriteI32(type);
    archive.WriteI32(interval);
    for (const std::u16string& text : texts)
        archive.WriteString(text);
    archive.WriteI32(reminderValue);
    archive.WriteU8(weekDays);
    archive.WriteBool(enabled);
    archive.WriteU8(flag);
    archive.WriteBytes(reserved.data(), reserved.size());
    WriteElementCount(archive, dates.size());
    for (double date : dates)
        archive.WriteDouble(date);
}

bool CAlarmInfo::Load(CArchiveReader& archive)
{
    archive.ReadDouble(time);
    archive.ReadI32(startDay);
    archive.ReadBool(hasEndDate);
    archive.ReadI32(endDay);
    archive.ReadI32(type);
    archive.ReadI32(interval);
    for (std::u16string& text : texts)
        archive.ReadString(text);
    archive.ReadI32(reminderValue);
    archive.ReadU8(weekDays);
    archive.ReadBool(enabled);
    archive.ReadU8(flag);
    archive.ReadBytes(reserved.data(), reserved.size());
    uint32_t count = 0;
    if (!ReadElementCount(archive, count) || archive.Failed())
        return false;
    if (count > archive.Remaining() / StoredDateSize)
        return false;
    dates.assign(count, 0.0);
    for (double& date : dates)
        archive.ReadDouble(date);
    return !archive.Failed();
}

OleDate CAlarmInfo::MomentOnDay(OleDate date) const
{
    return std::trunc(date) + time;
}

bool CAlarmInfo::IsHandled(OleDate moment) const
{
    return std::any_of(dates.begin(), dates.end(),
                       [moment](double handled)
                       { return std::fabs(handled - moment) <= SameMomentTolerance; });
}

void CAlarmInfo::MarkHandled(OleDate moment, OleDate now)
{
    const double yesterday = std::trunc(now) - 1;
    std::erase_if(dates, [yesterday](double handled) { return !(handled >= yesterday); });
    if (!IsHandled(moment))
        dates.push_back(moment);
}

OleDate CAlarmInfo::SnoozeMoment() const
{
    return std::bit_cast<double>(ReadLittleEndian64(reserved.data() + SnoozeOffset));
}

void CAlarmInfo::SetSnoozeMoment(OleDate moment)
{
    WriteLittleEndian64(reserved.data() + SnoozeOffset, std::bit_cast<uint64_t>(moment));
}
