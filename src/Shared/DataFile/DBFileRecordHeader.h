#pragma once
// The data of a database record's header record (data-file record type 1): the database record
// type, four information words and the list of the record's fields, each naming the data-file
// record (type 2) that holds the field's data.
//
// Layout, little-endian:
//   0  u16 database record type
//   2  u16 reserved, 0
//   4  4 x u32 record information words
//  20  u32 field count N
//  24  N x 20-byte field entries: u16 field type, u16 reserved 0, 16-byte record ID
// A header is valid only when its size is exactly 24 + 20 x N.
#include "Shared/Base/UInt128.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

struct SFieldCacheEntry
{
    uint16_t fieldType = 0;
    CUInt128 dataId; // the type-2 record holding the field's data
};

using DBRecordInfo = std::array<uint32_t, 4>;

struct SDBRecordHeader
{
    static constexpr size_t FixedSize = 24;
    static constexpr size_t FieldEntrySize = 20;

    uint16_t recordType = 0;
    DBRecordInfo info{};
    std::vector<SFieldCacheEntry> fields;

    std::vector<uint8_t> Encode() const;

    enum class EDecode
    {
        Ok,
        TooShort,    // fewer than 24 bytes
        SizeMismatch // not 24 + 20 x N
    };
    // On SizeMismatch `expectedSize` receives 24 + 20 x N (saturated) for the log line.
    static EDecode Decode(std::span<const uint8_t> data, SDBRecordHeader& header, uint64_t& expectedSize);
};
