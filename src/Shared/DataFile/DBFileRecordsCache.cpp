#include "Shared/DataFile/DBFileRecordsCache.h"

const SFieldCacheEntry* SDBFileRecordCacheEntry::FindField(uint16_t fieldType) const
{
    for (const SFieldCacheEntry& field : fields)
        if (field.fieldType == fieldType)
            return &field;
    return nullptr;
}

SDBFileRecordCacheEntry* CDBFile::CRecordsCache::Add(SDBFileRecordCacheEntry entry)
{
    if (m_ById.Find(entry.id))
        return nullptr;
    SNode* node = nullptr;
    if (!m_FreeNodes.empty())
    {
        node = m_FreeNodes.back();
        m_FreeNodes.pop_back();
    }
    else
        node = &m_Nodes.emplace_back();
    node->entry = std::move(entry);
    m_ById.Insert(node->entry.id, node);
    node->orderSlot = static_cast<uint32_t>(m_Order.nodes.size());
    m_Order.nodes.push_back(node);
    SList& typed = m_Typed[node->entry.recordType];
    node->typedSlot = static_cast<uint32_t>(typed.nodes.size());
    typed.nodes.push_back(node);
    return &node->entry;
}

SDBFileRecordCacheEntry* CDBFile::CRecordsCache::Find(const CUInt128& id)
{
    SNode* node = m_ById.Find(id);
    return node ? &node->entry : nullptr;
}

const SDBFileRecordCacheEntry* CDBFile::CRecordsCache::Find(const CUInt128& id) const
{
    const SNode* node = m_ById.Find(id);
    return node ? &node->entry : nullptr;
}

bool CDBFile::CRecordsCache::Remove(const CUInt128& id)
{
    SNode* node = m_ById.Find(id);
    if (!node)
        return false;
    m_ById.Erase(id);
    m_Order.nodes[node->orderSlot] = nullptr;
    ++m_Order.holes;
    const auto typed = m_Typed.find(node->entry.recordType);
    typed->second.nodes[node->typedSlot] = nullptr;
    if (++typed->second.holes == typed->second.nodes.size())
        m_Typed.erase(typed);
    *node = SNode();
    m_FreeNodes.push_back(node);
    return true;
}

void CDBFile::CRecordsCache::Clear()
{
    m_ById.Clear();
    m_Order = {};
    m_Typed.clear();
    m_FreeNodes.clear();
    m_Nodes.clear();
}

void CDBFile::CRecordsCache::Compact(SList& list, bool typed)
{
    if (list.holes == 0)
        return;
    size_t out = 0;
    for (SNode* node : list.nodes)
    {
        if (!node)
            continue;
        (typed ? node->typedSlot : node->orderSlot) = static_cast<uint32_t>(out);
        list.nodes[out++] = node;
    }
    list.nodes.resize(out);
    list.holes = 0;
}

const SDBFileRecordCacheEntry* CDBFile::CRecordsCache::At(size_t index)
{
    Compact(m_Order, false);
    return index < m_Order.nodes.size() ? &m_Order.nodes[index]->entry : nullptr;
}

size_t CDBFile::CRecordsCache::TypedCount(uint16_t recordType) const
{
    const auto it = m_Typed.find(recordType);
    return it == m_Typed.end() ? 0 : it->second.nodes.size() - it->second.holes;
}

const SDBFileRecordCacheEntry* CDBFile::CRecordsCache::TypedAt(uint16_t recordType, size_t index)
{
    const auto it = m_Typed.find(recordType);
    if (it == m_Typed.end())
        return nullptr;
    Compact(it->second, true);
    return index < it->second.nodes.size() ? &it->second.nodes[index]->entry : nullptr;
}
