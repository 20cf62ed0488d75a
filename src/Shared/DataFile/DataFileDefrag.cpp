// Quick (time-bounded, resumable) and full defragmentation of CDataFile.
//
// The walk visits records in file order with two cursors: `read`, the next header to visit, and
// `write`, where the next live record belongs. The bytes between them are free. After every
// step the file on disk still parses as a chain of records: a moved record is written together
// with a deleted-record header that covers the free bytes behind it, so a crash in the middle
// of a run loses nothing.
#include "Shared/DataFile/DataFile.h"

#include "Shared/DataFile/DataFileDeletedSpace.h"
#include "Shared/DataFile/DataFileIo.h"
#include "Shared/DataFile/DataFileRecordsCache.h"
#include "Shared/Log/Log.h"

#include <cstring>
#include <vector>

using namespace DataFileFormat;

namespace
{
constexpr uint32_t MaxInlineSlack = 65536;
constexpr size_t MaxBatch = 1 << 20;
} // namespace

// Moved records land one after another, so their writes are gathered into one contiguous batch.
// The batch always ends with the deleted-record header of the free space behind its last
// record, which the next record in the batch overwrites; so whenever a batch reaches the disk
// the record chain there is whole.
struct CDataFile::SDefragWalk
{
    uint64_t read = 0;
    uint64_t write = 0;
    uint64_t batchStart = 0;
    std::vector<uint8_t> batch;
};

bool CDataFile::DefragmentQuick(uint32_t timeLimitMs)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot defragment [quick] data file, as data file is not open");
        return false;
    }
    if (RejectReadOnly(u"Warning: attempt to defragment [quick] read-only data file. File name - %s"))
        return false;
    try
    {
        return RunDefragmentation(timeLimitMs);
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on loading data file cache. File name - %s, cause - %d",
                   m_Path, e.cause);
    }
    catch (...)
    {
        LogMessage(u"Error: General exception caught on loading %s data file cache.", m_Path);
    }
    RebuildAfterFailure();
    return false;
}

bool CDataFile::DefragmentFull()
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot defragment [full] data file, as data file is not open");
        return false;
    }
    if (RejectReadOnly(u"Warning: attempt to defragment [full] read-only data file. File name - %s"))
        return false;
    m_Header.SetDefragMarker(CUInt128());
    return DefragmentQuick(NoTimeLimit);
}

uint64_t CDataFile::DefragStartPosition()
{
    const uint64_t headerSize = m_Header.HeaderSize();
    const CUInt128 marker = m_Header.DefragMarker();
    m_Header.SetDefragMarker(CUInt128());
    if (marker.High() != 0 || marker.Low() <= headerSize || marker.Low() >= m_FileLength)
        return headerSize;
    const uint64_t position = marker.Low();
    if (m_Deleted->FindAt(position) || m_External->HasEntryAt(position) || m_Internal->HasEntryAt(position))
        return position;
    return headerSize;
}

bool CDataFile::RunDefragmentation(uint32_t timeLimitMs)
{
    const uint32_t start = m_Clock.TickCountMs();
    DropCacheRecord();
    SDefragWalk walk;
    walk.read = walk.write = DefragStartPosition();
    CDataFileReadAhead reader(*m_File, m_FileLength);
    while (walk.read < m_FileLength)
    {
        const uint64_t before = walk.write;
        if (!DefragStep(walk, reader))
        {
            // The directory disagreed with the file; from now on it follows what the file says.
            SettlePendingFree(walk);
            SaveHeader();
            BuildCacheByScan();
            return false;
        }
        // Time is checked only after a step that placed a record, so that every run makes
        // progress even when passing free space alone would exceed the limit.
        const bool placedRecord = walk.write != before;
        const bool moreToDo = walk.read < m_FileLength;
        const uint32_t elapsed = m_Clock.TickCountMs() - start;
        if (timeLimitMs != NoTimeLimit && placedRecord && moreToDo && elapsed > timeLimitMs)
        {
            SettlePendingFree(walk);
            m_Header.SetDefragMarker(CUInt128(walk.write));
            return SaveHeader();
        }
    }
    return FinishDefragmentation(walk);
}

