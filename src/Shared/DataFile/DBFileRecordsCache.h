#pragma once
// The in-memory directory of database records: entries by ID, in creation order, and per
// database record type. A type whose last record goes away has no typed list any more.
//
// Removal leaves a hole in the order lists that is closed on the next indexed query, so deleting
// many records stays linear overall; entries keep their address while they live.
#include "Shared/Base/UInt128Index.h"
#include "Shared/DataFile/DBFile.h"

#include <deque>
#include <map>
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
    void Reserve(size_t count) { m_ById.Reserve(count); }

    size_t Count() const { return m_ById.Count(); }
    const SDBFileRecordCacheEntry* At(size_t index);
    bool HasType(uint16_t recordType) const { return TypedCount(recordType) != 0; }
    size_t TypedCount(uint16_t recordType) const;
    const SDBFileRecordCacheEntry* TypedAt(uint16_t recordType, size_t index);

private:
    struct SNode
    {
        SDBFileRecordCacheEntry entry;
        uint32_t orderSlot = 0;
        uint32_t typedSlot = 0;
    };
    struct SList
    {
        std::vector<SNode*> nodes; // null where a node was removed
        size_t holes = 0;
    };

    static void Compact(SList& list, bool typed);

    std::deque<SNode> m_Nodes;
    std::vector<SNode*> m_FreeNodes;
    CUInt128Index<SNode> m_ById;
    SList m_Order;
    std::map<uint16_t, SList> m_Typed;
};
