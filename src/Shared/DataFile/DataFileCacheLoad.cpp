// Building the records caches: by scanning the record chain, or from the cache record saved at
// the last close; saving that record; and the consistency check used by tests and diagnostics.
#include "Shared/DataFile/DataFile.h"

#include "Shared/DataFile/DataFileCacheRecord.h"
#include "Shared/DataFile/DataFileDeletedSpace.h"
#include "Shared/DataFile/DataFileIo.h"
#include "Shared/DataFile/DataFileRecordsCache.h"
#include "Shared/Log/Log.h"

#include <cstring>

using namespace DataFileFormat;

void CDataFile::ClearCaches()
{
    m_External->Clear();
    m_Internal->Clear();
    m_Deleted->Clear();
    m_Budget.used = 0;
}

bool CDataFile::BuildCacheByScan()
{
    ClearCaches();
    const uint64_t headerSize = m_Header.HeaderSize();
    if (headerSize > m_FileLength)
    {
        LogMessage(u"Error: Invalid file size or data corruption detected (file name - %s, record size - "
                   u"%d). Unable "
                   u"to proceed.",
                   m_Path, 0);
        return false;
    }
    const CUInt128 counter = m_Header.IdCounter();
    CDataFileReadAhead reader(*m_File, m_FileLength);
    for (uint64_t position = headerSize; position < m_FileLength;)
    {
        if (m_FileLength - position < RecordHeaderSize)
        {
            LogMessage(u"Error: Invalid record header size, seems like corrupted file (file name - %s)... "
                       u"Repairing...",
                       m_Path);
            DataFileIo::SetLength(*m_File, position);
            m_FileLength = position;
            break;
        }
        const SRecordHeader header = SRecordHeader::Decode(reader.Get(position, RecordHeaderSize));
        if (header.allocated > m_FileLength - position - RecordHeaderSize || header.SizeOnDisk() > UINT32_MAX)
        {
            LogMessage(
                u"Error: Invalid file size or data corruption detected (file name - %s, record size - %d). "
                u"Unable to proceed.",
                m_Path, header.allocated);
            return false;
        }
        if (header.allocated < header.dataSize)
        {
            LogMessage(u"Error: Invalid record size. Data size - %d, allocated size - %d, file name - %s",
                       header.dataSize, header.allocated, m_Path);
            return false;
        }
        if (header.id >= counter)
            LogMessage(u"Error: Invalid record ID detected in the data storage file.");
        else if (header.state == StateDeleted)
            m_Deleted->Add(position, static_cast<uint32_t>(header.SizeOnDisk()));
        else if (header.IsLive() && !header.id.IsZero())
            CacheOfState(header.state)
                .Add(header.id, header.type, position, static_cast<uint32_t>(header.SizeOnDisk()),
                     header.dataSize);
        position += header.SizeOnDisk();
    }
    return true;
}

bool CDataFile::LoadCache()
{
    m_CacheFromRecord = false;
    m_CacheRecordLive = false;
    if (LoadCacheRecord())
    {
        m_CacheFromRecord = true;
        m_CacheRecordLive = true;
        LogMessage(u"Info: Cache was successfully restored from the cache record.");
        return true;
    }
    return BuildCacheByScan();
}

