#pragma once
// CDataFile: the ".ddb" container. A 1464-byte header followed by variable-size records laid end
// to end, each with a 128-bit ID, a type, a state and slack for growth. Record data may be
// enciphered with a caller-supplied key. The directory of records is kept in memory (two records
// caches and the deleted-space list) and saved inside the file as the cache record on close.
//
// Invariants the code keeps between public operations (checked by IsCacheConsistentWithFile):
//  1. Records tile the file from the header size to the file length: no gap, no overlap.
//  2. Every live record has exactly one cache entry, in the cache of its kind, with the
//     position and sizes of its header; every deleted record is in the deleted-space list with
//     its position and whole size.
//  3. Deleting the last record truncates the file, and defragmentation cuts free space off the
//     end, so the file does not end with free space that this code left there.
//  4. The header names a cache record only while that record describes the file exactly; the
//     first change after opening deletes it, so a crash leaves no stale directory behind and the
//     next open rebuilds by scanning.
//  5. Every record ID is below the header's ID counter, and the counter is on disk before the
//     ID is used.
#include "Shared/Base/File.h"
#include "Shared/Base/Lock.h"
#include "Shared/Base/OleDate.h"
#include "Shared/Base/UInt128.h"
#include "Shared/DataFile/DataFileCipher.h"
#include "Shared/DataFile/DataFileFormat.h"
#include "Shared/DataFile/DataFileHeader.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct SDFileRecordCacheEntry;
class CDataFileReadAhead;

// How much record data the caches may keep in memory; shared by both records caches.
//
// Small records (at most `carriedLimit` bytes, 0 by default) can be kept apart from that budget:
// their data always stays in memory and so travels in the cache record, and the next open gets
// them with the directory in one sequential read instead of one read per record.
struct SDataFileCacheBudget
{
    static constexpr uint32_t DefaultTotal = 524288;
    static constexpr uint32_t DefaultPerRecord = 2000;

    uint32_t totalLimit = DefaultTotal;
    uint32_t perRecordLimit = DefaultPerRecord;
    uint32_t carriedLimit = 0;
    uint64_t used = 0; // bytes of budgeted (not carried) data held

    bool IsCarried(uint32_t dataSize) const { return dataSize >= 1 && dataSize <= carriedLimit; }
    bool Admits(uint32_t dataSize) const
    {
        return IsCarried(dataSize) ||
               (dataSize >= 1 && dataSize <= perRecordLimit && used + dataSize <= totalLimit);
    }
};

class CDataFile
{
public:
    class CRecordsCache;
    class CDeletedSpaceList;

    explicit CDataFile(IFileSystem& fs = DiskFileSystem(), const IClock& clock = SystemClock());
    ~CDataFile();
    CDataFile(const CDataFile&) = delete;
    CDataFile& operator=(const CDataFile&) = delete;

    // Life cycle.
    bool Create(const std::u16string& path, std::u16string_view creatorSignature, uint32_t fileType,
                uint32_t fileVersion, std::span<const uint8_t> key = {});
    bool Open(const std::u16string& path, std::span<const uint8_t> key = {});
    void Close(bool defragment, uint32_t timeLimitMs);
    bool IsOpen() const;
    bool SaveAs(const std::u16string& newPath, bool keepCurrent);
    // Asks the system to put everything written so far on the disk; callers group their
    // changes and flush once at the end of a save.
    bool Flush();
    std::u16string GetFilePath() const;

    // Header fields.
    uint32_t GetFileVersion();
    bool SetFileVersion(uint32_t version);
    uint32_t GetFileType();
    bool SetFileType(uint32_t type);
    std::u16string GetCreatorSignature();
    bool IsReadOnly();
    bool SetReadOnly(bool readOnly);
    CUInt128 GenerateRecordID();

    // Records.
    CUInt128 AddRecord(const void* data, uint32_t size, uint16_t type, bool external, int reservePercent);
    bool GetRecordData(const CUInt128& id, std::vector<uint8_t>& data);
    bool ModifyRecord(const CUInt128& id, const void* data, uint32_t size, int reservePercent);
    bool DeleteRecord(const CUInt128& id);
    bool DeleteAllRecords(bool resetCounter);
    // Hands the data of each record named in `ids` to `visit`, with the record's index in `ids`,
    // for a caller that reads many records once (a search). The records are visited in file
    // order, nearby ones fetched with one read, deciphered in the read buffer and not kept in
    // the caches, so the memory in use stays at about one read window. A missing or damaged
    // record is logged and skipped. `visit` returns false to stop; the result is false then and
    // when a read fails.
    using RecordDataVisitor = std::function<bool(size_t index, std::span<const uint8_t> data)>;
    bool VisitRecordsData(std::span<const CUInt128> ids, const RecordDataVisitor& visit);
    uint32_t GetRecordsCount();
    CUInt128 GetRecordID(uint32_t index);
    uint32_t GetTypedRecordsCount(uint16_t type);
    CUInt128 GetRecordIDByTypedIndex(uint16_t type, uint32_t index);
    uint16_t GetRecordType(const CUInt128& id);
    uint32_t GetRecordSizeOnDisk(const CUInt128& id);
    uint32_t GetRecordSize(const CUInt128& id);
    int GetFragmentationLevel();
    bool DefragmentQuick(uint32_t timeLimitMs);
    bool DefragmentFull();
    void SetCacheLimits(uint32_t totalBytes, uint32_t perRecordBytes);
    // Keeps the data of every record of at most `bytes` bytes in memory, outside the limits above,
    // so that it is saved with the cache record (see SDataFileCacheBudget). 0 turns this off.
    void SetCarriedRecordLimit(uint32_t bytes);

