// Damaged files: each gives its designed log lines and outcome, never a crash.
#include "DataFileTestSupport.h"

#include <gtest/gtest.h>

#include <functional>

namespace
{
const std::u16string Path = u"/data/c.ddb";
constexpr size_t RecordSize = 48; // 40-byte header + "record-N"

size_t RecordAt(int number)
{
    return 1464 + RecordSize * static_cast<size_t>(number - 1);
}

// Records 1..count with data "record-N", no reserve; closed, so the cache record follows them.
void MakeFile(CMemFileSystem& fs, int count, bool deleteSecond = false)
{
    CDataFile file(fs);
    ASSERT_TRUE(file.Create(Path, u"C", 1, 1));
    for (int i = 1; i <= count; ++i)
    {
        const std::string data = "record-" + std::to_string(i);
        ASSERT_FALSE(file.AddRecord(data.data(), 8, 5, true, 0).IsZero());
    }
    if (deleteSecond)
    {
        ASSERT_TRUE(file.DeleteRecord(CUInt128(2)));
    }
    file.Close(false, 0);
}

// Forgets the cache record so that opening scans the file.
void DropCacheReference(std::string& bytes)
{
    const uint64_t position = ReadU64(bytes, 464);
    bytes.resize(position);
    std::fill(bytes.begin() + 464, bytes.begin() + 488, '\0');
}

void ExpectRecords(CDataFile& file, std::initializer_list<int> numbers)
{
    EXPECT_EQ(file.GetRecordsCount(), numbers.size());
    for (int n : numbers)
    {
        std::vector<uint8_t> data;
        ASSERT_TRUE(file.GetRecordData(CUInt128(n), data));
        EXPECT_EQ(std::string(data.begin(), data.end()), "record-" + std::to_string(n));
    }
    EXPECT_TRUE(file.IsCacheConsistentWithFile());
}
} // namespace

TEST(DataFileCorruption, TornLastHeaderIsCutOffOnOpen)
{
    for (bool withCacheRecord : {false, true})
    {
        CMemFileSystem fs;
        MakeFile(fs, 3);
        std::string& bytes = fs.Bytes(Path);
        if (!withCacheRecord)
            DropCacheReference(bytes);
        const size_t good = bytes.size();
        bytes.append(25, '\xAB');
        CLogCapture log;
        CDataFile file(fs);
        ASSERT_TRUE(file.Open(Path));
        EXPECT_TRUE(log.Has(u"Error: Invalid record header size, seems like corrupted file (file name - "
                            u"/data/c.ddb)... Repairing..."));
        if (withCacheRecord)
        {
            EXPECT_TRUE(log.Has(u"Error: Cache record data is invalid. File name - /data/c.ddb."));
            EXPECT_TRUE(
                log.Has(u"Info: Invalid cache record data (file name - /data/c.ddb). Trying to rebuild it."));
        }
        EXPECT_EQ(fs.Bytes(Path).size(), good);
        ExpectRecords(file, {1, 2, 3});
    }
}

TEST(DataFileCorruption, BadRecordHeadersFailOrSkipOnScan)
{
    struct SCase
    {
        size_t offset;
        uint32_t value;
        bool opens;
        std::u16string line;
    };
    const SCase cases[] = {
        {RecordAt(2) + 28, 0x7FFFFFFF, false,
         u"Error: Invalid file size or data corruption detected (file name - /data/c.ddb, record size - "
         u"2147483647). Unable to proceed."},
        {RecordAt(2) + 24, 100, false,
         u"Error: Invalid record size. Data size - 100, allocated size - 8, file name - /data/c.ddb"},
        {RecordAt(2) + 12, 50, true, u"Error: Invalid record ID detected in the data storage file."},
        {RecordAt(2) + 12, 5, true, u"Error: Invalid record ID detected in the data storage file."},
    };
    for (const SCase& c : cases)
    {
        SCOPED_TRACE(std::string(c.line.begin(), c.line.end()));
        CMemFileSystem fs;
        MakeFile(fs, 3);
        std::string& bytes = fs.Bytes(Path);
        DropCacheReference(bytes);
        WriteU32(bytes, c.offset, c.value);
        CLogCapture log;
        CDataFile file(fs);
        EXPECT_EQ(file.Open(Path), c.opens);
        EXPECT_TRUE(log.Has(c.line));
        if (c.opens)
            ExpectRecords(file, {1, 3});
        else
            EXPECT_TRUE(
                log.Has(u"Error: Cannot load /data/c.ddb data file due to an error on building cache map."));
        EXPECT_EQ(file.IsOpen(), c.opens);
    }
}

