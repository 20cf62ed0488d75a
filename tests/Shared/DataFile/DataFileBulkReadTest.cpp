// Reading many records in one pass (VisitRecordsData): every wanted record is handed over once
// with the data GetRecordData gives, whatever the order of the IDs and of the records in the
// file, across read windows and gaps; missing and damaged records are logged and left out.
#include "DataFileTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

namespace
{
constexpr char16_t Path[] = u"/data/bulk.ddb";
const std::vector<uint8_t> Key = {3, 9, 27, 81, 243, 7, 5};

std::vector<uint8_t> RandomBytes(std::mt19937& rng, size_t size)
{
    std::vector<uint8_t> data(size);
    for (uint8_t& byte : data)
        byte = static_cast<uint8_t>(rng());
    return data;
}

class DataFileBulkRead : public ::testing::Test
{
protected:
    // Visits `ids` and checks that each present record came exactly once with its model data.
    void ExpectVisitedAsModel(const std::vector<CUInt128>& ids)
    {
        std::vector<int> seen(ids.size(), 0);
        ASSERT_TRUE(file.VisitRecordsData(
            ids,
            [&](size_t index, std::span<const uint8_t> data)
            {
                EXPECT_LT(index, ids.size());
                ++seen[index];
                const auto it = model.find(ids[index]);
                EXPECT_NE(it, model.end());
                if (it != model.end())
                {
                    EXPECT_TRUE(std::equal(data.begin(), data.end(), it->second.begin(), it->second.end()));
                }
                return true;
            }));
        for (size_t i = 0; i < ids.size(); ++i)
            EXPECT_EQ(seen[i], model.count(ids[i]) ? 1 : 0) << i;
    }

    CLogCapture log;
    CMemFileSystem fs;
    CStepClock clock;
    CDataFile file{fs, clock};
    std::map<CUInt128, std::vector<uint8_t>> model;
};
} // namespace

// Random sizes (some beyond one read window, some empty), records moved by growth so that file
// order and ID order differ, deletions, a little cached data, and the same after a reopen.
TEST_F(DataFileBulkRead, EveryRecordOnceWithItsDataInAnyLayout)
{
    std::mt19937 rng(41);
    ASSERT_TRUE(file.Create(Path, u"Test", 1, 1, Key));
    file.SetCacheLimits(4096, 64);
    std::vector<CUInt128> ids;
    for (int i = 0; i < 400; ++i)
    {
        size_t size = rng() % 6000;
        if (i % 50 == 7)
            size = 300000 + rng() % 300000;
        if (i % 31 == 0)
            size = 0;
        std::vector<uint8_t> data = RandomBytes(rng, size);
        const CUInt128 id = file.AddRecord(data.data(), static_cast<uint32_t>(data.size()), 2, i % 2 == 0,
                                           static_cast<int>(rng() % 30));
        ASSERT_FALSE(id.IsZero());
        ids.push_back(id);
        model[id] = std::move(data);
    }
    for (int step = 0; step < 300; ++step)
    {
        const CUInt128 id = ids[rng() % ids.size()];
        if (!model.count(id))
            continue;
        if (rng() % 5 == 0)
        {
            ASSERT_TRUE(file.DeleteRecord(id));
            model.erase(id);
            continue;
        }
        std::vector<uint8_t> data = RandomBytes(rng, rng() % 9000);
        ASSERT_TRUE(file.ModifyRecord(id, data.data(), static_cast<uint32_t>(data.size()), 10));
        model[id] = std::move(data);
    }
    // Some small records read once, so their data is in the records cache.
    std::vector<uint8_t> scratch;
    for (size_t i = 0; i < ids.size(); i += 9)
        if (model.count(ids[i]))
            file.GetRecordData(ids[i], scratch);

    std::shuffle(ids.begin(), ids.end(), rng);
    log.Clear();
    ExpectVisitedAsModel(ids);
    // Deleted records were asked for as well.
    EXPECT_TRUE(log.HasText(u"Error: attempt to read not existing record. Data file name - /data/bulk.ddb"));

    file.Close(false, 0);
    ASSERT_TRUE(file.Open(Path, Key));
    std::reverse(ids.begin(), ids.end());
    ExpectVisitedAsModel(ids);
    EXPECT_TRUE(file.IsCacheConsistentWithFile());
}

TEST_F(DataFileBulkRead, VisitorStopsTheReadAndEmptyListVisitsNothing)
{
    ASSERT_TRUE(file.Create(Path, u"Test", 1, 1, Key));
    std::vector<CUInt128> ids;
    for (int i = 0; i < 10; ++i)
        ids.push_back(file.AddRecord("abcdef", 6, 2, true, 0));
    int calls = 0;
    EXPECT_FALSE(file.VisitRecordsData(ids, [&](size_t, std::span<const uint8_t>) { return ++calls < 3; }));
    EXPECT_EQ(calls, 3);
    EXPECT_TRUE(file.VisitRecordsData({}, [&](size_t, std::span<const uint8_t>) { return ++calls < 0; }));
    EXPECT_EQ(calls, 3);
}

TEST_F(DataFileBulkRead, FailuresAreLoggedAndDamagedRecordsSkipped)
{
    const std::vector<CUInt128> none;
    const auto count = [](size_t, std::span<const uint8_t>) { return true; };
    EXPECT_FALSE(file.VisitRecordsData(none, count));
    EXPECT_TRUE(log.Has(u"Error: Cannot get record data from the data file, as data file is not open"));

    // Without a key the stored bytes can be found in the file, and the header before them.
    ASSERT_TRUE(file.Create(Path, u"Test", 1, 1));
    file.SetCacheLimits(0, 0);
    const CUInt128 first = file.AddRecord("FIRST-RECORD", 12, 2, true, 0);
    const CUInt128 damaged = file.AddRecord("DAMAGED-RECORD", 14, 2, true, 0);
    const CUInt128 last = file.AddRecord("LAST-RECORD", 11, 2, true, 0);
    std::string& bytes = fs.Bytes(Path);
    const size_t data = bytes.find("DAMAGED-RECORD");
    ASSERT_NE(data, std::string::npos);
    WriteU32(bytes, data - 40 + 24, 13); // the header's data size no longer matches the directory

    std::vector<std::string> read;
    log.Clear();
    EXPECT_TRUE(file.VisitRecordsData(std::vector<CUInt128>{last, damaged, first},
                                      [&](size_t index, std::span<const uint8_t> bytesRead)
                                      {
                                          read.push_back(std::to_string(index) + ":" +
                                                         std::string(bytesRead.begin(), bytesRead.end()));
                                          return true;
                                      }));
    EXPECT_EQ(read, (std::vector<std::string>{"2:FIRST-RECORD", "0:LAST-RECORD"}));
    EXPECT_TRUE(log.Has(u"Error: Data file cache corruption detected on reading record content. Data file "
                        u"name - /data/bulk.ddb"));

    fs.Faults().failReadAfter = 0;
    log.Clear();
    EXPECT_FALSE(file.VisitRecordsData(std::vector<CUInt128>{first}, count));
    EXPECT_TRUE(
        log.Has(u"Error: CFileException caught on reading record data from the data file. File name - "
                u"/data/bulk.ddb, cause - 5"));
    fs.Faults().failReadAfter = -1;
}
