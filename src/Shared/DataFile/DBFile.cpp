#include "Shared/DataFile/DBFile.h"

#include "Shared/DataFile/DBFileRecordsCache.h"
#include "Shared/Log/Log.h"

#include <algorithm>

namespace
{
constexpr uint32_t ReplaceTimeLimitMs = 200;
constexpr char16_t UnknownRecord[] =
    u"Error: Cannot get database record cache references, as record ID is invalid";

// Zero-size data still needs a valid pointer for the data file's write.
const void* DataOrEmpty(const void* data)
{
    static const uint8_t empty = 0;
    return data ? data : &empty;
}
} // namespace

CDBFile::CDBFile(IFileSystem& fs, const IClock& clock)
    : m_DataFile(fs, clock), m_Cache(std::make_unique<CRecordsCache>())
{
}

CDBFile::~CDBFile() = default;

bool CDBFile::Create(const std::u16string& path, std::u16string_view creatorSignature, uint32_t fileType,
                     uint32_t fileVersion, std::span<const uint8_t> key)
{
    if (m_DataFile.IsOpen())
        m_DataFile.Close(false, ReplaceTimeLimitMs);
    m_Cache->Clear();
    if (!m_DataFile.Create(path, creatorSignature, fileType, fileVersion, key))
        return false;
    return BuildCache();
}

bool CDBFile::Open(const std::u16string& path, std::span<const uint8_t> key)
{
    if (m_DataFile.IsOpen())
        m_DataFile.Close(false, ReplaceTimeLimitMs);
    m_Cache->Clear();
    if (!m_DataFile.Open(path, key))
        return false;
    return BuildCache();
}

void CDBFile::Close(bool defragment, uint32_t timeLimitMs)
{
    m_DataFile.Close(defragment, timeLimitMs);
    m_Cache->Clear();
}

bool CDBFile::BuildCache()
{
    m_Cache->Clear();
    const uint32_t count = m_DataFile.GetTypedRecordsCount(HeaderRecordType);
    m_Cache->Reserve(count);
    std::vector<CUInt128> headerIds;
    headerIds.reserve(count);
    for (uint32_t index = 0; index < count; ++index)
        headerIds.push_back(m_DataFile.GetRecordIDByTypedIndex(HeaderRecordType, index));
    for (const CUInt128& id : headerIds)
    {
        if (id.IsZero())
        {
            LogMessage(u"Error: Cannot get record ID on building DB records cache");
            continue;
        }
        AddHeaderToCache(id);
    }
    return true;
}

bool CDBFile::AddHeaderToCache(const CUInt128& headerId)
{
    std::vector<uint8_t> data;
    if (!m_DataFile.GetRecordData(headerId, data) || data.size() < SDBRecordHeader::FixedSize)
    {
        LogMessage(u"Error: Cannot get DB record header data.");
        return false;
    }
    SDBRecordHeader header;
    uint64_t expected = 0;
    if (SDBRecordHeader::Decode(data, header, expected) != SDBRecordHeader::EDecode::Ok)
    {
        LogMessage(u"Error: DB record header seems to be corrupted. Expected size - %d, actual size - %d",
                   static_cast<int64_t>(expected), static_cast<int64_t>(data.size()));
        return false;
    }
    SDBFileRecordCacheEntry entry;
    entry.id = headerId;
    entry.recordType = header.recordType;
    entry.info = header.info;
    for (const SFieldCacheEntry& field : header.fields)
        if (m_DataFile.GetRecordType(field.dataId) == FieldRecordType)
            entry.fields.push_back(field);
    return m_Cache->Add(std::move(entry)) != nullptr;
}

SDBFileRecordCacheEntry* CDBFile::LookUp(const CUInt128& id, const char16_t* failure)
{
    SDBFileRecordCacheEntry* entry = m_Cache->Find(id);
    if (!entry)
        LogMessage(failure);
    return entry;
}

const SDBFileRecordCacheEntry* CDBFile::FindRecord(const CUInt128& id) const
{
    return m_Cache->Find(id);
}

