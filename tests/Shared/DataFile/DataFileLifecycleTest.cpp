// Life cycle, read-only behaviour, keys, sharing, SaveAs, space reuse and failure injection.
#include "DataFileTestSupport.h"
#include "Shared/DataFile/DataFileDeletedSpace.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>

#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
const std::u16string Path = u"/data/l.ddb";

std::string Text(const std::vector<uint8_t>& data)
{
    return std::string(data.begin(), data.end());
}

std::string ReadText(CDataFile& file, const CUInt128& id)
{
    std::vector<uint8_t> data;
    EXPECT_TRUE(file.GetRecordData(id, data));
    return Text(data);
}
} // namespace

TEST(DataFileLifecycle, RecordIdsReachTheDiskAtOnce)
{
    CMemFileSystem fs;
    CDataFile file(fs);
    ASSERT_TRUE(file.Create(Path, u"L", 1, 1));
    EXPECT_EQ(file.GenerateRecordID(), CUInt128(1));
    EXPECT_EQ(file.GenerateRecordID(), CUInt128(2));
    EXPECT_EQ(file.GenerateRecordID(), CUInt128(3));
    EXPECT_EQ(ReadU32(fs.Bytes(Path), 428 + 12), 4u);
}

TEST(DataFileLifecycle, ReadOnlyFileRefusesEveryChange)
{
    CMemFileSystem fs;
    CLogCapture log;
    CDataFile file(fs);
    ASSERT_TRUE(file.Create(Path, u"L", 1, 1));
    const CUInt128 id = file.AddRecord("abc", 3, 1, true, 0);
    ASSERT_TRUE(file.SetReadOnly(true));
    file.Close(false, 0);
    ASSERT_TRUE(file.Open(Path));
    ASSERT_TRUE(file.IsReadOnly());
    const std::string before = fs.Bytes(Path);
    log.Clear();
    EXPECT_TRUE(file.AddRecord("x", 1, 1, true, 0).IsZero());
    EXPECT_FALSE(file.ModifyRecord(id, "xyz", 3, 0));
    EXPECT_FALSE(file.DeleteRecord(id));
    EXPECT_FALSE(file.DeleteAllRecords(true));
    EXPECT_FALSE(file.DefragmentQuick(100));
    EXPECT_FALSE(file.DefragmentFull());
    EXPECT_FALSE(file.SetFileType(9));
    EXPECT_FALSE(file.SetFileVersion(9));
    for (const char16_t* line :
         {u"Warning: attempt to add a new record to read-only data file. File name - /data/l.ddb",
          u"Warning: attempt to modify record in read-only data file. File name - /data/l.ddb",
          u"Warning: attempt to delete record from read-only data file. File name - /data/l.ddb",
          u"Warning: attempt to delete all records from read-only data file. File name - /data/l.ddb",
          u"Warning: attempt to defragment [quick] read-only data file. File name - /data/l.ddb",
          u"Warning: attempt to defragment [full] read-only data file. File name - /data/l.ddb",
          u"Warning: attempt to write file type to read-only data file. File name - /data/l.ddb",
          u"Warning: attempt to write file version to read-only data file. File name - /data/l.ddb"})
        EXPECT_TRUE(log.Has(line)) << std::string(line, line + 40);
    file.GenerateRecordID();
    EXPECT_TRUE(
        log.Has(u"Log Assertion Failed: Error: Request for data file record ID generation for read-only "
                u"data file. [file: Shared/DataFile, line: 540]"));
    EXPECT_EQ(ReadText(file, id), "abc");
    file.Close(true, 200);
    std::string after = fs.Bytes(Path);
    WriteU32(after, 428 + 12, ReadU32(before, 428 + 12)); // only the counter moved
    EXPECT_EQ(after, before);
}

