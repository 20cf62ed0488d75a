#pragma once
// One alarm of an item: a recurrence rule with a time of day, its texts and the bookkeeping of
// reminders that were snoozed or dismissed.
//
// Meanings chosen for the stored fields whose use is ours to decide (the byte format stays the
// same whatever they hold):
// - texts[0] is the description shown in the reminder list, texts[1] the title, texts[2] the
//   sound file played with the reminder (empty: no sound).
// - reminderValue is handed unchanged to the reminder window with every due entry.
// - flag is kept and stored as it is.
// - dates lists the occurrence moments (day + time of day) that the user has already handled,
//   by dismissing or snoozing them, so that they are not offered again. Only the moments still
//   inside the due window (yesterday and today) are kept; older ones are dropped when a new
//   moment is recorded.
// - bytes 0-7 of the reserved block hold the moment (little-endian double) at which a snoozed
//   reminder comes back; all zero means no snooze is pending. The other 92 bytes are kept as
//   they were loaded.
#include "Shared/Base/OleDate.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

class CArchiveWriter;
class CArchiveReader;

enum class EAlarmType : int32_t
{
    Once = 0,
    Daily = 1,
    Weekly = 2,
    MonthlyByDate = 3,
    MonthlyByWeekDay = 4,
    Yearly = 5
};

enum class EAlarmText : size_t
{
    Description = 0,
    Title = 1,
    Sound = 2
};

class CAlarmInfo
{
public:
    static constexpr size_t ReservedSize = 100;
    static constexpr int32_t NoEndDay = 99999999;

    // Defaults relative to the system clock's present moment.
    CAlarmInfo();
    // Defaults relative to `now`: the time of day of `now`, starting (and ending) tomorrow.
    explicit CAlarmInfo(OleDate now);

    void Save(CArchiveWriter& archive) const;
    // Reads the fields in stored order; false when the data ends early or holds a list longer
    // than the remaining data. The alarm is then partly filled and must be discarded.
    bool Load(CArchiveReader& archive);

    const std::u16string& Text(EAlarmText which) const { return texts[static_cast<size_t>(which)]; }
    void SetText(EAlarmText which, std::u16string text)
    {
        texts[static_cast<size_t>(which)] = std::move(text);
    }

    // The moment of this alarm on the day of `date`.
    OleDate MomentOnDay(OleDate date) const;

    bool IsHandled(OleDate moment) const;
    // Records the occurrence `moment` as handled and forgets handled moments before yesterday.
    void MarkHandled(OleDate moment, OleDate now);

    // The pending snooze moment, or 0 when none.
    OleDate SnoozeMoment() const;
    void SetSnoozeMoment(OleDate moment);
    void ClearSnooze() { SetSnoozeMoment(0); }

    bool operator==(const CAlarmInfo&) const = default;

    bool enabled = true;
    double time = 0;
    int32_t startDay = 0;
    bool hasEndDate = false;
    int32_t endDay = 0;
    int32_t type = 0;
    int32_t interval = 1;
    std::array<std::u16string, 3> texts;
    int32_t reminderValue = 1;
    uint8_t weekDays = 0; // bit (w - 1) for week day w, 1 = Sunday ... 7 = Saturday
    std::vector<double> dates;
    uint8_t flag = 1;
    std::array<uint8_t, ReservedSize> reserved{};
};
