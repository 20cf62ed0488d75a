#include "Shared/DataFile/DataFileCacheRecord.h"

#include <algorithm>
#include <cstring>
#include <new>

using namespace DataFileFormat;

namespace
{
bool AppendCache(std::vector<uint8_t>& out, const CDataFile::CRecordsCache& cache, size_t maxSize)
{
    const auto entries = cache.SortedById();
    size_t at = out.size();
    size_t size = 4;
    for (const SDFileRecordCacheEntry* e : entries)
        size += DataFileCacheRecord::CacheEntrySize + (e->data ? e->dataSize : 0);
    if (size > maxSize - at)
        return false;
    out.resize(at + size);
    uint8_t* p = out.data() + at;
    PutU32(p, static_cast<uint32_t>(entries.size()));
    p += 4;
    for (const SDFileRecordCacheEntry* e : entries)
    {
        PutId(p, e->id);
        PutU16(p + 16, e->type);
        PutU32(p + 18, e->dataSize);
        PutU32(p + 22, e->sizeOnDisk);
        PutU64(p + 26, e->position);
        p[34] = e->data ? 1 : 0;
        p += DataFileCacheRecord::CacheEntrySize;
        if (e->data)
        {
            std::memcpy(p, e->data.get(), e->dataSize);
            p += e->dataSize;
        }
    }
    return true;
}

// A bounds-checked cursor over the record's bytes.
class CCursor
{
public:
    explicit CCursor(const std::vector<uint8_t>& data) : m_Data(data) {}
    bool Has(size_t size) const { return m_Data.size() - m_Pos >= size; }
    const uint8_t* Take(size_t size)
    {
        const uint8_t* p = m_Data.data() + m_Pos;
        m_Pos += size;
        return p;
    }
    size_t Remaining() const { return m_Data.size() - m_Pos; }

private:
    const std::vector<uint8_t>& m_Data;
    size_t m_Pos = 0;
};

bool InsideFile(uint64_t position, uint64_t size, const DataFileCacheRecord::SFileBounds& bounds)
{
    return position >= bounds.headerSize && size >= RecordHeaderSize && position <= bounds.fileLength &&
           size <= bounds.fileLength - position;
}

bool ParseCache(CCursor& in, const DataFileCacheRecord::SFileBounds& bounds, CDataFile::CRecordsCache& cache,
                CDataFile::CRecordsCache* otherKind, std::vector<std::pair<uint64_t, uint64_t>>& extents)
{
    if (!in.Has(4))
        return false;
    const uint32_t count = GetU32(in.Take(4));
    if (count > in.Remaining() / DataFileCacheRecord::CacheEntrySize)
        return false;
    cache.Reserve(count);
    CUInt128 previous;
    for (uint32_t i = 0; i < count; ++i)
    {
        if (!in.Has(DataFileCacheRecord::CacheEntrySize))
            return false;
        const uint8_t* p = in.Take(DataFileCacheRecord::CacheEntrySize);
        const CUInt128 id = GetId(p);
        const uint16_t type = GetU16(p + 16);
        const uint32_t dataSize = GetU32(p + 18);
        const uint32_t sizeOnDisk = GetU32(p + 22);
        const uint64_t position = GetU64(p + 26);
        const uint8_t hasData = p[34];
        // A record's data always fits its allocated area, which is stricter than the
        // "size on disk + 56" bound older writers were checked against.
        if (id <= previous || id >= bounds.idCounter || !InsideFile(position, sizeOnDisk, bounds) ||
            dataSize > sizeOnDisk - RecordHeaderSize || hasData > 1 || (otherKind && otherKind->Find(id)))
            return false;
        previous = id;
        SDFileRecordCacheEntry* entry = cache.Add(id, type, position, sizeOnDisk, dataSize);
        if (!entry)
            return false;
        extents.push_back({position, sizeOnDisk});
        if (hasData)
        {
            if (!in.Has(dataSize))
                return false;
            cache.StoreData(*entry, in.Take(dataSize), dataSize);
        }
    }
    return true;
}

// The saved directory must describe the whole record chain: its blocks, sorted by position, run
// from the header size to the end of the file without gap or overlap.
bool ExtentsTileFile(std::vector<std::pair<uint64_t, uint64_t>>& extents,
                     const DataFileCacheRecord::SFileBounds& bounds)
{
    std::sort(extents.begin(), extents.end());
    uint64_t expected = bounds.headerSize;
    for (const auto& [position, size] : extents)
    {
        if (position != expected)
            return false;
        expected += size;
    }
    return expected == bounds.fileLength;
}
} // namespace

namespace DataFileCacheRecord
{
bool Serialize(const CDataFile::CDeletedSpaceList& deleted, const CDataFile::CRecordsCache& external,
               const CDataFile::CRecordsCache& internal, size_t maxSize, std::vector<uint8_t>& out,
               EPart& failedPart)
{
    out.clear();
    try
    {
        failedPart = EPart::Directory;
        const auto free = deleted.InListOrder();
        const size_t directorySize = 8 + free.size() * DeletedEntrySize;
        if (directorySize > maxSize)
            return false;
        out.resize(directorySize);
        PutU32(out.data(), CacheRecordFormat);
        PutU32(out.data() + 4, static_cast<uint32_t>(free.size()));
        uint8_t* p = out.data() + 8;
        for (const SDeletedRecCacheEntry& e : free)
        {
            PutU64(p, e.position);
            PutU32(p + 8, e.size);
            p += DeletedEntrySize;
        }
        failedPart = EPart::External;
        if (!AppendCache(out, external, maxSize))
            return false;
        failedPart = EPart::Internal;
        return AppendCache(out, internal, maxSize);
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
}

EParseResult Parse(const std::vector<uint8_t>& data, const SFileBounds& bounds,
                   CDataFile::CDeletedSpaceList& deleted, CDataFile::CRecordsCache& external,
                   CDataFile::CRecordsCache& internal, uint32_t& version)
{
    CCursor in(data);
    if (!in.Has(8))
        return EParseResult::Invalid;
    version = GetU32(in.Take(4));
    if (version != CacheRecordFormat)
        return EParseResult::UnknownVersion;
    const uint32_t freeCount = GetU32(in.Take(4));
    if (freeCount > in.Remaining() / DeletedEntrySize)
        return EParseResult::Invalid;
    std::vector<std::pair<uint64_t, uint64_t>> extents;
    extents.reserve(freeCount + 1);
    extents.push_back({bounds.cacheRecordPosition, bounds.cacheRecordSize});
    for (uint32_t i = 0; i < freeCount; ++i)
    {
        const uint8_t* p = in.Take(DeletedEntrySize);
        const uint64_t position = GetU64(p);
        const uint32_t size = GetU32(p + 8);
        if (!InsideFile(position, size, bounds) || deleted.FindAt(position))
            return EParseResult::Invalid;
        deleted.Add(position, size);
        extents.push_back({position, size});
    }
    if (!ParseCache(in, bounds, external, nullptr, extents) ||
        !ParseCache(in, bounds, internal, &external, extents))
        return EParseResult::Invalid;
    if (in.Remaining() != 0 || !ExtentsTileFile(extents, bounds))
        return EParseResult::Invalid;
    return EParseResult::Ok;
}
} // namespace DataFileCacheRecord
