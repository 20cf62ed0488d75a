#include "Shared/DataFile/DataFileRecordsCache.h"

#include "Shared/Log/Log.h"

#include <algorithm>
#include <cstring>

template <class TVisit> void CDataFile::CRecordsCache::ForEachEntry(const TVisit& visit) const
{
    for (const SDFileRecordCacheEntry& entry : m_Entries)
        if (!entry.id.IsZero())
            visit(const_cast<SDFileRecordCacheEntry&>(entry));
}

void CDataFile::CRecordsCache::Reserve(size_t count)
{
    m_ById.Reserve(count);
}

SDFileRecordCacheEntry* CDataFile::CRecordsCache::Add(const CUInt128& id, uint16_t type, uint64_t position,
                                                      uint32_t sizeOnDisk, uint32_t dataSize)
{
    if (Find(id))
    {
        LogAssertion(u"Error: Attempt to cache already cached record (or duplicate record ID)",
                     u"Shared/DataFile", 1327);
        return nullptr;
    }
    SDFileRecordCacheEntry* entry = nullptr;
    if (!m_FreeEntries.empty())
    {
        entry = m_FreeEntries.back();
        m_FreeEntries.pop_back();
    }
    else
        entry = &m_Entries.emplace_back();
    m_ById.Insert(id, entry);
    entry->id = id;
    entry->type = type;
    entry->position = position;
    entry->sizeOnDisk = sizeOnDisk;
    entry->dataSize = dataSize;
    entry->orderSlot = static_cast<uint32_t>(m_Order.size());
    m_Order.push_back(entry);
    STypedCacheRecordsArray& typed = m_Typed[type];
    entry->typedSlot = static_cast<uint32_t>(typed.entries.size());
    typed.entries.push_back(entry);
    return entry;
}

SDFileRecordCacheEntry* CDataFile::CRecordsCache::Find(const CUInt128& id)
{
    return m_ById.Find(id);
}

bool CDataFile::CRecordsCache::HasEntryAt(uint64_t position) const
{
    bool found = false;
    ForEachEntry([&](const SDFileRecordCacheEntry& entry) { found = found || entry.position == position; });
    return found;
}

bool CDataFile::CRecordsCache::Remove(const CUInt128& id)
{
    SDFileRecordCacheEntry* entry = Find(id);
    if (!entry)
    {
        LogMessage(u"Warning: Attempt to delete non-existing data file cache record entry. Entry ID - %s",
                   id.ToHex());
        return false;
    }
    DropData(*entry);
    m_Order[entry->orderSlot] = nullptr;
    ++m_OrderHoles;
    STypedCacheRecordsArray& typed = m_Typed[entry->type];
    typed.entries[entry->typedSlot] = nullptr;
    ++typed.holes;
    m_ById.Erase(id);
    *entry = SDFileRecordCacheEntry();
    m_FreeEntries.push_back(entry);
    return true;
}

void CDataFile::CRecordsCache::Clear()
{
    DropAllData();
    m_Entries.clear();
    m_FreeEntries.clear();
    m_ById.Clear();
    m_Order.clear();
    m_OrderHoles = 0;
    m_Typed.clear();
}

void CDataFile::CRecordsCache::Compact(std::vector<SDFileRecordCacheEntry*>& list, size_t& holes, bool typed)
{
    if (holes == 0)
        return;
    size_t out = 0;
    for (SDFileRecordCacheEntry* entry : list)
    {
        if (!entry)
            continue;
        (typed ? entry->typedSlot : entry->orderSlot) = static_cast<uint32_t>(out);
        list[out++] = entry;
    }
    list.resize(out);
    holes = 0;
}

SDFileRecordCacheEntry* CDataFile::CRecordsCache::At(size_t index)
{
    Compact(m_Order, m_OrderHoles, false);
    return index < m_Order.size() ? m_Order[index] : nullptr;
}

size_t CDataFile::CRecordsCache::TypedCount(uint16_t type) const
{
    auto it = m_Typed.find(type);
    return it == m_Typed.end() ? 0 : it->second.entries.size() - it->second.holes;
}

SDFileRecordCacheEntry* CDataFile::CRecordsCache::TypedAt(uint16_t type, size_t index)
{
    auto it = m_Typed.find(type);
    if (it == m_Typed.end())
        return nullptr;
    Compact(it->second.entries, it->second.holes, true);
    return index < it->second.entries.size() ? it->second.entries[index] : nullptr;
}

bool CDataFile::CRecordsCache::StoreData(SDFileRecordCacheEntry& entry, const void* data, uint32_t size)
{
    DropData(entry);
    entry.dataSize = size;
    if (!m_Budget.Admits(size))
        return false;
    entry.data = std::make_unique_for_overwrite<uint8_t[]>(size);
    std::memcpy(entry.data.get(), data, size);
    if (!m_Budget.IsCarried(size))
        m_Budget.used += size;
    return true;
}

void CDataFile::CRecordsCache::DropData(SDFileRecordCacheEntry& entry)
{
    if (!entry.data)
        return;
    entry.data.reset();
    if (!m_Budget.IsCarried(entry.dataSize))
        m_Budget.used -= entry.dataSize;
}

void CDataFile::CRecordsCache::DropDataLargerThan(uint32_t limit)
{
    ForEachEntry(
        [&](SDFileRecordCacheEntry& entry)
        {
            if (entry.dataSize > limit && !m_Budget.IsCarried(entry.dataSize))
                DropData(entry);
        });
}

void CDataFile::CRecordsCache::DropBudgetedData()
{
    ForEachEntry(
        [&](SDFileRecordCacheEntry& entry)
        {
            if (!m_Budget.IsCarried(entry.dataSize))
                DropData(entry);
        });
}

void CDataFile::CRecordsCache::DropAllData()
{
    ForEachEntry([&](SDFileRecordCacheEntry& entry) { DropData(entry); });
}

std::vector<const SDFileRecordCacheEntry*> CDataFile::CRecordsCache::SortedById() const
{
    std::vector<const SDFileRecordCacheEntry*> sorted;
    sorted.reserve(m_ById.Count());
    ForEachEntry([&](const SDFileRecordCacheEntry& entry) { sorted.push_back(&entry); });
    // Entries are usually in ID order already (restored from a cache record, then appended).
    const auto byId = [](const SDFileRecordCacheEntry* a, const SDFileRecordCacheEntry* b)
    { return a->id < b->id; };
    if (!std::is_sorted(sorted.begin(), sorted.end(), byId))
        std::sort(sorted.begin(), sorted.end(), byId);
    return sorted;
}
