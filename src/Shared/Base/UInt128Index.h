#pragma once
// An index from 128-bit IDs to objects held elsewhere (non-null pointers).
//
// Record IDs are handed out counting up from 1, so nearly all IDs of a file are small and
// dense: those index a plain array directly, which is one memory access per lookup, and IDs
// handed out together (a record and the fields written with it) sit side by side in it. An ID
// far beyond the number of entries (only a damaged or unusual file has them) goes to a hash map
// instead, so the array never grows beyond a few slots per entry.
#include "Shared/Base/UInt128.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

template <class T> class CUInt128Index
{
public:
    // Null when `id` is not indexed.
    T* Find(const CUInt128& id) const
    {
        if (id.High() == 0 && id.Low() < m_Dense.size())
            if (T* found = m_Dense[static_cast<size_t>(id.Low())])
                return found;
        if (m_Sparse.empty())
            return nullptr;
        const auto it = m_Sparse.find(id);
        return it == m_Sparse.end() ? nullptr : it->second;
    }

    // Indexes `id` (which must not be indexed yet) to `value` (not null).
    void Insert(const CUInt128& id, T* value)
    {
        if (T** slot = DenseSlotForInsert(id))
            *slot = value;
        else
            m_Sparse.emplace(id, value);
        ++m_Count;
    }

    // False when `id` was not indexed.
    bool Erase(const CUInt128& id)
    {
        if (id.High() == 0 && id.Low() < m_Dense.size() && m_Dense[static_cast<size_t>(id.Low())])
            m_Dense[static_cast<size_t>(id.Low())] = nullptr;
        else if (m_Sparse.erase(id) == 0)
            return false;
        --m_Count;
        return true;
    }

    void Clear()
    {
        m_Dense.clear();
        m_Sparse.clear();
        m_Count = 0;
    }

    // A file's IDs usually run from 1 to about its number of records.
    void Reserve(size_t count) { m_Dense.reserve(std::min<uint64_t>(count + 1, DenseLimit(count))); }

    size_t Count() const { return m_Count; }

private:
    // The dense array covers at least this many IDs, and at most this many per entry.
    static constexpr uint64_t MinDenseIds = 65536;
    static constexpr uint64_t DenseIdsPerEntry = 8;

    static uint64_t DenseLimit(size_t count)
    {
        return std::max<uint64_t>(MinDenseIds, DenseIdsPerEntry * (static_cast<uint64_t>(count) + 1));
    }

    T** DenseSlotForInsert(const CUInt128& id)
    {
        const uint64_t limit = DenseLimit(m_Count);
        if (id.High() != 0 || id.Low() >= std::max<uint64_t>(limit, m_Dense.size()))
            return nullptr;
        if (id.Low() >= m_Dense.size())
        {
            const uint64_t grown = std::max<uint64_t>(id.Low() + 1, 2 * m_Dense.size());
            m_Dense.resize(static_cast<size_t>(std::min(grown, limit)), nullptr);
        }
        return &m_Dense[static_cast<size_t>(id.Low())];
    }

    std::vector<T*> m_Dense; // index = ID
    std::unordered_map<CUInt128, T*, CUInt128Hash> m_Sparse;
    size_t m_Count = 0;
};
