// Record operations of CDataFile: add, read, modify, delete, queries and the space allocator.
#include "Shared/DataFile/DataFile.h"

#include "Shared/DataFile/DataFileDeletedSpace.h"
#include "Shared/DataFile/DataFileIo.h"
#include "Shared/DataFile/DataFileRecordsCache.h"
#include "Shared/Log/Log.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

using namespace DataFileFormat;

namespace
{
// Appending a record writes its slack as zeros in the same call; beyond this the file is
// extended with a length change instead of a large zero buffer.
constexpr uint32_t MaxInlineSlack = 65536;
constexpr uint32_t MaxDataSize = UINT32_MAX - RecordHeaderSize;

void CheckDataSize(uint32_t size)
{
    if (size > MaxDataSize)
        throw std::length_error("record too large");
}
} // namespace

CDataFile::CRecordsCache& CDataFile::CacheOfState(uint32_t state)
{
    return state == StateExternal ? *m_External : *m_Internal;
}

SDFileRecordCacheEntry* CDataFile::FindEntry(const CUInt128& id, CRecordsCache*& owner)
{
    owner = m_External.get();
    if (SDFileRecordCacheEntry* entry = m_External->Find(id))
        return entry;
    owner = m_Internal.get();
    return m_Internal->Find(id);
}

void CDataFile::WriteDeletedHeader(uint64_t position, uint64_t blockSize)
{
    SRecordHeader free;
    free.state = StateDeleted;
    free.allocated = static_cast<uint32_t>(blockSize - RecordHeaderSize);
    uint8_t raw[RecordHeaderSize];
    free.Encode(raw);
    DataFileIo::Write(*m_File, position, raw, sizeof raw);
}

uint64_t CDataFile::PlaceRecord(uint32_t dataSize, uint32_t& allocated)
{
    const uint64_t minimum =
        static_cast<uint64_t>(dataSize ? dataSize : SmallRecordAllocation) + RecordHeaderSize;
    const uint64_t wanted = static_cast<uint64_t>(allocated) + RecordHeaderSize;
    const auto block = m_Deleted->FindBestFit(minimum, wanted);
    if (!block)
        return m_FileLength;
    if (block->size <= wanted + SplitThreshold)
    {
        allocated = block->size - RecordHeaderSize;
        m_Deleted->Remove(block->position);
        return block->position;
    }
    try
    {
        WriteDeletedHeader(block->position + wanted, block->size - wanted);
        WriteDeletedHeader(block->position, wanted);
        m_Deleted->MoveStart(block->position, block->position + wanted,
                             static_cast<uint32_t>(block->size - wanted));
        return block->position;
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on splitting empty record data. File name - %s, cause - %d",
                   m_Path, e.cause);
        return m_FileLength;
    }
}

void CDataFile::WriteRecord(uint64_t position, const SRecordHeader& header, const void* data)
{
    const uint64_t end = position + header.SizeOnDisk();
    const bool extends = end > m_FileLength;
    const uint32_t slack = header.allocated - header.dataSize;
    const uint32_t inlineSlack = extends && slack <= MaxInlineSlack ? slack : 0;
    m_IoBuffer.resize(RecordHeaderSize + static_cast<size_t>(header.dataSize) + inlineSlack);
    uint8_t* out = m_IoBuffer.data();
    header.Encode(out);
    if (header.dataSize)
        std::memcpy(out + RecordHeaderSize, data, header.dataSize);
    if (!header.IsPlain())
        m_Cipher.Apply(out + RecordHeaderSize, header.dataSize, position + RecordHeaderSize);
    std::memset(out + RecordHeaderSize + header.dataSize, 0, inlineSlack);
    // A large slack is made by a length change before the header that claims it is written, so
    // a failure can never leave a header pointing past the end of the file.
    const bool lengthFirst = extends && position + m_IoBuffer.size() < end;
    if (lengthFirst)
        DataFileIo::SetLength(*m_File, end);
    try
    {
        DataFileIo::Write(*m_File, position, out, m_IoBuffer.size());
    }
    catch (const CDataFileError&)
    {
        if (lengthFirst)
            m_File->SetLength(m_FileLength);
        throw;
    }
    if (extends)
        m_FileLength = end;
}

