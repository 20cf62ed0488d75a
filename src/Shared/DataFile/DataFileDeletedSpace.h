#pragma once
// The deleted-space list: every free block of the file, in the order the blocks joined the list.
// Best fit is the entry whose size is nearest the wanted size, earlier entries winning ties, as a
// walk over the list would choose; two ordered indexes answer it in O(log n).
#include "Shared/DataFile/DataFile.h"

#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <vector>

struct SDeletedRecCacheEntry
{
    uint64_t position = 0; // file offset of the free block's header
    uint32_t size = 0;     // allocated size + 40: the whole block
    bool operator==(const SDeletedRecCacheEntry&) const = default;
};

class CDataFile::CDeletedSpaceList
{
public:
    void Add(uint64_t position, uint32_t size);
    bool Remove(uint64_t position);
    // Keeps the entry's place in the list while its block shrinks from the front (a split).
    void MoveStart(uint64_t position, uint64_t newPosition, uint32_t newSize);
    void Clear();

    std::optional<SDeletedRecCacheEntry> FindAt(uint64_t position) const;
    // The entry whose block ends exactly at `position`.
    std::optional<SDeletedRecCacheEntry> FindEndingAt(uint64_t position) const;
    // Best fit among blocks of at least `minimum` bytes for a block of `wanted` bytes.
    std::optional<SDeletedRecCacheEntry> FindBestFit(uint64_t minimum, uint64_t wanted) const;

    size_t Count() const { return m_ByPosition.size(); }
    uint64_t TotalSize() const { return m_Total; }
    std::vector<SDeletedRecCacheEntry> InListOrder() const;

private:
    struct SNode
    {
        uint32_t size;
        uint64_t order;
    };
    using SizeKey = std::tuple<uint32_t, uint64_t, uint64_t>; // size, list order, position

    std::map<uint64_t, SNode> m_ByPosition;
    std::set<SizeKey> m_BySize;
    uint64_t m_NextOrder = 0;
    uint64_t m_Total = 0;
};