bool CDataFile::LoadCacheRecord()
{
    const uint64_t position = m_Header.CacheRecordPosition();
    const CUInt128 id = m_Header.CacheRecordId();
    const uint64_t headerSize = m_Header.HeaderSize();
    try
    {
        SRecordHeader header;
        bool valid = !id.IsZero() && position >= headerSize && position <= m_FileLength &&
                     m_FileLength - position >= RecordHeaderSize;
        if (valid)
        {
            uint8_t raw[RecordHeaderSize];
            DataFileIo::ReadExact(*m_File, position, raw, sizeof raw);
            header = SRecordHeader::Decode(raw);
            valid = header.id == id && header.state == StateInternal && header.allocated >= header.dataSize &&
                    header.allocated <= m_FileLength - position - RecordHeaderSize;
        }
        if (!valid)
        {
            LogMessage(u"Info: Invalid cache record header format (file name - %s). Trying to rebuild it.",
                       m_Path);
            return false;
        }
        std::vector<uint8_t> data(header.dataSize);
        DataFileIo::ReadExact(*m_File, position + RecordHeaderSize, data.data(), data.size());
        if (!header.IsPlain())
            m_Cipher.Apply(data.data(), data.size(), position + RecordHeaderSize);
        return ParseCacheRecord(data, position, header.SizeOnDisk()) &&
               m_Internal->Add(id, header.type, position, static_cast<uint32_t>(header.SizeOnDisk()),
                               header.dataSize) != nullptr;
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on loading data file cache. File name - %s, cause - %d",
                   m_Path, e.cause);
    }
    catch (...)
    {
        LogMessage(u"Error: General exception cought on reading cache record from %s data file.", m_Path);
    }
    ClearCaches();
    return false;
}

bool CDataFile::ParseCacheRecord(const std::vector<uint8_t>& data, uint64_t recordPosition,
                                 uint64_t recordSize)
{
    DataFileCacheRecord::SFileBounds bounds;
    bounds.headerSize = m_Header.HeaderSize();
    bounds.fileLength = m_FileLength;
    bounds.idCounter = m_Header.IdCounter();
    bounds.cacheRecordPosition = recordPosition;
    bounds.cacheRecordSize = recordSize;
    uint32_t version = 0;
    const auto result =
        DataFileCacheRecord::Parse(data, bounds, *m_Deleted, *m_External, *m_Internal, version);
    if (result == DataFileCacheRecord::EParseResult::Ok && !m_External->Find(m_Header.CacheRecordId()) &&
        !m_Internal->Find(m_Header.CacheRecordId()))
        return true;
    ClearCaches();
    if (result == DataFileCacheRecord::EParseResult::UnknownVersion)
        LogMessage(u"Warning: Unknown cache record format, skipping it. File name - %s, actual version - %d, "
                   u"expected "
                   u"version - %d.",
                   m_Path, version, CacheRecordFormat);
    else
        LogMessage(u"Error: Cache record data is invalid. File name - %s.", m_Path);
    LogMessage(u"Info: Invalid cache record data (file name - %s). Trying to rebuild it.", m_Path);
    return false;
}

void CDataFile::DropCacheRecord()
{
    const CUInt128 id = m_Header.CacheRecordId();
    if (id.IsZero())
        return;
    const uint64_t position = m_Header.CacheRecordPosition();
    // The header lets go of the record first: a crash in between leaves an orphan internal
    // record, never a reference to a directory that no longer matches the file.
    m_Header.SetCacheRecord(0, CUInt128());
    m_CacheRecordLive = false;
    SaveHeader();
    SDFileRecordCacheEntry* entry = m_Internal->Find(id);
    if (entry && entry->position == position && entry->type == CacheRecordType &&
        FreeRecordSpace(entry->position, id))
        m_Internal->Remove(id);
}

