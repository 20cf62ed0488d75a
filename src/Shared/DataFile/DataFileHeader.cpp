#include "Shared/DataFile/DataFileHeader.h"

#include "Shared/Log/Log.h"

using namespace DataFileFormat;

void CDataFileHeader::Reset(std::u16string_view creator, uint32_t fileType, uint32_t fileVersion,
                            uint32_t keyChecksum)
{
    m_Image.fill(0);
    PutU32(&m_Image[OffSignature], HeaderSignature);
    PutU32(&m_Image[OffVersion], HeaderVersion);
    PutU32(&m_Image[OffHeaderSize], DataFileFormat::HeaderSize);
    const size_t units = creator.size() < CreatorCopyUnits ? creator.size() : CreatorCopyUnits;
    for (size_t i = 0; i < units; ++i)
        PutU16(&m_Image[OffCreator + 2 * i], creator[i]);
    SetFileType(fileType);
    SetFileVersion(fileVersion);
    PutU32(&m_Image[OffKeyChecksum], keyChecksum);
    SetIdCounter(CUInt128(1));
}

uint32_t CDataFileHeader::KeyChecksum(std::span<const uint8_t> key)
{
    uint32_t sum = 0;
    for (size_t i = 0; i < key.size(); ++i)
        sum += 5u * static_cast<uint32_t>(i) * key[i];
    return sum;
}

std::u16string CDataFileHeader::Creator() const
{
    std::u16string text;
    for (size_t i = 0; i < CreatorUnits; ++i)
    {
        const char16_t unit = GetU16(&m_Image[OffCreator + 2 * i]);
        if (unit == 0)
            break;
        text.push_back(unit);
    }
    return text;
}

bool CDataFileHeader::CreatorIsTerminated() const
{
    for (size_t i = 0; i < CreatorUnits; ++i)
        if (GetU16(&m_Image[OffCreator + 2 * i]) == 0)
            return true;
    return false;
}

void CDataFileHeader::SetCacheRecord(uint64_t position, const CUInt128& id)
{
    PutU64(&m_Image[OffCacheRecordPos], position);
    PutId(&m_Image[OffCacheRecordId], id);
}

bool CDataFileHeader::Validate(bool repair, uint32_t keyChecksumInHand)
{
    const uint32_t signature = Get32(OffSignature);
    if (signature != HeaderSignature)
    {
        LogMessage(
            u"Error: invalid data file internal header signature detected (expected value - %d, actual "
            u"value - %d).",
            static_cast<int>(HeaderSignature), static_cast<int>(signature));
        return false;
    }
    const uint32_t version = Get32(OffVersion);
    if (version != HeaderVersion)
    {
        LogMessage(
            u"Error: invalid data file internal header version detected (expected version - %d, actual "
            u"version - %d).",
            static_cast<int>(HeaderVersion), static_cast<int>(version));
        return false;
    }
    if (HeaderSize() < DataFileFormat::HeaderSize)
    {
        LogMessage(u"Error: invalid data file header size detected (minimally possible size - %d, actual "
                   u"size - %d).",
                   static_cast<int>(DataFileFormat::HeaderSize), static_cast<int>(HeaderSize()));
        return false;
    }
    const uint32_t stored = Get32(OffKeyChecksum);
    if (stored != keyChecksumInHand)
    {
        LogMessage(u"Error: Invalid database key checksum (expected - %d, actual value - %d).",
                   static_cast<int>(keyChecksumInHand), static_cast<int>(stored));
        return false;
    }
    const uint8_t readOnly = m_Image[OffReadOnly];
    if (readOnly > 1)
    {
        if (!repair)
        {
            LogMessage(u"Warning: invalid data file header read-only flag detected. Value - %d", readOnly);
            return false;
        }
        LogMessage(u"Warning: invalid data file header read-only flag detected. Value - %d...Fixed",
                   readOnly);
        m_Image[OffReadOnly] = 0;
    }
    if (!CreatorIsTerminated())
    {
        if (!repair)
        {
            LogMessage(u"Warning: invalid data file header signature detected [too long or corrupted].");
            return false;
        }
        LogMessage(u"Warning: invalid data file header signature detected [too long or corrupted]...Fixed");
        PutU16(&m_Image[OffCreator], 0);
    }
    if ((CacheRecordPosition() == 0) != CacheRecordId().IsZero())
    {
        LogMessage(u"Warning: Invalid data file header cache record refference...Fixed");
        if (repair)
            SetCacheRecord(0, CUInt128());
    }
    return true;
}
