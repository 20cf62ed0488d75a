// Opens arbitrary bytes as a field database on an in-memory file system, walks every record and
// field, loads the first root folder as an item tree (with every note's text), then changes a
// few fields and reopens. The first input byte chooses the options.
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/ItemRecords.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/OleDate.h"
#include "Shared/DataFile/DBFile.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace
{
class CFuzzClock : public IClock
{
public:
    OleDate NowLocal() const override { return 46000.0; }
    uint32_t TickCountMs() const override { return m_Tick += 3; }

private:
    mutable uint32_t m_Tick = 0;
};

void ReadEverything(CDBFile& db)
{
    std::vector<uint8_t> data;
    DBRecordInfo info{};
    SDBRecordStatus status;
    const uint32_t count = db.GetRecordsCount();
    for (uint32_t i = 0; i < count; ++i)
    {
        const CUInt128 id = db.GetRecordID(i);
        db.GetRecordInfo(id, info);
        db.GetRecordStatus(id, status);
        const uint32_t fields = db.GetFieldsCount(id);
        for (uint32_t f = 0; f < fields; ++f)
            db.GetFieldData(id, db.GetFieldType(id, f), data);
    }
}

void OpenTexts(CItem& item)
{
    if (auto* note = dynamic_cast<CDBNote*>(&item))
    {
        note->GetRichText();
        return;
    }
    if (auto* folder = dynamic_cast<CFolderBase*>(&item))
        for (size_t i = 0; i < folder->GetChildCount(); ++i)
            OpenTexts(*folder->GetChild(i));
}

void LoadTree(CDBFile& db, CItemRecords& records, bool change)
{
    if (db.GetRecordsCountByType(ItemRecordFormat::RootFolderRecord) == 0)
        return;
    CDBFolder root(&records);
    if (!records.LoadFolder(root, db.GetRecordIDByTypedIndex(ItemRecordFormat::RootFolderRecord, 0)))
        return;
    OpenTexts(root);
    records.CheckPassword(u"password");
    if (!change)
        return;
    root.SetCaption(u"changed by the fuzzer");
    records.SaveItem(root, 0xFF);
    if (root.GetChildCount() > 0)
    {
        CItem& child = *root.GetChild(0);
        if (auto* note = dynamic_cast<CDBNote*>(&child); note && note->GetRichText())
            note->GetRichText()->BuildFromPlainText(u"new text\r\nsecond line");
        records.SaveItem(child, 0xFF);
    }
    records.SetPassword(u"", u"pw");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* input, size_t size)
{
    if (size < 1)
        return 0;
    const uint8_t options = input[0];
    CMemFileSystem fs;
    const std::u16string path = u"/fuzz.ddb";
    fs.Bytes(path).assign(reinterpret_cast<const char*>(input + 1), size - 1);
    CFuzzClock clock;
    CDBFile db(fs, clock);
    CItemRecords records(db);
    if (!db.Open(path))
        return 0;
    ReadEverything(db);
    LoadTree(db, records, (options & 1) != 0);
    if (options & 2)
    {
        const CUInt128 id = db.CreateRecord(3);
        db.SetFieldData(id, 1, "x\0", 2, 50);
        if (db.GetRecordsCount() > 1)
            db.DeleteRecord(db.GetRecordID(0));
    }
    db.Close((options & 4) != 0, 10);
    if (db.Open(path))
    {
        ReadEverything(db);
        LoadTree(db, records, false);
    }
    return 0;
}