bool CDBFile::RejectReadOnly(const char16_t* warning)
{
    if (!m_DataFile.IsReadOnly())
        return false;
    LogMessage(warning, m_DataFile.GetFilePath());
    return true;
}

uint32_t CDBFile::GetRecordsCount()
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get records count in the database file, as database is not open");
        return 0;
    }
    return static_cast<uint32_t>(m_Cache->Count());
}

CUInt128 CDBFile::GetRecordID(uint32_t index)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get record ID in the database file, as database is not open");
        return {};
    }
    if (index >= m_Cache->Count())
    {
        LogMessage(u"Error: Cannot get record ID by its index in the database file, as index is out of valid "
                   u"range. Index value - %d, max possible value - %d",
                   index, static_cast<int64_t>(m_Cache->Count()) - 1);
        return {};
    }
    return m_Cache->At(index)->id;
}

uint32_t CDBFile::GetRecordsCountByType(uint16_t recordType)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get records count by type in the database file, as database is not open");
        return 0;
    }
    return static_cast<uint32_t>(m_Cache->TypedCount(recordType));
}

CUInt128 CDBFile::GetRecordIDByTypedIndex(uint16_t recordType, uint32_t index)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get record ID in the database file, as database is not open");
        return {};
    }
    if (!m_Cache->HasType(recordType))
    {
        LogMessage(u"Error: Cannot get record ID by typed index, invalid type value specified (%d) [DB]",
                   recordType);
        return {};
    }
    const SDBFileRecordCacheEntry* entry = m_Cache->TypedAt(recordType, index);
    if (!entry)
    {
        LogMessage(
            u"Error: Cannot get record ID by typed index, index value is out of valid range. Max possible "
            u"index value - %d, requested index value - %d [DB]",
            static_cast<int64_t>(m_Cache->TypedCount(recordType)) - 1, index);
        return {};
    }
    return entry->id;
}

uint16_t CDBFile::GetRecordType(const CUInt128& id)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get database file record type, as database is not open");
        return 0;
    }
    const SDBFileRecordCacheEntry* entry =
        LookUp(id, u"Error: Cannot get database record cache info on querying record type");
    return entry ? entry->recordType : 0;
}

bool CDBFile::GetRecordStatus(const CUInt128& id, SDBRecordStatus& status)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get database file record status, as database is not open");
        return false;
    }
    const SDBFileRecordCacheEntry* entry = LookUp(id, UnknownRecord);
    if (!entry)
        return false;
    status = {};
    status.recordType = entry->recordType;
    status.fieldsCount = static_cast<uint32_t>(entry->fields.size());
    for (const SFieldCacheEntry& field : entry->fields)
        status.fieldsMask |= field.fieldType;
    return true;
}

bool CDBFile::GetRecordInfo(const CUInt128& id, DBRecordInfo& info)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get database file record info, as database is not open");
        return false;
    }
    const SDBFileRecordCacheEntry* entry =
        LookUp(id, u"Error: Cannot get database record cache info on querying for record information");
    if (!entry)
        return false;
    info = entry->info;
    return true;
}

uint32_t CDBFile::GetFieldsCount(const CUInt128& id)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get database file record fields count, as database is not open");
        return 0;
    }
    const SDBFileRecordCacheEntry* entry =
        LookUp(id, u"Error: Cannot get database record cache info on querying for record fields count");
    return entry ? static_cast<uint32_t>(entry->fields.size()) : 0;
}

uint16_t CDBFile::GetFieldType(const CUInt128& id, uint32_t fieldIndex)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get database file record field type, as database is not open");
        return 0;
    }
    const SDBFileRecordCacheEntry* entry =
        LookUp(id, u"Error: Cannot get database record cache info on querying for record field type");
    if (!entry)
        return 0;
    if (fieldIndex >= entry->fields.size())
    {
        LogMessage(
            u"Error: Cannot get database record filed type, as its index is invalid. Queried filed index - "
            u"%d, max possible index - %d",
            fieldIndex, static_cast<int64_t>(entry->fields.size()) - 1);
        return 0;
    }
    return entry->fields[fieldIndex].fieldType;
}

