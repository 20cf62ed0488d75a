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

// Record IDs on disk: four u32 words, the most significant first.
inline CUInt128 ReadId(const std::string& file, size_t offset)
{
    const uint64_t high = (static_cast<uint64_t>(ReadU32(file, offset)) << 32) | ReadU32(file, offset + 4);
    const uint64_t low =
        (static_cast<uint64_t>(ReadU32(file, offset + 8)) << 32) | ReadU32(file, offset + 12);
    return CUInt128(high, low);
}

// The stream exactly as the file format defines it, one byte at a time.
inline void ReferenceCipher(const std::vector<uint8_t>& key, uint8_t* b, uint32_t n, uint64_t p)
{
    const uint32_t L = static_cast<uint32_t>(key.size());
    const uint32_t p32 = static_cast<uint32_t>(p);
    uint32_t j = (L + 4 * p32 + n) % L;
    uint8_t prev = key[j];
    ++j;
    for (uint32_t i = 0; i < n; ++i)
    {
        if (j >= L)
            j = 0;
        const uint8_t cur = key[j++];
        uint8_t t;
        if (i % 3 == 1)
            t = static_cast<uint8_t>((j % 41) + p32);
        else if (p & 1)
            t = static_cast<uint8_t>((j & 0xFF) & cur);
        else
            t = static_cast<uint8_t>((n & 0xFF) | (j & 0xFF));
        b[i] = static_cast<uint8_t>(b[i] ^ t ^ prev);
        prev = cur;
    }
}