TEST(DataFileLifecycle, KeyMustMatchTheStoredChecksum)
{
    CMemFileSystem fs;
    CLogCapture log;
    const std::vector<uint8_t> key = {1, 2, 3, 4, 5};
    {
        CDataFile file(fs);
        ASSERT_TRUE(file.Create(u"/data/keyed.ddb", u"L", 1, 1, key));
        ASSERT_TRUE(file.Create(u"/data/plain.ddb", u"L", 1, 1));
        EXPECT_TRUE(log.Has(u"Warning: Attempt to create data file while old instance is still open."));
    }
    CDataFile file(fs);
    log.Clear();
    EXPECT_FALSE(file.Open(u"/data/keyed.ddb"));
    EXPECT_TRUE(log.Has(u"Error: Invalid database key checksum (expected - 0, actual value - 200)."));
    EXPECT_TRUE(file.Open(u"/data/keyed.ddb", key));
    const std::vector<uint8_t> oneByte = {77};
    EXPECT_TRUE(file.Open(u"/data/plain.ddb", oneByte));
    EXPECT_TRUE(log.Has(u"Warning: Attempt to open data file while old instance is still open."));
    const std::vector<uint8_t> twoBytes = {1, 1};
    EXPECT_FALSE(file.Open(u"/data/plain.ddb", twoBytes));
    EXPECT_FALSE(file.IsOpen());
}

TEST(DataFileLifecycle, SecondWriterIsRefused)
{
    CTempFolder folder;
    CMemFileSystem memory;
    for (IFileSystem* fs : {static_cast<IFileSystem*>(&memory), &DiskFileSystem()})
    {
        const std::u16string path = fs == &memory ? Path : folder.File16("shared.ddb");
        CLogCapture log;
        CDataFile first(*fs);
        CDataFile second(*fs);
        ASSERT_TRUE(first.Create(path, u"L", 1, 1));
        EXPECT_FALSE(second.Open(path));
        EXPECT_TRUE(log.HasText(u"Possible reason - file does not exists or no access rights to the file"));
        first.Close(false, 0);
        EXPECT_TRUE(second.Open(path));
    }
}

