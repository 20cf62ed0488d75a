#pragma once
// The in-memory directory of database records: entries by ID, in creation order, and per
// database record type. A type whose last record goes away has no typed list any more.
#include "Shared/DataFile/DBFile.h"

#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

class CDBFile::CRecordsCache
{
public:
    // Null when the ID is already cached.
    SDBFileRecordCacheEntry* Add(SDBFileRecordCacheEntry entry);
    SDBFileRecordCacheEntry* Find(const CUInt128& id);
    const SDBFileRecordCacheEntry* Find(const CUInt128& id) const;
    bool Remove(const CUInt128& id);
    void Clear();

    size_t Count() const { return m_Order.size(); }
    const SDBFileRecordCacheEntry* At(size_t index) const { return m_Order[index].get(); }
    bool HasType(uint16_t recordType) const { return m_Typed.count(recordType) != 0; }
    size_t TypedCount(uint16_t recordType) const;
    const SDBFileRecordCacheEntry* TypedAt(uint16_t recordType, size_t index) const;

private:
    std::vector<std::unique_ptr<SDBFileRecordCacheEntry>> m_Order;
    std::unordered_map<CUInt128, SDBFileRecordCacheEntry*, CUInt128Hash> m_ById;
    std::map<uint16_t, std::vector<SDBFileRecordCacheEntry*>> m_Typed;
};
