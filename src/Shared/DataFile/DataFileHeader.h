#pragma once
// The 1464-byte file header image of a ".ddb" file, its field accessors and its validation.
#include "Shared/DataFile/DataFileFormat.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

class CDataFileHeader
{
public:
    CDataFileHeader() { m_Image.fill(0); }

    // A fresh header: everything zero but the fixed fields, the caller's values and counter 1.
    void Reset(std::u16string_view creator, uint32_t fileType, uint32_t fileVersion, uint32_t keyChecksum);

    // Checks the fields in their fixed order, logging each problem; with `repair` the
    // repairable ones are fixed in the image. False on the first unrepairable problem.
    bool Validate(bool repair, uint32_t keyChecksumInHand);

    static uint32_t KeyChecksum(std::span<const uint8_t> key);

    uint8_t* Bytes() { return m_Image.data(); }
    const uint8_t* Bytes() const { return m_Image.data(); }

    uint32_t HeaderSize() const { return Get32(DataFileFormat::OffHeaderSize); }
    std::u16string Creator() const;
    bool IsReadOnly() const { return m_Image[DataFileFormat::OffReadOnly] != 0; }
    void SetReadOnly(bool readOnly) { m_Image[DataFileFormat::OffReadOnly] = readOnly ? 1 : 0; }
    uint32_t FileType() const { return Get32(DataFileFormat::OffFileType); }
    void SetFileType(uint32_t v) { DataFileFormat::PutU32(&m_Image[DataFileFormat::OffFileType], v); }
    uint32_t FileVersion() const { return Get32(DataFileFormat::OffFileVersion); }
    void SetFileVersion(uint32_t v) { DataFileFormat::PutU32(&m_Image[DataFileFormat::OffFileVersion], v); }
    CUInt128 IdCounter() const { return DataFileFormat::GetId(&m_Image[DataFileFormat::OffIdCounter]); }
    void SetIdCounter(const CUInt128& v) { DataFileFormat::PutId(&m_Image[DataFileFormat::OffIdCounter], v); }
    const uint8_t* IdCounterBytes() const { return &m_Image[DataFileFormat::OffIdCounter]; }
    CUInt128 DefragMarker() const { return DataFileFormat::GetId(&m_Image[DataFileFormat::OffDefragMarker]); }
    void SetDefragMarker(const CUInt128& v)
    {
        DataFileFormat::PutId(&m_Image[DataFileFormat::OffDefragMarker], v);
    }
    uint64_t CacheRecordPosition() const
    {
        return DataFileFormat::GetU64(&m_Image[DataFileFormat::OffCacheRecordPos]);
    }
    CUInt128 CacheRecordId() const
    {
        return DataFileFormat::GetId(&m_Image[DataFileFormat::OffCacheRecordId]);
    }
    void SetCacheRecord(uint64_t position, const CUInt128& id);

private:
    uint32_t Get32(size_t offset) const { return DataFileFormat::GetU32(&m_Image[offset]); }
    bool CreatorIsTerminated() const;

    std::array<uint8_t, DataFileFormat::HeaderSize> m_Image;
};