bool CDBFile::IsFieldPresent(const CUInt128& id, uint16_t fieldType)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get database file record field presence status, as database is not open");
        return false;
    }
    const SDBFileRecordCacheEntry* entry = LookUp(
        id, u"Error: Cannot get database record cache info on querying for record field presence status");
    return entry && entry->FindField(fieldType) != nullptr;
}

bool CDBFile::GetFieldData(const CUInt128& id, uint16_t fieldType, std::vector<uint8_t>& data)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get database file record field data, as database is not open");
        return false;
    }
    const SDBFileRecordCacheEntry* entry =
        LookUp(id, u"Error: Cannot get database record cache info on querying for record field data");
    if (!entry)
        return false;
    const SFieldCacheEntry* field = entry->FindField(fieldType);
    if (!field)
    {
        LogMessage(
            u"Error: Cannot get database record field data, as the field is not present. Field type - %d",
            fieldType);
        return false;
    }
    return m_DataFile.GetRecordData(field->dataId, data);
}

bool CDBFile::SetFieldData(const CUInt128& id, uint16_t fieldType, const void* data, uint32_t size,
                           int reservePercent)
{
    const SDBFieldChange change{fieldType, data, size, reservePercent, false};
    return UpdateFields(id, std::span(&change, 1));
}

bool CDBFile::DeleteField(const CUInt128& id, uint16_t fieldType)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot delete database file record field, as database is not open");
        return false;
    }
    if (RejectReadOnly(
            u"Warning: attempt to delete record field from read-only database file. File name - %s"))
        return false;
    SDBFileRecordCacheEntry* entry =
        LookUp(id, u"Error: Cannot get database record cache info on deletion record's field");
    if (!entry)
        return false;
    bool headerChanged = false;
    if (!RemoveField(*entry, fieldType, headerChanged))
        return false;
    return !headerChanged || SaveHeader(*entry);
}

bool CDBFile::UpdateFields(const CUInt128& id, std::span<const SDBFieldChange> changes)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot get database file record field data, as database is not open");
        return false;
    }
    if (RejectReadOnly(u"Warning: attempt to set record field for read-only database file. File name - %s"))
        return false;
    SDBFileRecordCacheEntry* entry =
        LookUp(id, u"Error: Cannot get database record cache info on modifying for record's field");
    if (!entry)
        return false;
    std::vector<CUInt128> added;
    bool headerChanged = false;
    bool written = true;
    for (const SDBFieldChange& change : changes)
    {
        written = change.remove ? RemoveField(*entry, change.fieldType, headerChanged)
                                : WriteField(*entry, change, added, headerChanged);
        if (!written)
            break;
    }
    if (headerChanged && !SaveHeader(*entry))
    {
        if (!added.empty())
        {
            LogMessage(u"Error: Cannot add database record field (cannot save header changes)");
            RollBackAddedFields(*entry, added);
        }
        return false;
    }
    return written;
}

bool CDBFile::WriteField(SDBFileRecordCacheEntry& entry, const SDBFieldChange& change,
                         std::vector<CUInt128>& added, bool& headerChanged)
{
    if (const SFieldCacheEntry* field = entry.FindField(change.fieldType))
        return m_DataFile.ModifyRecord(field->dataId, DataOrEmpty(change.data), change.size,
                                       change.reservePercent);
    const CUInt128 dataId = m_DataFile.AddRecord(DataOrEmpty(change.data), change.size, FieldRecordType, true,
                                                 change.reservePercent);
    if (dataId.IsZero())
    {
        LogMessage(u"Error: Cannot create database record field");
        return false;
    }
    entry.fields.push_back({change.fieldType, dataId});
    added.push_back(dataId);
    headerChanged = true;
    return true;
}

bool CDBFile::RemoveField(SDBFileRecordCacheEntry& entry, uint16_t fieldType, bool& headerChanged)
{
    const auto it = std::find_if(entry.fields.begin(), entry.fields.end(),
                                 [fieldType](const SFieldCacheEntry& f) { return f.fieldType == fieldType; });
    if (it == entry.fields.end())
        return true;
    if (!m_DataFile.DeleteRecord(it->dataId))
    {
        LogMessage(u"Error: Cannot to delete database field record");
        return false;
    }
    entry.fields.erase(it);
    headerChanged = true;
    return true;
}

