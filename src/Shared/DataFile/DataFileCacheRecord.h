#pragma once
// The cache record: the deleted-space list and both records caches serialized into one internal
// record, so that opening a file needs no scan. Format 101, little-endian, no padding:
//   u32 version; u32 D; D x (u64 position, u32 size);
//   external cache, then internal cache, each: u32 C; C x (16-byte ID, u16 type, u32 data size,
//   u32 size on disk, u64 position, u8 has-data, [data-size bytes of plain data]).
#include "Shared/DataFile/DataFileDeletedSpace.h"
#include "Shared/DataFile/DataFileRecordsCache.h"

#include <cstdint>
#include <vector>

namespace DataFileCacheRecord
{
constexpr size_t DeletedEntrySize = 12;
constexpr size_t CacheEntrySize = 35; // without its data

// The parts of the record in the order they are written.
enum class EPart
{
    Directory, // version and deleted-space list
    External,
    Internal
};

// False when the record would grow beyond `maxSize` bytes or memory runs out; `failedPart` then
// names the part that could not be written.
bool Serialize(const CDataFile::CDeletedSpaceList& deleted, const CDataFile::CRecordsCache& external,
               const CDataFile::CRecordsCache& internal, size_t maxSize, std::vector<uint8_t>& out,
               EPart& failedPart);

enum class EParseResult
{
    Ok,
    UnknownVersion,
    Invalid
};

// What the loader needs to judge the entries against the file.
struct SFileBounds
{
    uint64_t headerSize = 0;
    uint64_t fileLength = 0;
    CUInt128 idCounter;
    uint64_t cacheRecordPosition = 0; // the cache record's own extent, which no entry may overlap
    uint64_t cacheRecordSize = 0;
};

// Fills the (empty) caches; on anything but Ok their content is undefined and must be cleared.
// `version` receives the format version read.
EParseResult Parse(const std::vector<uint8_t>& data, const SFileBounds& bounds,
                   CDataFile::CDeletedSpaceList& deleted, CDataFile::CRecordsCache& external,
                   CDataFile::CRecordsCache& internal, uint32_t& version);
} // namespace DataFileCacheRecord