bool CDataFile::DefragStep(SDefragWalk& walk, CDataFileReadAhead& reader)
{
    const uint64_t position = walk.read;
    if (m_FileLength - position < RecordHeaderSize)
    {
        if (walk.write < walk.read)
            LogMessage(u"Error: Invalid record header size, seems like corrupted file (file name - %s) [on "
                       u"defragmentation, point 2]... Repairing...",
                       m_Path);
        else
            LogMessage(u"Error: Invalid record header size, seems like corrupted file (file name - %s) [on "
                       u"defragmentation, point 1]... Repairing...",
                       m_Path);
        DataFileIo::SetLength(*m_File, position);
        m_FileLength = position;
        return true;
    }
    const SRecordHeader header = SRecordHeader::Decode(reader.Get(position, RecordHeaderSize));
    if (header.SizeOnDisk() > m_FileLength - position || header.SizeOnDisk() > UINT32_MAX)
    {
        LogMessage(u"Error: Invalid file size or data corruption detected on defragmenting data file (file "
                   u"name - %s, "
                   u"record size - %d). Unable to proceed.",
                   m_Path, header.allocated);
        return false;
    }
    if (header.dataSize > header.allocated)
    {
        LogMessage(
            u"Error: Invalid record data size values, seems like corrupted file (file name - %s, data size "
            u"limit exceed - %d). Unable to proceed defragmentation.",
            m_Path, header.dataSize - header.allocated);
        return false;
    }
    if (header.state == StateDeleted)
        return DefragDeletedRecord(walk, header);
    if (header.IsLive())
        return DefragLiveRecord(walk, header, reader);
    LogMessage(u"Warning: Unknown record state detected, unable to defragment it (file name - %s, state "
               u"value - %d). "
               u"Skipping the record.",
               m_Path, header.state);
    SettlePendingFree(walk);
    walk.read = walk.write = position + header.SizeOnDisk();
    return true;
}

bool CDataFile::DefragDeletedRecord(SDefragWalk& walk, const SRecordHeader& header)
{
    const auto entry = m_Deleted->FindAt(walk.read);
    if (!entry)
    {
        LogMessage(
            u"Error: Cache corruption detected - deleted record is not registered in the cache (file name - "
            u"%s). Unable to proceed defragmentation.",
            m_Path);
        return false;
    }
    if (entry->size != header.SizeOnDisk())
    {
        LogMessage(u"Error: Cache corruption detected - deleted record [2] is not registered in the cache "
                   u"(file name "
                   u"- %s). Unable to proceed defragmentation.",
                   m_Path);
        return false;
    }
    m_Deleted->Remove(walk.read);
    walk.read += header.SizeOnDisk();
    return true;
}

bool CDataFile::DefragLiveRecord(SDefragWalk& walk, const SRecordHeader& header, CDataFileReadAhead& reader)
{
    SDFileRecordCacheEntry* entry = CacheOfState(header.state).Find(header.id);
    if (!entry)
    {
        LogMessage(
            u"Error: Cache corruption detected - record is not registered in the cache (file name - %s). "
            u"Unable to proceed defragmentation.",
            m_Path);
        return false;
    }
    if (entry->position != walk.read)
    {
        LogMessage(
            u"Error: Cache corruption detected - record is not registered in the cache [2] (file name - %s). "
            u"Unable to proceed defragmentation.",
            m_Path);
        return false;
    }
    if (entry->sizeOnDisk != header.SizeOnDisk() || entry->dataSize != header.dataSize)
    {
        LogMessage(
            u"Error: Invalid record size, seems like corrupted file (file name - %s). Unable to proceed "
            u"defragmentation.",
            m_Path);
        return false;
    }
    const uint64_t desired = TrimmedAllocationFor(header.dataSize, header.Reserve());
    SRecordHeader moved = header;
    if (header.allocated > desired + TrimThreshold)
        moved.allocated = static_cast<uint32_t>(desired);
    const uint64_t next = walk.read + header.SizeOnDisk();
    if (walk.write == walk.read && moved.allocated == header.allocated)
    {
        walk.read = walk.write = next;
        return true;
    }
    const uint64_t newEnd = walk.write + moved.SizeOnDisk();
    MoveRecordDown(walk, moved, next - newEnd, reader);
    entry->position = walk.write;
    entry->sizeOnDisk = static_cast<uint32_t>(moved.SizeOnDisk());
    walk.write = newEnd;
    walk.read = next;
    return true;
}

