#pragma once
// Helpers for the data file tests: a log that records into memory, a clock whose tick count
// advances by a fixed step on every query, and byte access to in-memory files.
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/OleDate.h"
#include "Shared/Base/TextConv.h"
#include "Shared/DataFile/DataFile.h"
#include "Shared/Log/Log.h"

#include <cstring>
#include <string>
#include <vector>

class CStepClock : public IClock
{
public:
    explicit CStepClock(uint32_t step = 0) : m_Step(step) {}
    OleDate NowLocal() const override { return 46000.5; }
    uint32_t TickCountMs() const override { return m_Tick += m_Step; }
    void SetStep(uint32_t step) { m_Step = step; }

private:
    uint32_t m_Step;
    mutable uint32_t m_Tick = 1000;
};

class CLogCapture
{
public:
    CLogCapture() : m_Log(u"/log/Quillarium.log", &m_Fs, &m_Clock)
    {
        m_Previous = CAppConnector::Get();
        m_Connector.SetLog(&m_Log);
        CAppConnector::Install(&m_Connector);
        Clear();
    }
    ~CLogCapture() { CAppConnector::Install(m_Previous); }
    CLogCapture(const CLogCapture&) = delete;
    CLogCapture& operator=(const CLogCapture&) = delete;

    // Lines written since the last Clear().
    std::u16string Recent() { return All().substr(m_Mark); }
    bool Has(std::u16string_view line)
    {
        return Recent().find(std::u16string(line) + u"\r\n") != std::u16string::npos;
    }
    bool HasText(std::u16string_view text) { return Recent().find(text) != std::u16string::npos; }
    void Clear() { m_Mark = All().size(); }

private:
    std::u16string All() { return Utf16LeBytesToText(m_Fs.Bytes(u"/log/Quillarium.log")); }

    CMemFileSystem m_Fs;
    CStepClock m_Clock;
    CLog m_Log;
    CAppConnector m_Connector;
    CAppConnector* m_Previous = nullptr;
    size_t m_Mark = 0;
};

inline std::vector<uint8_t> Bytes(std::string_view text)
{
    return std::vector<uint8_t>(text.begin(), text.end());
}

inline uint32_t ReadU32(const std::string& file, size_t offset)
{
    uint32_t v = 0;
    for (int i = 3; i >= 0; --i)
        v = (v << 8) | static_cast<uint8_t>(file[offset + i]);
    return v;
}

inline void WriteU32(std::string& file, size_t offset, uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        file[offset + i] = static_cast<char>(v >> (8 * i));
}

inline uint64_t ReadU64(const std::string& file, size_t offset)
{
    return ReadU32(file, offset) | (static_cast<uint64_t>(ReadU32(file, offset + 4)) << 32);
}
