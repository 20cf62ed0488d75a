// Small records carried in the cache record: after a reopen their data comes with the directory,
// so reading them touches the file no more, whatever the cache budget.
#include "DataFileTestSupport.h"

#include <gtest/gtest.h>

namespace
{
constexpr char16_t Path[] = u"/data/carried.ddb";
const std::vector<uint8_t> Key = {7, 1, 2, 3, 4, 5, 6, 8};

class DataFileCarried : public ::testing::Test
{
protected:
    void OpenWithLimits(uint32_t carried)
    {
        file.SetCacheLimits(0, 0);
        file.SetCarriedRecordLimit(carried);
        ASSERT_TRUE(file.Open(Path, Key));
    }
    void CreateWithLimits(uint32_t carried)
    {
        file.SetCacheLimits(0, 0);
        file.SetCarriedRecordLimit(carried);
        ASSERT_TRUE(file.Create(Path, u"Test", 1, 1, Key));
    }
    CUInt128 Add(size_t size, uint8_t fill)
    {
        const std::vector<uint8_t> data(size, fill);
        return file.AddRecord(data.data(), static_cast<uint32_t>(size), 2, true, 0);
    }
    bool Reads(const CUInt128& id, size_t size, uint8_t fill)
    {
        std::vector<uint8_t> data;
        return file.GetRecordData(id, data) && data == std::vector<uint8_t>(size, fill);
    }
    void FailEveryRead() { fs.Faults().failReadAfter = 0; }
    void AllowReads() { fs.Faults().failReadAfter = -1; }

    CLogCapture log;
    CMemFileSystem fs;
    CStepClock clock;
    CDataFile file{fs, clock};
};
} // namespace

TEST_F(DataFileCarried, SmallRecordsNeedNoFileReadAfterReopen)
{
    CreateWithLimits(64);
    const CUInt128 tiny = Add(10, 0x11);
    const CUInt128 edge = Add(64, 0x22);
    const CUInt128 over = Add(65, 0x33);
    const CUInt128 big = Add(500, 0x44);
    // Many more small records than the (zero) budget would ever hold.
    std::vector<CUInt128> many;
    for (int i = 0; i < 300; ++i)
        many.push_back(Add(32, static_cast<uint8_t>(i)));
    file.Close(false, 0);

    OpenWithLimits(64);
    ASSERT_TRUE(file.WasCacheLoadedFromRecord());
    FailEveryRead();
    EXPECT_TRUE(Reads(tiny, 10, 0x11));
    EXPECT_TRUE(Reads(edge, 64, 0x22));
    for (int i = 0; i < 300; ++i)
        ASSERT_TRUE(Reads(many[i], 32, static_cast<uint8_t>(i))) << i;
    EXPECT_FALSE(Reads(over, 65, 0x33));
    EXPECT_FALSE(Reads(big, 500, 0x44));
    AllowReads();
    EXPECT_TRUE(Reads(over, 65, 0x33));
    EXPECT_TRUE(Reads(big, 500, 0x44));
}

TEST_F(DataFileCarried, DataReadFromDiskIsCarriedFromTheNextClose)
{
    // Written without carrying: the cache record holds no data.
    CreateWithLimits(0);
    const CUInt128 small = Add(20, 0x5A);
    file.Close(false, 0);

    // Reading it once with carrying on makes the close write a new cache record with it.
    OpenWithLimits(64);
    EXPECT_TRUE(Reads(small, 20, 0x5A));
    file.Close(false, 0);
    OpenWithLimits(64);
    ASSERT_TRUE(file.WasCacheLoadedFromRecord());
    FailEveryRead();
    EXPECT_TRUE(Reads(small, 20, 0x5A));
    AllowReads();
    EXPECT_TRUE(file.IsCacheConsistentWithFile());
}

TEST_F(DataFileCarried, ModifiedAndDeletedRecordsAreCarriedAsTheyNowAre)
{
    CreateWithLimits(64);
    const CUInt128 grows = Add(16, 1);
    const CUInt128 shrinks = Add(40, 2);
    const CUInt128 goes = Add(8, 3);
    const std::vector<uint8_t> bigger(100, 9), smaller(4, 8);
    ASSERT_TRUE(file.ModifyRecord(grows, bigger.data(), 100, 0));
    ASSERT_TRUE(file.ModifyRecord(shrinks, smaller.data(), 4, 0));
    ASSERT_TRUE(file.DeleteRecord(goes));
    file.Close(false, 0);

    OpenWithLimits(64);
    FailEveryRead();
    EXPECT_TRUE(Reads(shrinks, 4, 8));
    EXPECT_FALSE(Reads(grows, 100, 9)); // no longer small
    std::vector<uint8_t> data;
    EXPECT_FALSE(file.GetRecordData(goes, data));
    AllowReads();
    EXPECT_TRUE(Reads(grows, 100, 9));
    EXPECT_TRUE(file.IsCacheConsistentWithFile());
}

// Carried data is kept apart from the budget: shrinking the budget keeps it, and the budget
// still caches larger records as before.
TEST_F(DataFileCarried, TheBudgetStillGovernsLargerRecords)
{
    CreateWithLimits(16);
    const CUInt128 small = Add(16, 6);
    const CUInt128 mid = Add(100, 7);
    file.SetCacheLimits(1000, 200);
    EXPECT_TRUE(Reads(mid, 100, 7)); // read once: cached under the budget
    FailEveryRead();
    EXPECT_TRUE(Reads(mid, 100, 7));
    EXPECT_TRUE(Reads(small, 16, 6));
    AllowReads();
    file.SetCacheLimits(0, 0);
    FailEveryRead();
    EXPECT_TRUE(Reads(small, 16, 6));
    EXPECT_FALSE(Reads(mid, 100, 7));
    AllowReads();
}
