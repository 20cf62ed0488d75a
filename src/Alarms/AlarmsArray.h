#pragma once
// The alarms of one item, kept by value in the order the user created them.
#include "Alarms/AlarmInfo.h"

#include <cstddef>
#include <vector>

class CArchiveWriter;
class CArchiveReader;

class CAlarmsArray
{
public:
    // Stored form: the element count (framework count form), then each alarm.
    // Saving fails only when memory runs out. Loading returns 0 on success and 2 when the data
    // is short or names more alarms than it can hold; the array then keeps its previous alarms.
    // Both log "Error: General exception caught on serializing alarm array information." once on
    // failure.
    bool Save(CArchiveWriter& archive) const;
    int Load(CArchiveReader& archive);

    size_t GetSize() const { return m_Alarms.size(); }
    bool IsEmpty() const { return m_Alarms.empty(); }
    CAlarmInfo& operator[](size_t index) { return m_Alarms[index]; }
    const CAlarmInfo& operator[](size_t index) const { return m_Alarms[index]; }
    void Add(CAlarmInfo alarm) { m_Alarms.push_back(std::move(alarm)); }
    void RemoveAt(size_t index);
    void RemoveAll() { m_Alarms.clear(); }

    auto begin() const { return m_Alarms.begin(); }
    auto end() const { return m_Alarms.end(); }

    bool operator==(const CAlarmsArray&) const = default;

private:
    std::vector<CAlarmInfo> m_Alarms;
};