void CDBFile::RollBackAddedFields(SDBFileRecordCacheEntry& entry, const std::vector<CUInt128>& added)
{
    for (const CUInt128& dataId : added)
    {
        m_DataFile.DeleteRecord(dataId);
        std::erase_if(entry.fields, [&dataId](const SFieldCacheEntry& f) { return f.dataId == dataId; });
    }
}

bool CDBFile::SaveHeader(const SDBFileRecordCacheEntry& entry)
{
    SDBRecordHeader header;
    header.recordType = entry.recordType;
    header.info = entry.info;
    header.fields = entry.fields;
    const std::vector<uint8_t> bytes = header.Encode();
    return m_DataFile.ModifyRecord(entry.id, bytes.data(), static_cast<uint32_t>(bytes.size()),
                                   HeaderReservePercent);
}

bool CDBFile::DeleteAllFields(const CUInt128& id)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot delete database file record fields, as database is not open");
        return false;
    }
    if (RejectReadOnly(
            u"Warning: attempt to delete all record fields in read-only database file. File name - %s"))
        return false;
    SDBFileRecordCacheEntry* entry = m_Cache->Find(id);
    if (!entry)
    {
        LogMessage(u"Error: Attempt to delete record by invalid record ID.");
        return false;
    }
    if (entry->fields.empty())
        return true;
    bool deletedAll = true;
    while (!entry->fields.empty())
    {
        if (!m_DataFile.DeleteRecord(entry->fields.front().dataId))
        {
            LogMessage(u"Error: Cannot delete one of database record fields.");
            deletedAll = false;
            break;
        }
        entry->fields.erase(entry->fields.begin());
    }
    return SaveHeader(*entry) && deletedAll;
}

CUInt128 CDBFile::CreateRecord(uint16_t recordType, const DBRecordInfo& info)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot create new database record, as database is not open");
        return {};
    }
    if (RejectReadOnly(u"Warning: attempt to create record in read-only database file. File name - %s"))
        return {};
    SDBRecordHeader header;
    header.recordType = recordType;
    header.info = info;
    const std::vector<uint8_t> bytes = header.Encode();
    const CUInt128 id = m_DataFile.AddRecord(bytes.data(), static_cast<uint32_t>(bytes.size()),
                                             HeaderRecordType, true, HeaderReservePercent);
    if (id.IsZero())
        return {};
    SDBFileRecordCacheEntry entry;
    entry.id = id;
    entry.recordType = recordType;
    entry.info = info;
    m_Cache->Add(std::move(entry));
    return id;
}

bool CDBFile::DeleteRecord(const CUInt128& id)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot delete database record, as database is not open");
        return false;
    }
    if (RejectReadOnly(u"Warning: attempt to delete record from read-only database file. File name - %s"))
        return false;
    SDBFileRecordCacheEntry* entry = m_Cache->Find(id);
    if (!entry)
    {
        LogMessage(u"Error: Attempt to delete record by invalid record ID.");
        return false;
    }
    while (!entry->fields.empty())
    {
        const SFieldCacheEntry& field = entry->fields.front();
        if (!m_DataFile.DeleteRecord(field.dataId))
        {
            LogMessage(
                u"Error: Cannot delete one of database record fields. Record type - %d, field type - %d",
                entry->recordType, field.fieldType);
            return false;
        }
        entry->fields.erase(entry->fields.begin());
    }
    if (!m_DataFile.DeleteRecord(id))
    {
        LogMessage(u"Error: Unable to delete database record header. Record type - %d", entry->recordType);
        return false;
    }
    m_Cache->Remove(id);
    return true;
}

bool CDBFile::DeleteAllRecords()
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot delete all database records, as database is not open");
        return false;
    }
    if (RejectReadOnly(
            u"Warning: attempt to delete all database records from read-only database file. File name - %s"))
        return false;
    m_Cache->Clear();
    return m_DataFile.DeleteAllRecords(false);
}