    // Diagnostics. The dump writes the whole file, deciphered as one buffer at offset 0, to `path`.
    bool DumpDecipheredTo(const std::u16string& path);
    // Scans the file and compares what it finds with the caches and the deleted-space list.
    bool IsCacheConsistentWithFile();
    // True when the cache in memory was restored from the cache record at the last open.
    bool WasCacheLoadedFromRecord() const { return m_CacheFromRecord; }

    // The access lock, for CDataFileAccessLock.
    CCriticalSection& AccessLock() const { return m_Lock; }
    bool IsLockedByCurrentThread() const { return m_Lock.IsHeldByCurrentThread(); }

private:
    // Life cycle and header (DataFile.cpp).
    bool OpenHandle(const std::u16string& path, EFileOpen mode, std::span<const uint8_t> key);
    void CloseHandle();
    void ResetState();
    bool LoadHeader();
    bool SaveHeader();
    void WriteIdCounter();
    bool RejectReadOnly(const char16_t* warning);
    void CopyTo(IFile& copy);
    bool ReopenAfterSaveAs(const std::u16string& newPath, const std::u16string& oldPath);

    // Records (DataFileRecords.cpp).
    CRecordsCache& CacheOfState(uint32_t state);
    uint64_t PlaceRecord(uint32_t dataSize, uint32_t& allocated);
    void WriteRecord(uint64_t position, const DataFileFormat::SRecordHeader& header, const void* data);
    void WriteDeletedHeader(uint64_t position, uint64_t blockSize);
    void RebuildAfterFailure();
    bool FreeRecordSpace(uint64_t position, const CUInt128& id);
    SDFileRecordCacheEntry* FindEntry(const CUInt128& id, CRecordsCache*& owner);
    bool ReadRecordData(const SDFileRecordCacheEntry& entry, std::vector<uint8_t>& data);
    bool MoveOrRewrite(SDFileRecordCacheEntry& entry, DataFileFormat::SRecordHeader header, const void* data,
                       uint32_t size);

    // Cache building, cache record (DataFileCacheLoad.cpp).
    bool LoadCache();
    bool BuildCacheByScan();
    bool LoadCacheRecord();
    bool ParseCacheRecord(const std::vector<uint8_t>& data, uint64_t recordPosition, uint64_t recordSize);
    void SaveCacheRecord();
    void DropCacheRecord();
    void ClearCaches();

    // Defragmentation (DataFileDefrag.cpp).
    struct SDefragWalk;
    bool RunDefragmentation(uint32_t timeLimitMs);
    uint64_t DefragStartPosition();
    bool DefragStep(SDefragWalk& walk, CDataFileReadAhead& reader);
    bool DefragDeletedRecord(SDefragWalk& walk, const DataFileFormat::SRecordHeader& header);
    bool DefragLiveRecord(SDefragWalk& walk, const DataFileFormat::SRecordHeader& header,
                          CDataFileReadAhead& reader);
    void MoveRecordDown(SDefragWalk& walk, const DataFileFormat::SRecordHeader& moved, uint64_t gap,
                        CDataFileReadAhead& reader);
    void WriteMovedRecord(SDefragWalk& walk, const DataFileFormat::SRecordHeader& moved, uint32_t slack,
                          uint64_t from, CDataFileReadAhead& reader);
    void FlushBatch(SDefragWalk& walk);
    void SettlePendingFree(SDefragWalk& walk);
    bool FinishDefragmentation(SDefragWalk& walk);

    IFileSystem& m_Fs;
    const IClock& m_Clock;
    std::unique_ptr<IFile> m_File;
    std::u16string m_Path;
    uint64_t m_FileLength = 0;
    CDataFileHeader m_Header;
    CDataFileCipher m_Cipher;
    SDataFileCacheBudget m_Budget;
    std::unique_ptr<CRecordsCache> m_Internal;
    std::unique_ptr<CRecordsCache> m_External;
    std::unique_ptr<CDeletedSpaceList> m_Deleted;
    bool m_CacheRecordLive = false; // the header's cache record still matches the caches
    bool m_CarriedDataRead = false; // carried data was read that the cache record lacks
    bool m_CacheFromRecord = false;
    std::vector<uint8_t> m_IoBuffer;
    mutable CCriticalSection m_Lock;
};

// Scope guard over a data file's recursive access lock; every public operation takes one.
class CDataFileAccessLock
{
public:
    explicit CDataFileAccessLock(const CDataFile& file);
    ~CDataFileAccessLock();
    CDataFileAccessLock(const CDataFileAccessLock&) = delete;
    CDataFileAccessLock& operator=(const CDataFileAccessLock&) = delete;

private:
    CCriticalSection& m_Section;
};
