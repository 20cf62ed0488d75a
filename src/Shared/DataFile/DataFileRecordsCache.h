#pragma once
// The in-memory directory of live records of one kind (internal or external): entries by ID, in
// insertion order, and per record type. Removal leaves a hole in the order lists that is closed
// on the next indexed query, so deleting many records stays linear overall.
// Opening a large document looks up every record a few times, so entries are found through a
// CUInt128Index (one array access for the IDs a file normally has).
#include "Shared/Base/UInt128Index.h"
#include "Shared/DataFile/DataFile.h"

#include <deque>
#include <map>
#include <memory>
#include <vector>

struct SDFileRecordCacheEntry
{
    CUInt128 id;
    uint64_t position = 0;   // file offset of the record header
    uint32_t sizeOnDisk = 0; // allocated size + 40
    uint32_t dataSize = 0;
    uint16_t type = 0;
    uint32_t orderSlot = 0;          // index in the insertion-order list
    uint32_t typedSlot = 0;          // index in the list of its type
    std::unique_ptr<uint8_t[]> data; // plain data of dataSize bytes when cached
};

struct STypedCacheRecordsArray
{
    std::vector<SDFileRecordCacheEntry*> entries; // null where an entry was removed
    size_t holes = 0;
};

class CDataFile::CRecordsCache
{
public:
    explicit CRecordsCache(SDataFileCacheBudget& budget) : m_Budget(budget) {}

    // Null when the ID is already cached.
    SDFileRecordCacheEntry* Add(const CUInt128& id, uint16_t type, uint64_t position, uint32_t sizeOnDisk,
                                uint32_t dataSize);
    SDFileRecordCacheEntry* Find(const CUInt128& id);
    bool HasEntryAt(uint64_t position) const; // linear: used once per defragmentation run
    bool Remove(const CUInt128& id);
    void Clear();
    void Reserve(size_t count);

    size_t Count() const { return m_ById.Count(); }
    SDFileRecordCacheEntry* At(size_t index);
    bool HasType(uint16_t type) const { return m_Typed.count(type) != 0; }
    size_t TypedCount(uint16_t type) const;
    SDFileRecordCacheEntry* TypedAt(uint16_t type, size_t index);

    // Cached data obeys the shared budget. StoreData also sets the entry's data size; DropData
    // must run before the data size of an entry with cached data changes.
    bool StoreData(SDFileRecordCacheEntry& entry, const void* data, uint32_t size);
    void DropData(SDFileRecordCacheEntry& entry);
    // Both keep the data of carried records.
    void DropDataLargerThan(uint32_t limit);
    void DropBudgetedData();
    void DropAllData();

    // Entries ordered by ID, for the cache record.
    std::vector<const SDFileRecordCacheEntry*> SortedById() const;

private:
    static void Compact(std::vector<SDFileRecordCacheEntry*>& list, size_t& holes, bool typed);
    template <class TVisit> void ForEachEntry(const TVisit& visit) const;

    SDataFileCacheBudget& m_Budget;
    // Entries keep their address while they live (the order and typed lists point at them);
    // slots of removed entries (ID zero) are reused.
    std::deque<SDFileRecordCacheEntry> m_Entries;
    std::vector<SDFileRecordCacheEntry*> m_FreeEntries;
    CUInt128Index<SDFileRecordCacheEntry> m_ById;
    std::vector<SDFileRecordCacheEntry*> m_Order;
    size_t m_OrderHoles = 0;
    std::map<uint16_t, STypedCacheRecordsArray> m_Typed;
};