void CDataFile::RebuildAfterFailure()
{
    // Every write leaves the record chain on disk whole, so a scan brings the caches back in
    // line with the file after an operation broke off half-way.
    try
    {
        m_FileLength = DataFileIo::Length(*m_File);
        if (BuildCacheByScan())
            return;
    }
    catch (...)
    {
        // Reported by the scan or by the failed operation already.
    }
    ClearCaches();
}

CUInt128 CDataFile::AddRecord(const void* data, uint32_t size, uint16_t type, bool external,
                              int reservePercent)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot add record to the data file, as data file is not open");
        return {};
    }
    if (RejectReadOnly(u"Warning: attempt to add a new record to read-only data file. File name - %s"))
        return {};
    try
    {
        CheckDataSize(size);
        DropCacheRecord();
        const CUInt128 id = GenerateRecordID();
        if (id.IsZero())
            return {};
        SRecordHeader header;
        header.id = id;
        header.state = external ? StateExternal : StateInternal;
        header.type = type;
        header.dataSize = size;
        const uint32_t reserve = ClampReserve(reservePercent);
        header.allocated = std::min(AllocatedSizeFor(size, reserve), MaxDataSize);
        header.flags = reserve | (m_Cipher.HasKey() ? 0 : FlagPlain);
        const uint64_t position = PlaceRecord(size, header.allocated);
        WriteRecord(position, header, data);
        CRecordsCache& cache = CacheOfState(header.state);
        if (SDFileRecordCacheEntry* entry = cache.Add(id, type, position, header.SizeOnDisk(), size))
            cache.StoreData(*entry, data, size);
        return id;
    }
    catch (const CDataFileError& e)
    {
        LogMessage(
            u"Error: CFileException caught on adding new record to the data file. File name - %s, cause - %d",
            m_Path, e.cause);
    }
    catch (...)
    {
        LogMessage(u"Error: General exception caught on adding new record to the %s data file.", m_Path);
    }
    RebuildAfterFailure();
    return {};
}

bool CDataFile::ReadRecordData(const SDFileRecordCacheEntry& entry, std::vector<uint8_t>& data)
{
    data.resize(RecordHeaderSize + static_cast<size_t>(entry.dataSize));
    DataFileIo::ReadExact(*m_File, entry.position, data.data(), data.size());
    const SRecordHeader header = SRecordHeader::Decode(data.data());
    if (header.id != entry.id || header.dataSize != entry.dataSize || !header.IsLive())
    {
        LogMessage(
            u"Error: Data file cache corruption detected on reading record content. Data file name - %s",
            m_Path);
        data.clear();
        return false;
    }
    if (!header.IsPlain())
        m_Cipher.Apply(data.data() + RecordHeaderSize, entry.dataSize, entry.position + RecordHeaderSize);
    data.erase(data.begin(), data.begin() + RecordHeaderSize);
    return true;
}

bool CDataFile::GetRecordData(const CUInt128& id, std::vector<uint8_t>& data)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get record data from the data file, as data file is not open");
        return false;
    }
    CRecordsCache* owner = nullptr;
    SDFileRecordCacheEntry* entry = FindEntry(id, owner);
    if (!entry)
    {
        LogMessage(u"Error: attempt to read not existing record. Data file name - %s", m_Path);
        return false;
    }
    if (entry->data)
    {
        data.assign(entry->data.get(), entry->data.get() + entry->dataSize);
        return true;
    }
    try
    {
        if (!ReadRecordData(*entry, data))
            return false;
        if (owner->StoreData(*entry, data.data(), entry->dataSize) && m_Budget.IsCarried(entry->dataSize))
            m_CarriedDataRead = true;
        return true;
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on reading record data from the data file. File name - %s, "
                   u"cause - "
                   u"%d",
                   m_Path, e.cause);
    }
    catch (...)
    {
        LogMessage(u"Error: General exception caught on reading record data from the %s data file.", m_Path);
    }
    data.clear();
    return false;
}

