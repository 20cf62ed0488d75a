#pragma once
// CDBFile: the field database. A database record is one data-file record of type 1 (its header,
// listing the record's fields) plus one data-file record of type 2 per field holding the field's
// data. The headers of all records are kept in memory, so record types, field lists and field
// presence are answered without touching the file.
//
// Writing a field that is new to a record adds its data record first and then saves the header;
// when the header cannot be saved the data record just added is deleted again, so a failure
// leaves no data record that no header names. Several fields of one record can be changed
// together (UpdateFields) so that the header is saved once for all of them.
#include "Shared/Base/File.h"
#include "Shared/Base/OleDate.h"
#include "Shared/DataFile/DBFileRecordHeader.h"
#include "Shared/DataFile/DataFile.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

// One database record as the cache holds it; the ID is that of its header record.
struct SDBFileRecordCacheEntry
{
    CUInt128 id;
    uint16_t recordType = 0;
    DBRecordInfo info{};
    std::vector<SFieldCacheEntry> fields;

    const SFieldCacheEntry* FindField(uint16_t fieldType) const;
};

// What GetRecordStatus reports about one record.
struct SDBRecordStatus
{
    uint16_t recordType = 0;
    uint32_t fieldsCount = 0;
    uint32_t fieldsMask = 0; // OR of the field types below 2^32 that are present
};

// One change of UpdateFields: write `size` bytes of `data` with the growth reserve, or delete the
// field when `remove` is set.
struct SDBFieldChange
{
    uint16_t fieldType = 0;
    const void* data = nullptr;
    uint32_t size = 0;
    int reservePercent = 0;
    bool remove = false;
};

class CDBFile
{
public:
    class CRecordsCache;

    static constexpr uint16_t HeaderRecordType = 1;
    static constexpr uint16_t FieldRecordType = 2;
    // Headers grow by 20 bytes per new field; the reserve lets a few fields be added in place.
    static constexpr int HeaderReservePercent = 20;

    explicit CDBFile(IFileSystem& fs = DiskFileSystem(), const IClock& clock = SystemClock());
    ~CDBFile();
    CDBFile(const CDBFile&) = delete;
    CDBFile& operator=(const CDBFile&) = delete;

    // Life cycle, as CDataFile; the header cache is built after the data file opens.
    bool Create(const std::u16string& path, std::u16string_view creatorSignature, uint32_t fileType,
                uint32_t fileVersion, std::span<const uint8_t> key = {});
    bool Open(const std::u16string& path, std::span<const uint8_t> key = {});
    void Close(bool defragment, uint32_t timeLimitMs);
    bool IsOpen() const { return m_DataFile.IsOpen(); }
    // The container underneath, for header fields, save-as, defragmentation and cache limits.
    CDataFile& GetDataFile() { return m_DataFile; }

    // Queries, answered from the cache.
    uint32_t GetRecordsCount();
    CUInt128 GetRecordID(uint32_t index);
    uint32_t GetRecordsCountByType(uint16_t recordType);
    CUInt128 GetRecordIDByTypedIndex(uint16_t recordType, uint32_t index);
    uint16_t GetRecordType(const CUInt128& id);
    bool GetRecordStatus(const CUInt128& id, SDBRecordStatus& status);
    bool GetRecordInfo(const CUInt128& id, DBRecordInfo& info);
    uint32_t GetFieldsCount(const CUInt128& id);
    uint16_t GetFieldType(const CUInt128& id, uint32_t fieldIndex);
    bool IsFieldPresent(const CUInt128& id, uint16_t fieldType);
    // The cached record, or null when there is none (without logging); for loaders that probe.
    const SDBFileRecordCacheEntry* FindRecord(const CUInt128& id) const;

    // Field data. Reading a field that is not present fails with a log line.
    bool GetFieldData(const CUInt128& id, uint16_t fieldType, std::vector<uint8_t>& data);
    bool SetFieldData(const CUInt128& id, uint16_t fieldType, const void* data, uint32_t size,
                      int reservePercent);
    // Deleting a field that is not present succeeds and changes nothing.
    bool DeleteField(const CUInt128& id, uint16_t fieldType);
    bool DeleteAllFields(const CUInt128& id);
    // Applies the changes in order and saves the header once. Stops at the first failing data
    // write; fields added before a failed header save are deleted again.
    bool UpdateFields(const CUInt128& id, std::span<const SDBFieldChange> changes);

    // Records.
    CUInt128 CreateRecord(uint16_t recordType, const DBRecordInfo& info = {});
    bool DeleteRecord(const CUInt128& id);
    bool DeleteAllRecords();

private:
    bool BuildCache();
    bool AddHeaderToCache(const CUInt128& headerId);
    SDBFileRecordCacheEntry* LookUp(const CUInt128& id, const char16_t* failure);
    bool RejectReadOnly(const char16_t* warning);
    bool SaveHeader(const SDBFileRecordCacheEntry& entry);
    bool WriteField(SDBFileRecordCacheEntry& entry, const SDBFieldChange& change,
                    std::vector<CUInt128>& added, bool& headerChanged);
    bool RemoveField(SDBFileRecordCacheEntry& entry, uint16_t fieldType, bool& headerChanged);
    void RollBackAddedFields(SDBFileRecordCacheEntry& entry, const std::vector<CUInt128>& added);

    CDataFile m_DataFile;
    std::unique_ptr<CRecordsCache> m_Cache;
};
