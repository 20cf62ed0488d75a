#include "Shared/DataFile/DBFileRecordsCache.h"

#include <algorithm>

const SFieldCacheEntry* SDBFileRecordCacheEntry::FindField(uint16_t fieldType) const
{
    for (const SFieldCacheEntry& field : fields)
        if (field.fieldType == fieldType)
            return &field;
    return nullptr;
}

SDBFileRecordCacheEntry* CDBFile::CRecordsCache::Add(SDBFileRecordCacheEntry entry)
{
    if (m_ById.count(entry.id) != 0)
        return nullptr;
    auto owned = std::make_unique<SDBFileRecordCacheEntry>(std::move(entry));
    SDBFileRecordCacheEntry* added = owned.get();
    m_Order.push_back(std::move(owned));
    m_ById.emplace(added->id, added);
    m_Typed[added->recordType].push_back(added);
    return added;
}

SDBFileRecordCacheEntry* CDBFile::CRecordsCache::Find(const CUInt128& id)
{
    const auto it = m_ById.find(id);
    return it == m_ById.end() ? nullptr : it->second;
}

const SDBFileRecordCacheEntry* CDBFile::CRecordsCache::Find(const CUInt128& id) const
{
    const auto it = m_ById.find(id);
    return it == m_ById.end() ? nullptr : it->second;
}

bool CDBFile::CRecordsCache::Remove(const CUInt128& id)
{
    const auto it = m_ById.find(id);
    if (it == m_ById.end())
        return false;
    SDBFileRecordCacheEntry* entry = it->second;
    m_ById.erase(it);
    auto typed = m_Typed.find(entry->recordType);
    std::erase(typed->second, entry);
    if (typed->second.empty())
        m_Typed.erase(typed);
    std::erase_if(m_Order, [entry](const auto& owned) { return owned.get() == entry; });
    return true;
}

void CDBFile::CRecordsCache::Clear()
{
    m_ById.clear();
    m_Typed.clear();
    m_Order.clear();
}

size_t CDBFile::CRecordsCache::TypedCount(uint16_t recordType) const
{
    const auto it = m_Typed.find(recordType);
    return it == m_Typed.end() ? 0 : it->second.size();
}

const SDBFileRecordCacheEntry* CDBFile::CRecordsCache::TypedAt(uint16_t recordType, size_t index) const
{
    const auto it = m_Typed.find(recordType);
    if (it == m_Typed.end() || index >= it->second.size())
        return nullptr;
    return it->second[index];
}