bool CDataFile::MoveOrRewrite(SDFileRecordCacheEntry& entry, SRecordHeader header, const void* data,
                              uint32_t size)
{
    const uint64_t position = entry.position;
    const bool atEnd = position + header.SizeOnDisk() >= m_FileLength;
    header.dataSize = size;
    if (size <= header.allocated || atEnd)
    {
        if (size > header.allocated)
            header.allocated = std::min(AllocatedSizeFor(size, header.Reserve()), MaxDataSize);
        WriteRecord(position, header, data);
        entry.sizeOnDisk = static_cast<uint32_t>(header.SizeOnDisk());
        return true;
    }
    if (!FreeRecordSpace(position, entry.id))
        return false;
    header.allocated = std::min(AllocatedSizeFor(size, header.Reserve()), MaxDataSize);
    const uint64_t newPosition = PlaceRecord(size, header.allocated);
    WriteRecord(newPosition, header, data);
    entry.position = newPosition;
    entry.sizeOnDisk = static_cast<uint32_t>(header.SizeOnDisk());
    return true;
}

bool CDataFile::ModifyRecord(const CUInt128& id, const void* data, uint32_t size, int reservePercent)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot modify record in the data file, as data file is not open");
        return false;
    }
    if (RejectReadOnly(u"Warning: attempt to modify record in read-only data file. File name - %s"))
        return false;
    CRecordsCache* owner = nullptr;
    SDFileRecordCacheEntry* entry = FindEntry(id, owner);
    if (!entry)
    {
        LogMessage(u"Error: attempt to modify not existing record. Data file name - %s", m_Path);
        return false;
    }
    if (entry->data && entry->dataSize == size && std::memcmp(entry->data.get(), data, size) == 0)
        return true;
    try
    {
        CheckDataSize(size);
        DropCacheRecord();
        entry = FindEntry(id, owner);
        if (!entry)
        {
            LogMessage(u"Error: attempt to modify not existing record. Data file name - %s", m_Path);
            return false;
        }
        uint8_t raw[RecordHeaderSize];
        DataFileIo::ReadExact(*m_File, entry->position, raw, sizeof raw);
        SRecordHeader header = SRecordHeader::Decode(raw);
        if (header.id != id || !header.IsLive() || header.SizeOnDisk() != entry->sizeOnDisk)
        {
            LogMessage(u"Error: Data file cache corruption detected on modifying record content. Data file "
                       u"name - %s",
                       m_Path);
            return false;
        }
        header.flags =
            (header.flags & FlagPlain) | ClampReserve(reservePercent) | (m_Cipher.HasKey() ? 0 : FlagPlain);
        owner->DropData(*entry);
        if (!MoveOrRewrite(*entry, header, data, size))
            return false;
        owner->StoreData(*entry, data, size);
        return true;
    }
    catch (const CDataFileError& e)
    {
        LogMessage(
            u"Error: CFileException caught on modifying record in the data file. File name - %s, cause - %d",
            m_Path, e.cause);
    }
    catch (...)
    {
        LogMessage(u"Error: General exception caught on modifying record in the %s data file.", m_Path);
    }
    RebuildAfterFailure();
    return false;
}

