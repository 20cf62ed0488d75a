#pragma once
// A log kept in memory for the item record tests, and a field database on an in-memory file
// system with the item store over it.
#include "Document/ItemRecords.h"
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/OleDate.h"
#include "Shared/Base/TextConv.h"
#include "Shared/DataFile/DBFile.h"
#include "Shared/Log/Log.h"

#include <string>

class CFixedClock : public IClock
{
public:
    OleDate NowLocal() const override { return 46000.5; }
    uint32_t TickCountMs() const override { return m_Tick += 1; }

private:
    mutable uint32_t m_Tick = 1000;
};

class CRecordsLog
{
public:
    CRecordsLog() : m_Log(u"/log/Quillarium.log", &m_Fs, &m_Clock)
    {
        m_Previous = CAppConnector::Get();
        m_Connector.SetLog(&m_Log);
        CAppConnector::Install(&m_Connector);
        Clear();
    }
    ~CRecordsLog() { CAppConnector::Install(m_Previous); }
    CRecordsLog(const CRecordsLog&) = delete;
    CRecordsLog& operator=(const CRecordsLog&) = delete;

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
    CFixedClock m_Clock;
    CLog m_Log;
    CAppConnector m_Connector;
    CAppConnector* m_Previous = nullptr;
    size_t m_Mark = 0;
};

// A document database on an in-memory disk.
struct SRecordsFixture
{
    static constexpr char16_t Path[] = u"/docs/test.ddb";

    SRecordsFixture() { db.Create(Path, u"Quillarium Organizer [https://quillarium.org]", 0x74726565, 7000); }
    void Reopen()
    {
        db.Close(false, 0);
        db.Open(Path);
    }
    std::vector<uint8_t> Field(const CUInt128& id, uint16_t field)
    {
        std::vector<uint8_t> data;
        if (db.FindRecord(id) && db.FindRecord(id)->FindField(field))
            db.GetFieldData(id, field, data);
        return data;
    }
    bool Has(const CUInt128& id, uint16_t field)
    {
        return db.FindRecord(id) && db.FindRecord(id)->FindField(field);
    }

    CRecordsLog log;
    CMemFileSystem fs;
    CFixedClock clock;
    CDBFile db{fs, clock};
    CItemRecords records{db};
};