void CDataFile::MoveRecordDown(SDefragWalk& walk, const SRecordHeader& moved, uint64_t gap,
                               CDataFileReadAhead& reader)
{
    const uint64_t from = walk.read;
    const uint64_t to = walk.write;
    const uint64_t newEnd = to + moved.SizeOnDisk();
    if (from == to)
    {
        // Only trimmed: the data stays where it is.
        FlushBatch(walk);
        uint8_t raw[RecordHeaderSize];
        moved.Encode(raw);
        DataFileIo::Write(*m_File, to, raw, sizeof raw);
        WriteDeletedHeader(newEnd, gap);
        return;
    }
    const uint32_t slack = moved.allocated - moved.dataSize;
    if (slack > MaxInlineSlack)
    {
        FlushBatch(walk);
        WriteMovedRecord(walk, moved, 0, from, reader);
        FlushBatch(walk);
        WriteDeletedHeader(newEnd, gap);
        return;
    }
    if (!walk.batch.empty() && walk.batchStart + walk.batch.size() - RecordHeaderSize == to)
        walk.batch.resize(walk.batch.size() -
                          RecordHeaderSize); // the free space it described is this record's
    else
        FlushBatch(walk);
    WriteMovedRecord(walk, moved, slack, from, reader);
    SRecordHeader free;
    free.allocated = static_cast<uint32_t>(gap - RecordHeaderSize);
    const size_t at = walk.batch.size();
    walk.batch.resize(at + RecordHeaderSize);
    free.Encode(walk.batch.data() + at);
    if (walk.batch.size() >= MaxBatch)
        FlushBatch(walk);
}

void CDataFile::WriteMovedRecord(SDefragWalk& walk, const SRecordHeader& moved, uint32_t slack, uint64_t from,
                                 CDataFileReadAhead& reader)
{
    if (walk.batch.empty())
        walk.batchStart = walk.write;
    const uint64_t to = walk.batchStart + walk.batch.size();
    const size_t at = walk.batch.size();
    walk.batch.resize(at + RecordHeaderSize + moved.dataSize + slack);
    uint8_t* out = walk.batch.data() + at;
    moved.Encode(out);
    std::memcpy(out + RecordHeaderSize, reader.Get(from + RecordHeaderSize, moved.dataSize), moved.dataSize);
    if (!moved.IsPlain())
    {
        m_Cipher.Apply(out + RecordHeaderSize, moved.dataSize, from + RecordHeaderSize);
        m_Cipher.Apply(out + RecordHeaderSize, moved.dataSize, to + RecordHeaderSize);
    }
    std::memset(out + RecordHeaderSize + moved.dataSize, 0, slack);
}

void CDataFile::FlushBatch(SDefragWalk& walk)
{
    if (walk.batch.empty())
        return;
    DataFileIo::Write(*m_File, walk.batchStart, walk.batch.data(), walk.batch.size());
    walk.batch.clear();
}

void CDataFile::SettlePendingFree(SDefragWalk& walk)
{
    FlushBatch(walk);
    if (walk.write < walk.read)
    {
        WriteDeletedHeader(walk.write, walk.read - walk.write);
        m_Deleted->Add(walk.write, static_cast<uint32_t>(walk.read - walk.write));
    }
    walk.write = walk.read;
}

bool CDataFile::FinishDefragmentation(SDefragWalk& walk)
{
    FlushBatch(walk);
    if (walk.write < m_FileLength)
    {
        DataFileIo::SetLength(*m_File, walk.write);
        m_FileLength = walk.write;
    }
    m_Header.SetDefragMarker(CUInt128());
    const bool rebuilt = BuildCacheByScan();
    return SaveHeader() && rebuilt;
}
