// CDataFile: reading the data of many records in one pass, for searches over every note.
//
// One read per record costs a system call and a copy per note, and in ID order the reads jump
// about the file. Sorting the wanted records by position turns the pass into a few large
// sequential reads; small gaps between wanted records are read along, larger ones (such as the
// rich text between two notes' plain texts) are skipped with a read of their own.
#include "Shared/DataFile/DataFile.h"

#include "Shared/DataFile/DataFileIo.h"
#include "Shared/DataFile/DataFileRecordsCache.h"
#include "Shared/Log/Log.h"

#include <algorithm>

using namespace DataFileFormat;

namespace
{
// Small enough to stay in the processor's cache while it is deciphered and visited.
constexpr uint64_t ReadWindow = 256 * 1024;
// Records at most this far apart are fetched with one read: copying a gap of this size from the
// page cache costs about what one more system call does.
constexpr uint64_t MaxSkippedGap = 4 * 1024;

struct SWantedRecord
{
    uint64_t position;
    uint32_t dataSize;
    size_t index;
    CUInt128 id;
};
} // namespace

bool CDataFile::VisitRecordsData(std::span<const CUInt128> ids, const RecordDataVisitor& visit)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get record data from the data file, as data file is not open");
        return false;
    }
    std::vector<SWantedRecord> wanted;
    wanted.reserve(ids.size());
    for (size_t i = 0; i < ids.size(); ++i)
    {
        CRecordsCache* owner = nullptr;
        const SDFileRecordCacheEntry* entry = FindEntry(ids[i], owner);
        if (!entry)
        {
            LogMessage(u"Error: attempt to read not existing record. Data file name - %s", m_Path);
            continue;
        }
        if (entry->data)
        {
            if (!visit(i, std::span<const uint8_t>(entry->data.get(), entry->dataSize)))
                return false;
            continue;
        }
        wanted.push_back({entry->position, entry->dataSize, i, entry->id});
    }
    std::sort(wanted.begin(), wanted.end(),
              [](const SWantedRecord& a, const SWantedRecord& b) { return a.position < b.position; });

    std::vector<uint8_t> buffer;
    try
    {
        for (size_t first = 0; first < wanted.size();)
        {
            // The run: every following record that still fits the window and is close enough.
            const uint64_t start = wanted[first].position;
            uint64_t end = start + RecordHeaderSize + wanted[first].dataSize;
            size_t last = first + 1;
            for (; last < wanted.size(); ++last)
            {
                const uint64_t nextEnd = wanted[last].position + RecordHeaderSize + wanted[last].dataSize;
                if (wanted[last].position > end + MaxSkippedGap || nextEnd - start > ReadWindow)
                    break;
                end = std::max(end, nextEnd);
            }
            buffer.resize(static_cast<size_t>(end - start));
            DataFileIo::ReadExact(*m_File, start, buffer.data(), buffer.size());
            for (size_t i = first; i < last; ++i)
            {
                const SWantedRecord& record = wanted[i];
                uint8_t* raw = buffer.data() + (record.position - start);
                const SRecordHeader header = SRecordHeader::Decode(raw);
                if (header.id != record.id || header.dataSize != record.dataSize || !header.IsLive())
                {
                    LogMessage(
                        u"Error: Data file cache corruption detected on reading record content. Data file "
                        u"name - %s",
                        m_Path);
                    continue;
                }
                uint8_t* data = raw + RecordHeaderSize;
                if (!header.IsPlain())
                    m_Cipher.Apply(data, record.dataSize, record.position + RecordHeaderSize);
                if (!visit(record.index, std::span<const uint8_t>(data, record.dataSize)))
                    return false;
            }
            first = last;
        }
        return true;
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on reading record data from the data file. File name - %s, "
                   u"cause - %d",
                   m_Path, e.cause);
    }
    catch (...)
    {
        LogMessage(u"Error: General exception caught on reading record data from the %s data file.", m_Path);
    }
    return false;
}