void CDataFile::SaveCacheRecord()
{
    try
    {
        DropCacheRecord();
        std::vector<uint8_t> data;
        DataFileCacheRecord::EPart failedPart = DataFileCacheRecord::EPart::Directory;
        if (!DataFileCacheRecord::Serialize(*m_Deleted, *m_External, *m_Internal,
                                            UINT32_MAX - RecordHeaderSize, data, failedPart))
        {
            if (failedPart == DataFileCacheRecord::EPart::External)
                LogMessage(u"Error: Cannot serialize external records cache for %s data file.", m_Path);
            else if (failedPart == DataFileCacheRecord::EPart::Internal)
                LogMessage(u"Error: Cannot serialize internal records cache for %s data file.", m_Path);
            else
                LogMessage(u"Error: Cannot serialize records cache record for %s data file.", m_Path);
            return;
        }
        const CUInt128 id = GenerateRecordID();
        if (id.IsZero())
        {
            LogMessage(
                u"Error: Cannot create cahe record and therefore save records cache record for %s data file.",
                m_Path);
            return;
        }
        SRecordHeader header;
        header.id = id;
        header.state = StateInternal;
        header.type = CacheRecordType;
        header.dataSize = static_cast<uint32_t>(data.size());
        header.allocated = header.dataSize;
        header.flags = m_Cipher.HasKey() ? 0 : FlagPlain;
        // Appended, never placed in free space: the list just serialized must stay exact.
        const uint64_t position = m_FileLength;
        WriteRecord(position, header, data.data());
        m_Internal->Add(id, header.type, position, static_cast<uint32_t>(header.SizeOnDisk()),
                        header.dataSize);
        m_Header.SetCacheRecord(position, id);
        if (!SaveHeader())
        {
            LogMessage(u"Error: Cannot save records cache record for %s data file.", m_Path);
            return;
        }
        m_CacheRecordLive = true;
        m_CarriedDataRead = false;
        LogMessage(u"Info: Saved cache record size. Its size = %d.", header.dataSize);
    }
    catch (const CDataFileError&)
    {
        LogMessage(u"Error: Cannot save records cache record for %s data file.", m_Path);
    }
    catch (...)
    {
        LogMessage(u"Error: Cannot serialize records cache record for %s data file.", m_Path);
    }
}

namespace
{
bool SameEntry(const SDFileRecordCacheEntry* entry, const SRecordHeader& header, uint64_t position)
{
    return entry && entry->position == position && entry->sizeOnDisk == header.SizeOnDisk() &&
           entry->dataSize == header.dataSize && entry->type == header.type;
}
} // namespace

bool CDataFile::IsCacheConsistentWithFile()
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
        return false;
    try
    {
        const CUInt128 counter = m_Header.IdCounter();
        CDataFileReadAhead reader(*m_File, m_FileLength);
        size_t live = 0;
        size_t free = 0;
        bool consistent = m_Header.HeaderSize() <= m_FileLength;
        uint64_t position = m_Header.HeaderSize();
        std::vector<uint8_t> data;
        while (consistent && position < m_FileLength)
        {
            const SRecordHeader header = SRecordHeader::Decode(reader.Get(position, RecordHeaderSize));
            if (header.SizeOnDisk() > m_FileLength - position || header.allocated < header.dataSize)
                consistent = false;
            else if (header.id >= counter)
            {
                // The scan skips such records too, so neither side knows them.
            }
            else if (header.state == StateDeleted)
            {
                const auto entry = m_Deleted->FindAt(position);
                consistent = entry && entry->size == header.SizeOnDisk();
                ++free;
            }
            else if (header.IsLive() && !header.id.IsZero())
            {
                SDFileRecordCacheEntry* entry = CacheOfState(header.state).Find(header.id);
                consistent = SameEntry(entry, header, position);
                if (consistent && entry->data)
                {
                    const uint8_t* stored = reader.Get(position + RecordHeaderSize, header.dataSize);
                    data.assign(stored, stored + header.dataSize);
                    if (!header.IsPlain())
                        m_Cipher.Apply(data.data(), data.size(), position + RecordHeaderSize);
                    consistent = std::memcmp(data.data(), entry->data.get(), header.dataSize) == 0;
                }
                ++live;
            }
            position += header.SizeOnDisk();
        }
        consistent = consistent && position == m_FileLength && free == m_Deleted->Count() &&
                     live == m_External->Count() + m_Internal->Count();
        if (!consistent)
            LogMessage(u"Error: Data file cache does not match the file (file name - %s).", m_Path);
        return consistent;
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on checking data file cache. File name - %s, cause - %d",
                   m_Path, e.cause);
    }
    return false;
}