bool CDataFile::FreeRecordSpace(uint64_t position, const CUInt128& id)
{
    // One read brings the header and, for a small record, the header after it that the forward
    // merge looks at.
    uint8_t window[4096];
    size_t windowSize = 0;
    const uint64_t remaining = m_FileLength > position ? m_FileLength - position : 0;
    if (!m_File->ReadAt(position, window, static_cast<size_t>(std::min<uint64_t>(sizeof window, remaining)),
                        windowSize))
        throw CDataFileError{m_File->LastCause()};
    if (windowSize < RecordHeaderSize)
    {
        LogMessage(
            u"Error: Unexpected end of file on reading record header [while deleting it]. File name - %s",
            m_Path);
        throw CDataFileError{CDataFileError::EndOfFileCause};
    }
    SRecordHeader header = SRecordHeader::Decode(window);
    if (header.id != id)
    {
        LogMessage(
            u"Error: Data file cache corruption detected on deleting record content. Data file name - %s",
            m_Path);
        return false;
    }
    uint8_t raw[RecordHeaderSize];
    uint64_t start = position;
    uint64_t size = header.SizeOnDisk();
    std::vector<uint64_t> absorbed; // free blocks that join this one
    while (start + size + RecordHeaderSize <= m_FileLength)
    {
        const uint8_t* next = raw;
        if (size + RecordHeaderSize <= windowSize)
            next = window + size;
        else
        {
            size_t done = 0;
            if (!m_File->ReadAt(start + size, raw, sizeof raw, done))
                throw CDataFileError{m_File->LastCause()};
            if (done != sizeof raw)
            {
                LogMessage(
                    u"Error: Unexpected end of file on reading record header [while consolidating deleted "
                    u"records]. File name - %s",
                    m_Path);
                throw CDataFileError{CDataFileError::EndOfFileCause};
            }
        }
        const SRecordHeader following = SRecordHeader::Decode(next);
        if (following.state != StateDeleted || following.SizeOnDisk() > m_FileLength - start - size ||
            size + following.SizeOnDisk() > UINT32_MAX)
            break;
        absorbed.push_back(start + size);
        size += following.SizeOnDisk();
    }
    if (const auto before = m_Deleted->FindEndingAt(start); before && size + before->size <= UINT32_MAX)
    {
        absorbed.push_back(before->position);
        start = before->position;
        size += before->size;
    }
    if (start + size >= m_FileLength)
    {
        DataFileIo::SetLength(*m_File, start);
        m_FileLength = start;
    }
    else
    {
        // Only the state and sizes change; the ID already at the block's start stays in it.
        header.state = StateDeleted;
        header.allocated = static_cast<uint32_t>(size - RecordHeaderSize);
        header.Encode(raw);
        DataFileIo::Write(*m_File, start + 16, raw + 16, 16);
    }
    for (uint64_t block : absorbed)
        m_Deleted->Remove(block);
    if (start < m_FileLength)
        m_Deleted->Add(start, static_cast<uint32_t>(size));
    return true;
}

bool CDataFile::DeleteRecord(const CUInt128& id)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot delete record in the data file, as data file is not open");
        return false;
    }
    if (RejectReadOnly(u"Warning: attempt to delete record from read-only data file. File name - %s"))
        return false;
    try
    {
        CRecordsCache* owner = nullptr;
        if (FindEntry(id, owner))
            DropCacheRecord();
        SDFileRecordCacheEntry* entry = FindEntry(id, owner);
        if (!entry)
        {
            LogMessage(u"Error: attempt to delete not existing record. Data file name - %s", m_Path);
            return false;
        }
        if (!FreeRecordSpace(entry->position, id))
            return false;
        owner->Remove(id);
        return true;
    }
    catch (const CDataFileError& e)
    {
        LogMessage(
            u"Error: CFileException caught on deleting record in the data file. File name - %s, cause - %d",
            m_Path, e.cause);
    }
    catch (...)
    {
        LogMessage(u"Error: General exception caught on deleting record in the %s data file.", m_Path);
    }
    RebuildAfterFailure();
    return false;
}

bool CDataFile::DeleteAllRecords(bool resetCounter)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot dele all records in the data file, as data file is not open");
        return false;
    }
    if (RejectReadOnly(u"Warning: attempt to delete all records from read-only data file. File name - %s"))
        return false;
    try
    {
        const bool hadCacheRecord = !m_Header.CacheRecordId().IsZero();
        m_Header.SetCacheRecord(0, CUInt128());
        m_Header.SetDefragMarker(CUInt128());
        m_CacheRecordLive = false;
        DataFileIo::SetLength(*m_File, m_Header.HeaderSize());
        m_FileLength = m_Header.HeaderSize();
        ClearCaches();
        if (resetCounter)
            m_Header.SetIdCounter(CUInt128(1));
        return (resetCounter || hadCacheRecord) ? SaveHeader() : true;
    }
    catch (const CDataFileError& e)
    {
        LogMessage(
            u"Error: CFileException caught on deleting all records in the data file. File name - %s, cause - "
            u"%d",
            m_Path, e.cause);
    }
    catch (...)
    {
        LogMessage(u"Error: General exception caught on deleting all records in the %s data file.", m_Path);
    }
    return false;
}