// Two running copies of the program must never both write one file.
TEST(DataFileLifecycle, AnotherProcessCannotOpenAFileOpenForWriting)
{
    CTempFolder folder;
    const std::u16string path = folder.File16("process.ddb");
    CDataFile first;
    ASSERT_TRUE(first.Create(path, u"L", 1, 1));
    const auto otherProcessOpens = [&path]
    {
        const pid_t child = fork();
        if (child == 0)
        {
            CDataFile other;
            _exit(other.Open(path) ? 1 : 0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 1;
    };
    EXPECT_FALSE(otherProcessOpens());
    first.Close(false, 0);
    EXPECT_TRUE(otherProcessOpens());
}

TEST(DataFileLifecycle, SaveAsCopiesAndOptionallySwitches)
{
    CMemFileSystem fs;
    const std::vector<uint8_t> key = {3, 1, 4, 1, 5, 9};
    CDataFile file(fs);
    ASSERT_TRUE(file.Create(Path, u"L", 1, 1, key));
    const CUInt128 a = file.AddRecord("alpha", 5, 1, true, 20);
    ASSERT_TRUE(file.SaveAs(u"/data/copy.ddb", true));
    EXPECT_EQ(file.GetFilePath(), Path);
    EXPECT_EQ(fs.Bytes(u"/data/copy.ddb"), fs.Bytes(Path));

    ASSERT_TRUE(file.SaveAs(u"/data/moved.ddb", false));
    EXPECT_EQ(file.GetFilePath(), u"/data/moved.ddb");
    const CUInt128 b = file.AddRecord("beta", 4, 1, true, 20);
    file.Close(false, 0);
    ASSERT_TRUE(file.Open(u"/data/moved.ddb", key));
    EXPECT_EQ(ReadText(file, a), "alpha");
    EXPECT_EQ(ReadText(file, b), "beta");
    ASSERT_TRUE(file.Open(u"/data/copy.ddb", key));
    EXPECT_EQ(file.GetRecordsCount(), 1u);
}

TEST(DataFileLifecycle, ClosedFileAnswersWithItsMessages)
{
    CLogCapture log;
    CDataFile file;
    EXPECT_EQ(file.GetRecordsCount(), 0u);
    EXPECT_TRUE(file.GetRecordID(0).IsZero());
    EXPECT_EQ(file.GetFileVersion(), 0u);
    EXPECT_TRUE(file.IsReadOnly());
    EXPECT_TRUE(file.AddRecord("x", 1, 1, true, 0).IsZero());
    EXPECT_FALSE(file.DefragmentFull());
    EXPECT_EQ(file.GetFragmentationLevel(), 0);
    EXPECT_FALSE(file.DeleteAllRecords(false));
    for (const char16_t* line :
         {u"Error: Cannot get records count in the data file, as data file is not open",
          u"Error: Cannot get record ID in the data file, as data file is not open",
          u"Error: Cannot get data file version as data file is not open",
          u"Error: Cannot set data file read only mode status",
          u"Error: Cannot add record to the data file, as data file is not open",
          u"Error: Cannot defragment [full] data file, as data file is not open",
          u"Error: Cannot get fragmentation lever of the data file, as data file is not open",
          u"Error: Cannot dele all records in the data file, as data file is not open"})
        EXPECT_TRUE(log.Has(line)) << std::string(line, line + 30);
}

TEST(DataFileLifecycle, AccessLockIsRecursive)
{
    CMemFileSystem fs;
    CDataFile file(fs);
    ASSERT_TRUE(file.Create(Path, u"L", 1, 1));
    EXPECT_FALSE(file.IsLockedByCurrentThread());
    {
        CDataFileAccessLock lock(file);
        EXPECT_TRUE(file.IsLockedByCurrentThread());
        EXPECT_FALSE(file.AddRecord("x", 1, 1, true, 0).IsZero());
        EXPECT_TRUE(file.IsLockedByCurrentThread());
    }
    EXPECT_FALSE(file.IsLockedByCurrentThread());
}

TEST(DataFileSpace, DeleteMergesTruncatesAndReuses)
{
    CMemFileSystem fs;
    CDataFile file(fs);
    ASSERT_TRUE(file.Create(Path, u"L", 1, 1));
    const std::string hundred(100, 'h');
    CUInt128 ids[5];
    for (auto& id : ids)
        id = file.AddRecord(hundred.data(), 100, 1, true, 0); // 140 bytes each
    const uint64_t full = 1464 + 5 * 140;
    ASSERT_EQ(fs.Bytes(Path).size(), full);

    ASSERT_TRUE(file.DeleteRecord(ids[4])); // last record: the file shrinks
    EXPECT_EQ(fs.Bytes(Path).size(), full - 140);
    EXPECT_EQ(file.GetFragmentationLevel(), 0);

    ASSERT_TRUE(file.DeleteRecord(ids[1])); // middle: a deleted header stays
    EXPECT_EQ(ReadU32(fs.Bytes(Path), 1464 + 140 + 16), 2u);
    EXPECT_EQ(file.GetFragmentationLevel(), static_cast<int>(100.0 * 140 / (full - 140)));
    ASSERT_TRUE(file.DeleteRecord(ids[2])); // neighbour: one block covers both
    EXPECT_EQ(ReadU32(fs.Bytes(Path), 1464 + 140 + 28), 240u);
    EXPECT_EQ(ReadU32(fs.Bytes(Path), 1464 + 140 + 12), 2u); // the block keeps the first ID

    // 200 + 40 fits the 280-byte block with 40 spare: the whole block is taken.
    const std::string twoHundred(200, 't');
    const CUInt128 whole = file.AddRecord(twoHundred.data(), 200, 1, true, 0);
    EXPECT_EQ(file.GetRecordSizeOnDisk(whole), 280u);
    EXPECT_EQ(file.GetFragmentationLevel(), 0);
    EXPECT_EQ(fs.Bytes(Path).size(), full - 140);

    // A 140-byte record in a 280-byte block leaves 140 > 60 spare: the block is split.
    ASSERT_TRUE(file.DeleteRecord(whole));
    const CUInt128 split = file.AddRecord(hundred.data(), 100, 1, true, 0);
    EXPECT_EQ(file.GetRecordSizeOnDisk(split), 140u);
    const std::string bytes = fs.Bytes(Path);
    EXPECT_EQ(ReadU32(bytes, 1464 + 280 + 16), 2u);
    EXPECT_EQ(ReadU32(bytes, 1464 + 280 + 28), 100u);
    EXPECT_TRUE(file.IsCacheConsistentWithFile());
}

TEST(DataFileSpace, ModifyingWithSameDataWritesNothing)
{
    CMemFileSystem fs;
    CDataFile file(fs);
    ASSERT_TRUE(file.Create(Path, u"L", 1, 1));
    const CUInt128 id = file.AddRecord("same", 4, 1, true, 0);
    fs.Faults().failWriteAfter = 0;
    EXPECT_TRUE(file.ModifyRecord(id, "same", 4, 0));
    fs.Faults().failWriteAfter = -1;
}

TEST(DataFileSpace, GrowingRecordMovesAndKeepsItsId)
{
    CMemFileSystem fs;
    CDataFile file(fs);
    const std::vector<uint8_t> key = {7, 7, 1};
    ASSERT_TRUE(file.Create(Path, u"L", 1, 1, key));
    const CUInt128 a = file.AddRecord("aaaa", 4, 1, true, 0);
    const CUInt128 b = file.AddRecord("bbbb", 4, 1, true, 0);
    const std::string bigger(100, 'A');
    ASSERT_TRUE(file.ModifyRecord(a, bigger.data(), 100, 0));
    EXPECT_EQ(ReadU32(fs.Bytes(Path), 1464 + 16), 2u);
    file.SetCacheLimits(0, 0);
    EXPECT_EQ(ReadText(file, a), bigger);
    EXPECT_EQ(ReadText(file, b), "bbbb");
    ASSERT_TRUE(file.DefragmentFull());
    EXPECT_EQ(ReadText(file, a), bigger); // moved down: deciphered at the old place, enciphered at the new
    EXPECT_EQ(fs.Bytes(Path).size(), 1464u + 44 + 140);
}

TEST(DataFileSpace, QuickDefragmentationResumesFromMarker)
{
    CMemFileSystem fs;
    CStepClock clock(1);
    CDataFile file(fs, clock);
    ASSERT_TRUE(file.Create(Path, u"L", 1, 1));
    std::vector<CUInt128> ids;
    for (int i = 0; i < 20; ++i)
        ids.push_back(file.AddRecord("0123456789", 10, 1, true, 0));
    for (int i = 0; i < 20; i += 2)
        ASSERT_TRUE(file.DeleteRecord(ids[i]));
    ASSERT_GT(file.GetFragmentationLevel(), 0);
    int runs = 0;
    bool markerSeen = false;
    while (file.GetFragmentationLevel() > 0 && runs < 100)
    {
        ASSERT_TRUE(file.DefragmentQuick(0)); // one record per run
        markerSeen = markerSeen || ReadU64(fs.Bytes(Path), 444 + 8) != 0;
        ASSERT_TRUE(file.IsCacheConsistentWithFile());
        ++runs;
    }
    EXPECT_TRUE(markerSeen);
    EXPECT_GT(runs, 2);
    EXPECT_EQ(ReadU64(fs.Bytes(Path), 444 + 8), 0u);
    EXPECT_EQ(fs.Bytes(Path).size(), 1464u + 10 * 50);
    for (int i = 1; i < 20; i += 2)
        EXPECT_EQ(ReadText(file, ids[i]), "0123456789");
}

TEST(DataFileSpace, FailedWritesLeaveAConsistentFile)
{
    CMemFileSystem fs;
    CLogCapture log;
    CDataFile file(fs);
    ASSERT_TRUE(file.Create(Path, u"L", 1, 1));
    const CUInt128 keep = file.AddRecord("keep", 4, 1, true, 0);
    const CUInt128 gone = file.AddRecord("gone", 4, 1, true, 0);
    const CUInt128 tail = file.AddRecord("tail", 4, 1, true, 0);
    ASSERT_TRUE(file.DeleteRecord(gone));

    // Fail the first, second, ... write of an add, a growing modify and a delete.
    for (long long after : {0, 1, 2, 3})
    {
        SCOPED_TRACE(after);
        fs.Faults().failWriteAfter = after;
        log.Clear();
        const std::string big(300, 'b');
        const bool added = !file.AddRecord(big.data(), 300, 1, true, 0).IsZero();
        const bool modified = file.ModifyRecord(keep, big.data(), 300, 0);
        fs.Faults().failWriteAfter = -1;
        EXPECT_TRUE(
            added ||
            log.HasText(u"Error: General exception caught on saving /data/l.ddb data file ID "
                        u"counter field.") ||
            log.Has(u"Error: CFileException caught on adding new record to the data file. File name - "
                    u"/data/l.ddb, cause - 5"));
        EXPECT_TRUE(modified ||
                    log.Has(u"Error: CFileException caught on modifying record in the data file. File "
                            u"name - /data/l.ddb, cause - 5"));
        EXPECT_TRUE(file.IsCacheConsistentWithFile());
        EXPECT_EQ(ReadText(file, tail), "tail");
        if (modified)
        {
            EXPECT_EQ(ReadText(file, keep), big);
        }
    }
    file.SetCacheLimits(0, 0);
    fs.Faults().failReadAfter = 0;
    std::vector<uint8_t> data;
    EXPECT_FALSE(file.GetRecordData(tail, data));
    EXPECT_TRUE(
        log.Has(u"Error: CFileException caught on reading record data from the data file. File name - "
                u"/data/l.ddb, cause - 5"));
    fs.Faults().failReadAfter = -1;
    file.Close(false, 0);
    ASSERT_TRUE(file.Open(Path));
    EXPECT_TRUE(file.IsCacheConsistentWithFile());
}

TEST(DataFileSpace, BestFitMatchesAWalkOverTheList)
{
    std::mt19937 rng(11);
    for (int round = 0; round < 200; ++round)
    {
        CDataFile::CDeletedSpaceList list;
        std::vector<SDeletedRecCacheEntry> walk; // in list order
        uint64_t position = 1464;
        for (int i = 0, n = static_cast<int>(rng() % 40); i < n; ++i)
        {
            const uint32_t size = 40 + rng() % 200;
            list.Add(position, size);
            walk.push_back({position, size});
            position += size + 1000;
        }
        for (int query = 0; query < 50; ++query)
        {
            const uint64_t minimum = 40 + rng() % 200;
            const uint64_t wanted = minimum + rng() % 60;
            const SDeletedRecCacheEntry* best = nullptr;
            uint64_t bestDiff = 0;
            for (const auto& e : walk)
            {
                if (e.size < minimum)
                    continue;
                const uint64_t diff = e.size > wanted ? e.size - wanted : wanted - e.size;
                if (!best || diff < bestDiff)
                {
                    best = &e;
                    bestDiff = diff;
                }
                if (diff == 0)
                    break;
            }
            const auto found = list.FindBestFit(minimum, wanted);
            ASSERT_EQ(found.has_value(), best != nullptr);
            if (best)
            {
                ASSERT_EQ(*found, *best);
            }
        }
    }
}
