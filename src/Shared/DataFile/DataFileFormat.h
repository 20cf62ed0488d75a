#pragma once
// On-disk constants of the ".ddb" container, shared by the reader and the writer: the file header
// offsets, the 40-byte record header, record states and flags, and the growth-reserve arithmetic.
// Everything on disk is little-endian.
#include "Shared/Base/UInt128.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace DataFileFormat
{
constexpr uint32_t HeaderSignature = 0x5F44425F; // "_BD_" in file order
constexpr uint32_t HeaderVersion = 1;
constexpr uint32_t HeaderSize = 1464;

constexpr size_t OffSignature = 0;
constexpr size_t OffVersion = 4;
constexpr size_t OffHeaderSize = 8;
constexpr size_t OffCreator = 12;
constexpr size_t CreatorUnits = 201;     // including the terminator
constexpr size_t CreatorCopyUnits = 200; // most units copied from the caller's text
constexpr size_t OffReadOnly = 414;
constexpr size_t OffFileType = 416;
constexpr size_t OffFileVersion = 420;
constexpr size_t OffKeyChecksum = 424;
constexpr size_t OffIdCounter = 428;
constexpr size_t OffDefragMarker = 444;
constexpr size_t OffCacheRecordPos = 464;
constexpr size_t OffCacheRecordId = 472;

constexpr uint32_t RecordHeaderSize = 40;
constexpr uint32_t StateInternal = 0;
constexpr uint32_t StateExternal = 1;
constexpr uint32_t StateDeleted = 2;

constexpr uint32_t FlagReserveMask = 0x3FF; // growth reserve in percent, bits 0-9
constexpr uint32_t FlagPlain = 0x400;       // data stored without enciphering

constexpr uint32_t SmallRecordAllocation = 64; // least allocation of a record that asked for reserve
constexpr uint64_t SplitThreshold = 60;        // spare bytes beyond which a free block is split
constexpr uint64_t TrimThreshold = 44;         // excess reserve that defragmentation gives back
constexpr uint32_t CacheRecordFormat = 101;
constexpr uint16_t CacheRecordType = 0;
constexpr size_t SaveAsBlockSize = 524280;

constexpr uint32_t NoTimeLimit = 0xFFFFFFFF;

inline uint16_t GetU16(const uint8_t* p)
{
    return static_cast<uint16_t>(p[0] | (p[1] << 8));
}
inline uint32_t GetU32(const uint8_t* p)
{
    return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) |
           (static_cast<uint32_t>(p[2]) << 16) | (static_cast<uint32_t>(p[3]) << 24);
}
inline uint64_t GetU64(const uint8_t* p)
{
    return static_cast<uint64_t>(GetU32(p)) | (static_cast<uint64_t>(GetU32(p + 4)) << 32);
}
inline void PutU16(uint8_t* p, uint16_t v)
{
    p[0] = static_cast<uint8_t>(v);
    p[1] = static_cast<uint8_t>(v >> 8);
}
inline void PutU32(uint8_t* p, uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        p[i] = static_cast<uint8_t>(v >> (8 * i));
}
inline void PutU64(uint8_t* p, uint64_t v)
{
    PutU32(p, static_cast<uint32_t>(v));
    PutU32(p + 4, static_cast<uint32_t>(v >> 32));
}
// Record IDs: four u32 words, the most significant first, each little-endian.
inline CUInt128 GetId(const uint8_t* p)
{
    const uint64_t high = (static_cast<uint64_t>(GetU32(p)) << 32) | GetU32(p + 4);
    const uint64_t low = (static_cast<uint64_t>(GetU32(p + 8)) << 32) | GetU32(p + 12);
    return CUInt128(high, low);
}
inline void PutId(uint8_t* p, const CUInt128& id)
{
    PutU32(p, static_cast<uint32_t>(id.High() >> 32));
    PutU32(p + 4, static_cast<uint32_t>(id.High()));
    PutU32(p + 8, static_cast<uint32_t>(id.Low() >> 32));
    PutU32(p + 12, static_cast<uint32_t>(id.Low()));
}

struct SRecordHeader
{
    CUInt128 id;
    uint32_t state = StateDeleted;
    uint16_t type = 0;
    uint32_t dataSize = 0;
    uint32_t allocated = 0;
    uint32_t flags = 0;

    bool IsLive() const { return state == StateInternal || state == StateExternal; }
    bool IsPlain() const { return (flags & FlagPlain) != 0; }
    uint32_t Reserve() const { return flags & FlagReserveMask; }
    uint64_t SizeOnDisk() const { return static_cast<uint64_t>(allocated) + RecordHeaderSize; }

    void Encode(uint8_t* out) const
    {
        std::memset(out, 0, RecordHeaderSize);
        PutId(out, id);
        PutU32(out + 16, state);
        PutU16(out + 20, type);
        PutU32(out + 24, dataSize);
        PutU32(out + 28, allocated);
        PutU32(out + 32, flags);
    }
    static SRecordHeader Decode(const uint8_t* in)
    {
        SRecordHeader h;
        h.id = GetId(in);
        h.state = GetU32(in + 16);
        h.type = GetU16(in + 20);
        h.dataSize = GetU32(in + 24);
        h.allocated = GetU32(in + 28);
        h.flags = GetU32(in + 32);
        return h;
    }
};

// A request of 1024 or more wraps to 0 through the 10-bit mask; files in the field were written
// that way, so the arithmetic is kept.
inline uint32_t ClampReserve(int percent)
{
    const int clamped = percent < 0 ? 0 : (percent > 1024 ? 1024 : percent);
    return static_cast<uint32_t>(clamped) & FlagReserveMask;
}

inline uint32_t AllocatedSizeFor(uint32_t dataSize, uint32_t reserve)
{
    if (dataSize < SmallRecordAllocation && reserve != 0)
        return SmallRecordAllocation;
    const uint64_t allocated = dataSize + static_cast<uint64_t>(reserve) * dataSize / 100;
    return allocated > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(allocated);
}

// The allocation defragmentation keeps: like AllocatedSizeFor, but every non-empty record may
// keep 64 bytes.
inline uint64_t TrimmedAllocationFor(uint32_t dataSize, uint32_t reserve)
{
    const uint64_t desired = dataSize + static_cast<uint64_t>(reserve) * dataSize / 100;
    return (desired <= SmallRecordAllocation && dataSize != 0) ? SmallRecordAllocation : desired;
}
} // namespace DataFileFormat