TEST(DataFileCorruption, HeaderFieldsAreValidatedInOrder)
{
    struct SCase
    {
        std::function<void(std::string&)> edit;
        bool opens;
        std::u16string line;
    };
    const SCase cases[] = {
        {[](std::string& b) { WriteU32(b, 0, 0x12345678); }, false,
         u"Error: invalid data file internal header signature detected (expected value - 1598308959, actual "
         u"value "
         u"- 305419896)."},
        {[](std::string& b) { WriteU32(b, 4, 2); }, false,
         u"Error: invalid data file internal header version detected (expected version - 1, actual version - "
         u"2)."},
        {[](std::string& b) { WriteU32(b, 8, 1000); }, false,
         u"Error: invalid data file header size detected (minimally possible size - 1464, actual size - "
         u"1000)."},
        {[](std::string& b) { WriteU32(b, 424, 77); }, false,
         u"Error: Invalid database key checksum (expected - 0, actual value - 77)."},
        {[](std::string& b) { b[414] = 7; }, true,
         u"Warning: invalid data file header read-only flag detected. Value - 7...Fixed"},
        {[](std::string& b) { std::fill(b.begin() + 12, b.begin() + 414, 'A'); }, true,
         u"Warning: invalid data file header signature detected [too long or corrupted]...Fixed"},
        {[](std::string& b) { std::fill(b.begin() + 472, b.begin() + 488, '\0'); }, true,
         u"Warning: Invalid data file header cache record refference...Fixed"},
    };
    for (const SCase& c : cases)
    {
        SCOPED_TRACE(std::string(c.line.begin(), c.line.end()));
        CMemFileSystem fs;
        MakeFile(fs, 2);
        c.edit(fs.Bytes(Path));
        CLogCapture log;
        CDataFile file(fs);
        ASSERT_EQ(file.Open(Path), c.opens);
        EXPECT_TRUE(log.Has(c.line));
        if (!c.opens)
        {
            EXPECT_TRUE(log.Has(u"Error: Invalid header on loading /data/c.ddb data file header."));
            EXPECT_TRUE(log.Has(u"Error: Cannot load /data/c.ddb data file due to invalid header."));
            continue;
        }
        EXPECT_FALSE(file.IsReadOnly());
        ExpectRecords(file, {1, 2});
    }
}

TEST(DataFileCorruption, EachCacheRecordCheckLeadsToRebuild)
{
    // Cache record data: version, D = 1, one deleted entry (bytes 8-19), external count at 20,
    // entry 1 at 24 (35 bytes + 8 bytes of data), entry 3 at 67.
    struct SCase
    {
        const char* name;
        std::function<void(std::string&, size_t)> edit;
        bool headerCheck;
    };
    const SCase cases[] = {
        {"deleted entry before header", [](std::string& b, size_t d) { WriteU32(b, d + 8, 100); }, false},
        {"deleted entry past end", [](std::string& b, size_t d) { WriteU32(b, d + 16, 100000); }, false},
        {"entry outside file", [](std::string& b, size_t d) { WriteU32(b, d + 24 + 26, 1000000); }, false},
        {"entry before header", [](std::string& b, size_t d) { WriteU32(b, d + 24 + 26, 40); }, false},
        {"data larger than area", [](std::string& b, size_t d) { WriteU32(b, d + 24 + 18, 9); }, false},
        {"IDs not increasing", [](std::string& b, size_t d) { WriteU32(b, d + 67 + 12, 1); }, false},
        {"ID at counter", [](std::string& b, size_t d) { WriteU32(b, d + 67 + 12, 5); }, false},
        {"flag byte", [](std::string& b, size_t d) { b[d + 24 + 34] = 2; }, false},
        {"count beyond data", [](std::string& b, size_t d) { WriteU32(b, d + 20, 1000); }, false},
        {"short data", [](std::string& b, size_t d) { WriteU32(b, d - 16, ReadU32(b, d - 16) - 1); }, false},
        {"overlapping entries", [](std::string& b, size_t d) { WriteU32(b, d + 67 + 26, 1464 + 48); }, false},
        {"wrong ID in header", [](std::string& b, size_t) { WriteU32(b, 472 + 12, 3); }, true},
        {"record of unknown state", [](std::string& b, size_t d) { WriteU32(b, d - 40 + 16, 7); }, true},
        {"position past end", [](std::string& b, size_t) { WriteU32(b, 464, 1u << 30); }, true},
    };
    for (const SCase& c : cases)
    {
        SCOPED_TRACE(c.name);
        CMemFileSystem fs;
        MakeFile(fs, 3, true);
        std::string& bytes = fs.Bytes(Path);
        const size_t data = ReadU64(bytes, 464) + 40;
        ASSERT_EQ(ReadU32(bytes, data), 101u);
        c.edit(bytes, data);
        CLogCapture log;
        CDataFile file(fs);
        ASSERT_TRUE(file.Open(Path));
        EXPECT_FALSE(file.WasCacheLoadedFromRecord());
        if (c.headerCheck)
            EXPECT_TRUE(
                log.Has(u"Info: Invalid cache record header format (file name - /data/c.ddb). Trying to "
                        u"rebuild it."));
        else
        {
            EXPECT_TRUE(log.Has(u"Error: Cache record data is invalid. File name - /data/c.ddb."));
            EXPECT_TRUE(
                log.Has(u"Info: Invalid cache record data (file name - /data/c.ddb). Trying to rebuild it."));
        }
        ExpectRecords(file, {1, 3});
    }
}