uint32_t CDataFile::GetRecordsCount()
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get records count in the data file, as data file is not open");
        return 0;
    }
    return static_cast<uint32_t>(m_External->Count());
}

CUInt128 CDataFile::GetRecordID(uint32_t index)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get record ID in the data file, as data file is not open");
        return {};
    }
    const SDFileRecordCacheEntry* entry = m_External->At(index);
    if (!entry)
    {
        LogMessage(u"Error: Cannot get record ID by invalid index");
        return {};
    }
    return entry->id;
}

uint32_t CDataFile::GetTypedRecordsCount(uint16_t type)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get typed records count in the data file, as data file is not open");
        return 0;
    }
    return static_cast<uint32_t>(m_External->TypedCount(type));
}

CUInt128 CDataFile::GetRecordIDByTypedIndex(uint16_t type, uint32_t index)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get record ID in the data file, as data file is not open");
        return {};
    }
    if (!m_External->HasType(type))
    {
        LogMessage(u"Error: Cannot get record ID by typed index, invalid type value specified (%d)", type);
        return {};
    }
    const SDFileRecordCacheEntry* entry = m_External->TypedAt(type, index);
    if (!entry)
    {
        LogMessage(u"Error: Cannot get record ID by typed index, index value is out of valid range. Max "
                   u"possible index "
                   u"value - %d, requested index value - %d",
                   static_cast<int>(m_External->TypedCount(type)) - 1, index);
        return {};
    }
    return entry->id;
}

uint16_t CDataFile::GetRecordType(const CUInt128& id)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get record type in the data file, as data file is not open");
        return 0;
    }
    CRecordsCache* owner = nullptr;
    const SDFileRecordCacheEntry* entry = FindEntry(id, owner);
    return entry ? entry->type : 0;
}

uint32_t CDataFile::GetRecordSizeOnDisk(const CUInt128& id)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get record size on disk in the data file, as data file is not open");
        return 0;
    }
    CRecordsCache* owner = nullptr;
    const SDFileRecordCacheEntry* entry = FindEntry(id, owner);
    return entry ? entry->sizeOnDisk : 0;
}

uint32_t CDataFile::GetRecordSize(const CUInt128& id)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get record size in the data file, as data file is not open");
        return 0;
    }
    CRecordsCache* owner = nullptr;
    const SDFileRecordCacheEntry* entry = FindEntry(id, owner);
    return entry ? entry->dataSize : 0;
}

int CDataFile::GetFragmentationLevel()
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get fragmentation lever of the data file, as data file is not open");
        return 0;
    }
    if (m_FileLength == 0)
        return 0;
    const uint32_t freeBytes = static_cast<uint32_t>(m_Deleted->TotalSize());
    return static_cast<int>(100.0 * freeBytes / static_cast<double>(m_FileLength));
}

void CDataFile::SetCacheLimits(uint32_t totalBytes, uint32_t perRecordBytes)
{
    CDataFileAccessLock lock(*this);
    if (perRecordBytes < m_Budget.perRecordLimit)
    {
        m_External->DropDataLargerThan(perRecordBytes);
        m_Internal->DropDataLargerThan(perRecordBytes);
    }
    if (totalBytes < m_Budget.totalLimit)
    {
        m_External->DropBudgetedData();
        m_Internal->DropBudgetedData();
        m_Budget.used = 0;
    }
    m_Budget.totalLimit = totalBytes;
    m_Budget.perRecordLimit = perRecordBytes;
}

void CDataFile::SetCarriedRecordLimit(uint32_t bytes)
{
    CDataFileAccessLock lock(*this);
    // What counts as budgeted changes with the limit, so the accounting starts afresh.
    m_External->DropAllData();
    m_Internal->DropAllData();
    m_Budget.used = 0;
    m_Budget.carriedLimit = bytes;
}
