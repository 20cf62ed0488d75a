#include "Shared/DataFile/DataFileDeletedSpace.h"

#include <algorithm>

void CDataFile::CDeletedSpaceList::Add(uint64_t position, uint32_t size)
{
    auto [it, inserted] = m_ByPosition.try_emplace(position, SNode{size, m_NextOrder});
    if (!inserted)
        return;
    m_BySize.emplace(size, m_NextOrder, position);
    ++m_NextOrder;
    m_Total += size;
}

bool CDataFile::CDeletedSpaceList::Remove(uint64_t position)
{
    auto it = m_ByPosition.find(position);
    if (it == m_ByPosition.end())
        return false;
    m_BySize.erase(SizeKey{it->second.size, it->second.order, position});
    m_Total -= it->second.size;
    m_ByPosition.erase(it);
    return true;
}

void CDataFile::CDeletedSpaceList::MoveStart(uint64_t position, uint64_t newPosition, uint32_t newSize)
{
    auto it = m_ByPosition.find(position);
    if (it == m_ByPosition.end())
        return;
    const SNode node = it->second;
    m_BySize.erase(SizeKey{node.size, node.order, position});
    m_Total -= node.size;
    m_ByPosition.erase(it);
    m_ByPosition.emplace(newPosition, SNode{newSize, node.order});
    m_BySize.emplace(newSize, node.order, newPosition);
    m_Total += newSize;
}

void CDataFile::CDeletedSpaceList::Clear()
{
    m_ByPosition.clear();
    m_BySize.clear();
    m_Total = 0;
}

std::optional<SDeletedRecCacheEntry> CDataFile::CDeletedSpaceList::FindAt(uint64_t position) const
{
    auto it = m_ByPosition.find(position);
    if (it == m_ByPosition.end())
        return std::nullopt;
    return SDeletedRecCacheEntry{position, it->second.size};
}

std::optional<SDeletedRecCacheEntry> CDataFile::CDeletedSpaceList::FindEndingAt(uint64_t position) const
{
    auto it = m_ByPosition.lower_bound(position);
    if (it == m_ByPosition.begin())
        return std::nullopt;
    --it;
    if (it->first + it->second.size != position)
        return std::nullopt;
    return SDeletedRecCacheEntry{it->first, it->second.size};
}

std::optional<SDeletedRecCacheEntry> CDataFile::CDeletedSpaceList::FindBestFit(uint64_t minimum,
                                                                               uint64_t wanted) const
{
    if (wanted > UINT32_MAX)
        wanted = UINT32_MAX;
    const uint32_t wanted32 = static_cast<uint32_t>(wanted);
    // The first entry of the smallest size at or above the wanted size...
    auto above = m_BySize.lower_bound(SizeKey{wanted32, 0, 0});
    // ...and the first entry of the largest size below it.
    auto below = m_BySize.end();
    if (above != m_BySize.begin())
    {
        const uint32_t belowSize = std::get<0>(*std::prev(above));
        if (belowSize >= minimum)
            below = m_BySize.lower_bound(SizeKey{belowSize, 0, 0});
    }
    if (above != m_BySize.end() && std::get<0>(*above) < minimum)
        above = m_BySize.lower_bound(
            SizeKey{static_cast<uint32_t>(std::min<uint64_t>(minimum, UINT32_MAX)), 0, 0});
    auto pick = above;
    if (below != m_BySize.end())
    {
        const uint64_t aboveDiff = above == m_BySize.end() ? UINT64_MAX : std::get<0>(*above) - wanted;
        const uint64_t belowDiff = wanted - std::get<0>(*below);
        if (belowDiff < aboveDiff || (belowDiff == aboveDiff && std::get<1>(*below) < std::get<1>(*above)))
            pick = below;
    }
    if (pick == m_BySize.end())
        return std::nullopt;
    return SDeletedRecCacheEntry{std::get<2>(*pick), std::get<0>(*pick)};
}

std::vector<SDeletedRecCacheEntry> CDataFile::CDeletedSpaceList::InListOrder() const
{
    std::vector<std::pair<uint64_t, SDeletedRecCacheEntry>> ordered;
    ordered.reserve(m_ByPosition.size());
    for (const auto& [position, node] : m_ByPosition)
        ordered.push_back({node.order, SDeletedRecCacheEntry{position, node.size}});
    std::sort(ordered.begin(), ordered.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<SDeletedRecCacheEntry> list;
    list.reserve(ordered.size());
    for (const auto& item : ordered)
        list.push_back(item.second);
    return list;
}