TEST(DataFileCorruption, UnknownCacheRecordVersionIsSkipped)
{
    CMemFileSystem fs;
    MakeFile(fs, 2);
    std::string& bytes = fs.Bytes(Path);
    WriteU32(bytes, ReadU64(bytes, 464) + 40, 102);
    CLogCapture log;
    CDataFile file(fs);
    ASSERT_TRUE(file.Open(Path));
    EXPECT_TRUE(
        log.Has(u"Warning: Unknown cache record format, skipping it. File name - /data/c.ddb, actual version "
                u"- 102, expected version - 101."));
    ExpectRecords(file, {1, 2});
    // The unusable record is released at the next change and a fresh one is written on close.
    ASSERT_FALSE(file.AddRecord("x", 1, 5, true, 0).IsZero());
    file.Close(false, 0);
    ASSERT_TRUE(file.Open(Path));
    EXPECT_TRUE(file.WasCacheLoadedFromRecord());
    EXPECT_EQ(file.GetRecordsCount(), 3u);
}

TEST(DataFileCorruption, StaleDirectoryStopsDefragmentation)
{
    struct SCase
    {
        uint32_t state;
        bool result;
        std::u16string line;
    };
    const SCase cases[] = {
        {2, false,
         u"Error: Cache corruption detected - deleted record is not registered in the cache (file name - "
         u"/data/c.ddb). Unable to proceed defragmentation."},
        {9, true,
         u"Warning: Unknown record state detected, unable to defragment it (file name - /data/c.ddb, state "
         u"value - "
         u"9). Skipping the record."},
        {0, false,
         u"Error: Cache corruption detected - record is not registered in the cache (file name - "
         u"/data/c.ddb). "
         u"Unable to proceed defragmentation."},
    };
    for (const SCase& c : cases)
    {
        SCOPED_TRACE(c.state);
        CMemFileSystem fs;
        MakeFile(fs, 3, true);
        WriteU32(fs.Bytes(Path), RecordAt(3) + 16, c.state);
        CLogCapture log;
        CDataFile file(fs);
        ASSERT_TRUE(file.Open(Path));
        ASSERT_TRUE(file.WasCacheLoadedFromRecord());
        EXPECT_EQ(file.DefragmentFull(), c.result);
        EXPECT_TRUE(log.Has(c.line));
        file.Close(false, 0);
        // Whatever the run found, the file still opens with record 1 intact.
        ASSERT_TRUE(file.Open(Path));
        std::vector<uint8_t> data;
        ASSERT_TRUE(file.GetRecordData(CUInt128(1), data));
        EXPECT_TRUE(file.IsCacheConsistentWithFile());
    }
}

TEST(DataFileCorruption, HeaderSizeAbove1464IsSkipped)
{
    CMemFileSystem fs;
    std::string bytes;
    {
        CDataFile file(fs);
        ASSERT_TRUE(file.Create(Path, u"C", 1, 1));
        bytes = fs.Bytes(Path);
    }
    ASSERT_EQ(bytes.size(), 1464u);
    fs.Bytes(u"/data/plain.ddb") = bytes;
    WriteU32(bytes, 8, 2000);
    WriteU32(bytes, 428 + 12, 2);
    bytes.resize(2000, '\0');
    std::string record(40, '\0');
    WriteU32(record, 12, 1);
    WriteU32(record, 16, 1);
    WriteU32(record, 24, 5);
    WriteU32(record, 28, 5);
    WriteU32(record, 32, 0x400);
    bytes += record + "hello";
    fs.Bytes(u"/data/big.ddb") = bytes;

    CDataFile file(fs);
    ASSERT_TRUE(file.Open(u"/data/big.ddb"));
    ASSERT_EQ(file.GetRecordsCount(), 1u);
    std::vector<uint8_t> data;
    ASSERT_TRUE(file.GetRecordData(CUInt128(1), data));
    EXPECT_EQ(std::string(data.begin(), data.end()), "hello");
    file.Close(false, 0);

    ASSERT_TRUE(file.Open(u"/data/plain.ddb")); // exactly 1464 bytes
    EXPECT_EQ(file.GetRecordsCount(), 0u);
}
